// Small pieces every fake and many tests share.
#pragma once

#include "platform/win32.h"

#include <cstring>
#include <cwctype>
#include <string>
#include <vector>

namespace velhal::testing {

// A Win32 failure as the system reports one: FALSE with the thread's last error set.
inline BOOL Fail(DWORD error) {
  ::SetLastError(error);
  return FALSE;
}

// Lower case for comparisons that Windows makes without regard to case (registry paths,
// service names, WMI property names).
inline std::wstring Fold(std::wstring text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(std::towlower(c));
  return text;
}
inline bool EqualsIgnoringCase(const std::wstring& a, const std::wstring& b) {
  return Fold(a) == Fold(b);
}

// The bytes of a plain structure, as a driver or the registry would hand them over.
template <class T>
std::vector<BYTE> Bytes(const T& value) {
  std::vector<BYTE> bytes(sizeof(T));
  std::memcpy(bytes.data(), &value, sizeof(T));
  return bytes;
}

// UTF-16 text as bytes, with or without a terminating NUL.
inline std::vector<BYTE> Utf16Bytes(const std::wstring& text, bool terminated = true) {
  std::vector<BYTE> bytes((text.size() + (terminated ? 1 : 0)) * sizeof(wchar_t), 0);
  std::memcpy(bytes.data(), text.data(), text.size() * sizeof(wchar_t));
  return bytes;
}

}  // namespace velhal::testing
