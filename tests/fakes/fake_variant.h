// A value as WMI would hand it over: its VARIANT form and its CIM type.
#pragma once

#include "platform/win32.h"

#include <oaidl.h>
#include <oleauto.h>
#include <wbemcli.h>

#include <cstdint>
#include <string>
#include <vector>

namespace velhal::testing {

struct FakeValue {
  VARTYPE vt = VT_EMPTY;
  CIMTYPE cim = CIM_EMPTY;
  std::wstring text;
  int64_t integer = 0;
  std::vector<uint8_t> bytes;

  static FakeValue Text(std::wstring value) {
    FakeValue v = Of(VT_BSTR, CIM_STRING);
    v.text = std::move(value);
    return v;
  }
  // WMI's uint32 and uint16 arrive as VT_I4, uint64 as decimal text.
  static FakeValue UInt32(uint32_t value) {
    FakeValue v = Of(VT_I4, CIM_UINT32);
    v.integer = static_cast<int32_t>(value);
    return v;
  }
  static FakeValue SInt32(int32_t value) {
    FakeValue v = Of(VT_I4, CIM_SINT32);
    v.integer = value;
    return v;
  }
  static FakeValue UInt64(uint64_t value) {
    FakeValue v = Of(VT_BSTR, CIM_UINT64);
    v.text = std::to_wstring(value);
    return v;
  }
  static FakeValue Bool(bool value) {
    FakeValue v = Of(VT_BOOL, CIM_BOOLEAN);
    v.integer = value ? 1 : 0;
    return v;
  }
  static FakeValue Null(CIMTYPE cim = CIM_STRING) { return Of(VT_NULL, cim); }
  static FakeValue Bytes(std::vector<uint8_t> value) {
    FakeValue v = Of(VT_ARRAY | VT_UI1, CIM_UINT8 | CIM_FLAG_ARRAY);
    v.bytes = std::move(value);
    return v;
  }
  static FakeValue Of(VARTYPE type, CIMTYPE cim_type) {
    FakeValue v;
    v.vt = type;
    v.cim = cim_type;
    return v;
  }

  // Fills a VARIANT the caller clears with VariantClear.
  void ToVariant(VARIANT* out) const {
    ::VariantInit(out);
    V_VT(out) = vt;
    switch (vt) {
      case VT_BSTR:
        V_BSTR(out) = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        break;
      case VT_I4: V_I4(out) = static_cast<LONG>(integer); break;
      case VT_BOOL: V_BOOL(out) = integer ? VARIANT_TRUE : VARIANT_FALSE; break;
      case VT_ARRAY | VT_UI1: {
        SAFEARRAY* array = ::SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
        void* data = nullptr;
        ::SafeArrayAccessData(array, &data);
        if (!bytes.empty()) std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t*>(data));
        ::SafeArrayUnaccessData(array);
        V_ARRAY(out) = array;
        break;
      }
      default: break;
    }
  }
};

}  // namespace velhal::testing
