#include "platform/wmi_variant.h"

#include <oleauto.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace velhal::wmi {
namespace {

// The integer a VARIANT holds, widened without loss; nullopt for non-integer types.
struct Integer {
  bool is_signed;
  int64_t signed_value;
  uint64_t unsigned_value;
};

std::optional<Integer> IntegerOf(const VARIANT& v) {
  switch (V_VT(&v)) {
    case VT_I1: return Integer{true, V_I1(&v), 0};
    case VT_I2: return Integer{true, V_I2(&v), 0};
    case VT_I4: return Integer{true, V_I4(&v), 0};
    case VT_INT: return Integer{true, V_INT(&v), 0};
    case VT_I8: return Integer{true, V_I8(&v), 0};
    case VT_UI1: return Integer{false, 0, V_UI1(&v)};
    case VT_UI2: return Integer{false, 0, V_UI2(&v)};
    case VT_UI4: return Integer{false, 0, V_UI4(&v)};
    case VT_UINT: return Integer{false, 0, V_UINT(&v)};
    case VT_UI8: return Integer{false, 0, V_UI8(&v)};
    default: return std::nullopt;
  }
}

std::wstring_view BstrText(const VARIANT& v) {
  const BSTR text = V_BSTR(&v);
  return text ? std::wstring_view(text, ::SysStringLen(text)) : std::wstring_view();
}

// Plain decimal digits only: no sign, no blanks, no overflow.
std::optional<uint32_t> ParseDecimalUInt32(std::wstring_view text) {
  if (text.empty()) return std::nullopt;
  uint64_t value = 0;
  for (wchar_t c : text) {
    if (c < L'0' || c > L'9') return std::nullopt;
    value = value * 10 + static_cast<uint64_t>(c - L'0');
    if (value > std::numeric_limits<uint32_t>::max()) return std::nullopt;
  }
  return static_cast<uint32_t>(value);
}

}  // namespace

void AppendText(const VARIANT& value, std::vector<std::wstring>& out) {
  if (V_VT(&value) == VT_BSTR) {
    out.emplace_back(BstrText(value));
  } else if (V_VT(&value) == VT_BOOL) {
    out.emplace_back(V_BOOL(&value) != VARIANT_FALSE ? L"TRUE" : L"FALSE");
  } else if (const auto integer = IntegerOf(value)) {
    out.push_back(integer->is_signed ? std::to_wstring(integer->signed_value)
                                     : std::to_wstring(integer->unsigned_value));
  }
}

void AppendUInt32(const VARIANT& value, std::vector<unsigned int>& out) {
  if (V_VT(&value) == VT_BSTR) {
    if (const auto parsed = ParseDecimalUInt32(BstrText(value))) out.push_back(*parsed);
  } else if (V_VT(&value) == VT_BOOL) {
    out.push_back(V_BOOL(&value) != VARIANT_FALSE ? 1u : 0u);
  } else if (const auto integer = IntegerOf(value)) {
    if (V_VT(&value) == VT_I8) {
      if (integer->signed_value >= 0 && integer->signed_value <= UINT32_MAX) {
        out.push_back(static_cast<unsigned int>(integer->signed_value));
      }
    } else if (V_VT(&value) == VT_UI8) {
      if (integer->unsigned_value <= UINT32_MAX) {
        out.push_back(static_cast<unsigned int>(integer->unsigned_value));
      }
    } else if (integer->is_signed) {
      out.push_back(static_cast<unsigned int>(static_cast<int32_t>(integer->signed_value)));
    } else {
      out.push_back(static_cast<unsigned int>(integer->unsigned_value));
    }
  }
}

void AppendBytes(const VARIANT& value, std::vector<unsigned char>& out) {
  const VARTYPE type = V_VT(&value);
  if (type == VT_UI1) {
    out.push_back(V_UI1(&value));
    return;
  }
  if (type != (VT_ARRAY | VT_UI1) && type != (VT_ARRAY | VT_I1)) return;
  SAFEARRAY* array = V_ARRAY(&value);
  if (array == nullptr || ::SafeArrayGetDim(array) != 1 || ::SafeArrayGetElemsize(array) != 1) {
    return;
  }
  LONG lower = 0;
  LONG upper = -1;
  if (FAILED(::SafeArrayGetLBound(array, 1, &lower)) ||
      FAILED(::SafeArrayGetUBound(array, 1, &upper)) || upper < lower) {
    return;
  }
  void* data = nullptr;
  if (FAILED(::SafeArrayAccessData(array, &data))) return;
  const auto* bytes = static_cast<const unsigned char*>(data);
  const size_t count = static_cast<size_t>(static_cast<int64_t>(upper) - lower + 1);
  try {
    out.insert(out.end(), bytes, bytes + count);
  } catch (...) {
    ::SafeArrayUnaccessData(array);
    throw;
  }
  ::SafeArrayUnaccessData(array);
}

}  // namespace velhal::wmi
