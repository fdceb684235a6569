#include "platform/win32.h"

#include "tools/halinfo/output.h"

#include <cstdio>

namespace halinfo {

std::string ToUtf8(std::wstring_view text) {
  if (text.empty()) return {};
  const int length = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                           nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<size_t>(length > 0 ? length : 0), '\0');
  if (length > 0) {
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(),
                          length, nullptr, nullptr);
  }
  return result;
}

std::wstring FromUtf8(std::string_view text) {
  if (text.empty()) return {};
  const int length =
      ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring result(static_cast<size_t>(length > 0 ? length : 0), L'\0');
  if (length > 0) {
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(),
                          length);
  }
  return result;
}

void Print(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

void PrintError(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

std::string SystemMessage(unsigned long error) {
  wchar_t* buffer = nullptr;
  const DWORD length = ::FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, error, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
  std::wstring message = length > 0 && buffer != nullptr ? std::wstring(buffer, length) : L"";
  if (buffer != nullptr) ::LocalFree(buffer);
  while (!message.empty() && (message.back() == L'\n' || message.back() == L'\r' ||
                              message.back() == L' ')) {
    message.pop_back();
  }
  return ToUtf8(message);
}

}  // namespace halinfo
