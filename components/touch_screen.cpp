#include "platform/win32.h"

#include "components/touch_screen.h"

#include <wbemcli.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

#include "platform/boundary.h"
#include "platform/com_ptr.h"
#include "platform/com_values.h"
#include "platform/diagnostics.h"
#include "platform/os/com.h"
#include "platform/os/console_output.h"
#include "platform/os/device_database.h"
#include "platform/wmi_engine.h"

namespace {

using velhal::Bstr;
using velhal::ComPtr;
using velhal::WriteDiagnostic;
namespace os = velhal::os;

constexpr wchar_t kNamespace[] = L"root\\WMI";
constexpr wchar_t kClass[] = L"TouchScreenDeviceInformation";
constexpr wchar_t kProperty[] = L"ApplicationInstall";
constexpr char kOpen[] = "TouchScreenControlImp::Open";
constexpr DWORD kFirstHardwareIdRead = 8192;  // bytes
constexpr LONG kForwardOnlyShallow = 0x21;    // WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_SHALLOW
static_assert(kForwardOnlyShallow ==
              (static_cast<LONG>(WBEM_FLAG_FORWARD_ONLY) | static_cast<LONG>(WBEM_FLAG_SHALLOW)));

// Failures are reported on standard output in these exact words; callers rely on them. "%ls",
// not "%s": the same text under both the Microsoft and the C99 reading of a wide format.
void Report(const wchar_t* format, ...) {
  va_list args;
  va_start(args, format);
  os::console_output().vfwprintf(stdout, format, args);
  va_end(args);
}

unsigned long Code(HRESULT hr) { return static_cast<unsigned long>(hr); }

std::wstring Hex(HRESULT hr) {
  wchar_t text[16] = {};
  std::swprintf(text, std::size(text), L"0x%08lX", Code(hr));
  return text;
}

// Whether a name for a COM call was allocated; running out of memory is reported here.
bool Allocated(const Bstr& name) {
  if (name.get() != nullptr) return true;
  Report(L"Out of memory.\n");
  WriteDiagnostic("AnsiToBstr Out of memory", kOpen);
  return false;
}

// Locator, namespace and proxy security; the services on success.
ComPtr<IWbemServices> Connect() {
  ComPtr<IWbemLocator> locator;
  HRESULT hr = os::com().CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER,
                                          IID_IWbemLocator, locator.PutVoid());
  if (FAILED(hr) || !locator) {
    Report(L"Error %lX: Could not create instance of IWbemLocator interface.\n", Code(hr));
    WriteDiagnostic("Could not create instance of IWbemLocator interface.", kOpen);
    return {};
  }
  const Bstr path(kNamespace);
  if (!Allocated(path)) return {};
  ComPtr<IWbemServices> services;
  hr = locator->ConnectServer(path.get(), nullptr, nullptr, nullptr, WBEM_FLAG_CONNECT_USE_MAX_WAIT,
                              nullptr, nullptr, services.Put());
  if (FAILED(hr) || !services) {
    Report(L"Error %lX: Failed to connect to namespace %ls.\n", Code(hr), kNamespace);
    WriteDiagnostic(std::wstring(L"Failed to connect to namespace ") + kNamespace, kOpen);
    return {};
  }
  hr = os::com().CoSetProxyBlanket(services.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                   RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr,
                                   EOAC_NONE);
  // E_NOINTERFACE: an in-process provider, no proxy to secure.
  if (FAILED(hr) && hr != E_NOINTERFACE) {
    WriteDiagnostic("Failed to impersonate, error is ", Hex(hr), kOpen);
    return {};
  }
  return services;
}

ComPtr<IWbemClassObject> FirstInstance(IWbemServices& services) {
  const Bstr name(kClass);
  if (!Allocated(name)) return {};
  ComPtr<IEnumWbemClassObject> instances;
  const HRESULT hr =
      services.CreateInstanceEnum(name.get(), kForwardOnlyShallow, nullptr, instances.Put());
  if (FAILED(hr) || !instances) {
    Report(L"Error %lX: Failed to get a reference to instance enumerator.\n", Code(hr));
    WriteDiagnostic("Failed to get a reference to instance enumerator,error is ", Hex(hr), kOpen);
    return {};
  }
  ComPtr<IWbemClassObject> first;
  ULONG returned = 0;
  const auto timeout = static_cast<LONG>(velhal::wmi::QueryTimeout().count());
  if (FAILED(instances->Next(timeout, 1, first.Put(), &returned)) || returned == 0) return {};
  return first;
}

// The device's hardware IDs (a multi-string), empty when they cannot be read.
std::vector<std::wstring> HardwareIds(HDEVINFO set, SP_DEVINFO_DATA& device) {
  std::vector<BYTE> buffer(kFirstHardwareIdRead);
  DWORD required = 0;
  auto read = [&] {
    return os::device_database().SetupDiGetDeviceRegistryPropertyW(
        set, &device, SPDRP_HARDWAREID, nullptr, buffer.data(), static_cast<DWORD>(buffer.size()),
        &required);
  };
  if (!read()) {
    if (::GetLastError() != ERROR_INSUFFICIENT_BUFFER || required <= buffer.size()) return {};
    buffer.resize(required);
    if (!read()) return {};
  }
  std::wstring units(buffer.size() / sizeof(wchar_t), L'\0');
  std::copy(buffer.begin(), buffer.begin() + units.size() * sizeof(wchar_t),
            reinterpret_cast<BYTE*>(units.data()));
  std::vector<std::wstring> ids;
  for (size_t at = 0; at < units.size() && units[at] != L'\0';) {
    const size_t end = std::min(units.find(L'\0', at), units.size());
    ids.push_back(units.substr(at, end - at));
    at = end + 1;
  }
  return ids;
}

bool HasId(const std::vector<std::wstring>& ids, const wchar_t* wanted) {
  for (const std::wstring& id : ids) {
    if (::CompareStringOrdinal(id.c_str(), static_cast<int>(id.size()), wanted, -1, TRUE) ==
        CSTR_EQUAL) {
      return true;
    }
  }
  return false;
}

void Switch(int value) {
  velhal::CallGuarded(0, [&] {
    TouchScreenControlImp control;
    return control.Open() ? control.SetApplicationInstall(value) : 0;
  });
}

}  // namespace

bool TouchScreen::IsTouchDeviceExist() {
  return velhal::CallGuarded(false, [] {
    auto& db = os::device_database();
    GUID hid{};
    DWORD count = 0;
    // One GUID is kept; a "buffer too small" answer (more than one class of the name) still
    // carries the first.
    if (!db.SetupDiClassGuidsFromNameExW(L"HIDCLASS", &hid, 1, &count, nullptr, nullptr) &&
        ::GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
      return false;
    }
    if (count == 0) return false;
    const velhal::UniqueDeviceInfoSet set(db.SetupDiGetClassDevsExW(
        &hid, nullptr, nullptr, DIGCF_PRESENT, nullptr, nullptr, nullptr));
    if (!set.IsValid()) return false;
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof(device);
    for (DWORD index = 0; db.SetupDiEnumDeviceInfo(set.Get(), index, &device); ++index) {
      const std::vector<std::wstring> ids = HardwareIds(set.Get(), device);
      // The virtual HID collection never counts, whatever usages it lists.
      if (HasId(ids, L"HID\\VhidUm&Col01")) continue;
      // HID usage page 0x0D (Digitizer), usage 0x04 (Touch Screen).
      if (HasId(ids, L"HID_DEVICE_UP:000D_U:0004")) return true;
    }
    return false;
  });
}

void TouchScreen::OpenTrifingerDriver() { Switch(1); }

void TouchScreen::CloseTrifingerDriver() { Switch(0); }

TouchScreenControlImp::TouchScreenControlImp()
    : services_(nullptr), instance_(nullptr), com_initialised_(false) {}

// Every use of WMI here, the release of its pointers included, waits for the platform's turn
// (see wmi::Turn), as the library's queries do.
TouchScreenControlImp::~TouchScreenControlImp() {
  if (instance_ != nullptr || services_ != nullptr) {
    const velhal::wmi::Turn turn;
    if (instance_ != nullptr) instance_->Release();
    if (services_ != nullptr) services_->Release();
  }
  if (com_initialised_) os::com().CoUninitialize();
}

int TouchScreenControlImp::Open() {
  return velhal::CallGuarded(0, [&] {
    // S_OK or S_FALSE: one CoUninitialize owed. RPC_E_CHANGED_MODE: the caller's apartment
    // serves, and is not ours to undo.
    if (!com_initialised_) {
      com_initialised_ = SUCCEEDED(os::com().CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    }
    const velhal::wmi::Turn turn;
    if (!turn.granted()) return 0;
    ComPtr<IWbemServices> services = Connect();
    if (!services) {
      WriteDiagnostic("Could not connect name.", kOpen);
      return 0;
    }
    ComPtr<IWbemClassObject> instance = FirstInstance(*services.Get());
    if (!instance) {
      WriteDiagnostic("Could not find the instance.", kOpen);
      return 0;
    }
    if (services_ != nullptr) services_->Release();
    if (instance_ != nullptr) instance_->Release();
    services_ = services.Detach();
    instance_ = instance.Detach();
    return 1;
  });
}

int TouchScreenControlImp::SetApplicationInstall(int value) {
  return velhal::CallGuarded(0, [&] {
    if (services_ == nullptr || instance_ == nullptr) return 0;
    const velhal::wmi::Turn turn;
    if (!turn.granted()) return 0;
    // The name's length counts its terminating NUL (19 units for 18 characters); callers rely
    // on it.
    const Bstr name(kProperty, static_cast<UINT>(std::size(kProperty)));
    if (name.get() == nullptr) {
      Report(L"Error out of memory.\n");
      return 0;
    }
    velhal::Variant current;
    CIMTYPE type = CIM_EMPTY;
    HRESULT hr = instance_->Get(name.get(), 0, current.get(), &type, nullptr);
    if (FAILED(hr)) {
      Report(L"Error %lX: Failed to read property value of %ls.\n", Code(hr), kProperty);
      return 0;
    }
    if (V_VT(current.get()) != VT_BOOL) return 0;  // not the switch this class should have
    // 1 or 0 as given, not VARIANT_TRUE's all ones; callers rely on it.
    V_BOOL(current.get()) = static_cast<VARIANT_BOOL>(value != 0 ? 1 : 0);
    hr = instance_->Put(name.get(), 0, current.get(), type);
    if (FAILED(hr)) {
      Report(L"Error %lX: Failed to set property value of %ls.\n", Code(hr), kProperty);
      return 0;
    }
    hr = services_->PutInstance(instance_, WBEM_FLAG_UPDATE_ONLY, nullptr, nullptr);
    if (FAILED(hr)) {
      Report(L"Failed to save the instance, %ls will not be updated.\n", kProperty);
      return 0;
    }
    return 1;
  });
}
