// Independent reads for cross-checking the library. A deliberately plain WMI reader for
// cross-checking the library: its own COM calls, no shared code with the engine under test. Returns
// every row's property as a VARIANT-derived text.
#pragma once

#include "platform/win32.h"

#include <oleauto.h>
#include <wbemcli.h>

#include <optional>
#include <string>
#include <vector>

namespace velhal::testing {

// Rows of one property, or nullopt when the query or a property read failed.
inline std::optional<std::vector<std::wstring>> RawWmiTexts(const wchar_t* name_space,
                                                            const wchar_t* wql,
                                                            const wchar_t* property) {
  const HRESULT init = ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  std::optional<std::vector<std::wstring>> rows;
  IWbemLocator* locator = nullptr;
  IWbemServices* services = nullptr;
  IEnumWbemClassObject* objects = nullptr;
  BSTR ns = ::SysAllocString(name_space), language = ::SysAllocString(L"WQL"),
       query = ::SysAllocString(wql);
  if (SUCCEEDED(::CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_IWbemLocator, reinterpret_cast<void**>(&locator))) &&
      SUCCEEDED(
          locator->ConnectServer(ns, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &services)) &&
      SUCCEEDED(services->ExecQuery(language, query, WBEM_FLAG_FORWARD_ONLY, nullptr, &objects))) {
    rows.emplace();
    for (;;) {
      IWbemClassObject* object = nullptr;
      ULONG returned = 0;
      if (FAILED(objects->Next(WBEM_INFINITE, 1, &object, &returned)) || returned == 0) break;
      VARIANT value;
      ::VariantInit(&value);
      const HRESULT got = object->Get(property, 0, &value, nullptr, nullptr);
      object->Release();
      if (FAILED(got)) {
        rows.reset();
        break;
      }
      if (V_VT(&value) == VT_BSTR) {
        rows->emplace_back(V_BSTR(&value) ? V_BSTR(&value) : L"");
      } else if (V_VT(&value) == VT_I4) {
        rows->push_back(std::to_wstring(static_cast<uint32_t>(V_I4(&value))));
      }
      ::VariantClear(&value);
    }
  }
  if (objects) objects->Release();
  if (services) services->Release();
  if (locator) locator->Release();
  ::SysFreeString(ns);
  ::SysFreeString(language);
  ::SysFreeString(query);
  if (SUCCEEDED(init)) ::CoUninitialize();
  return rows;
}

inline std::optional<uint32_t> RawWmiFirstNumber(const wchar_t* wql, const wchar_t* property) {
  const auto rows = RawWmiTexts(L"ROOT\\CIMV2", wql, property);
  if (!rows || rows->empty()) return std::nullopt;
  return static_cast<uint32_t>(std::stoul(rows->front()));
}

// The processor's name as the registry holds it, for cross-checks of the WMI and processor reads.
inline std::wstring RegistryProcessorName() {
  wchar_t name[256] = {};
  DWORD size = sizeof(name);
  ::RegGetValueW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0",
                 L"ProcessorNameString", RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY, nullptr, name,
                 &size);
  return name;
}

}  // namespace velhal::testing
