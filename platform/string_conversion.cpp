#include "platform/win32.h"

#include "platform/string_conversion.h"

#include <climits>

namespace {

constexpr DWORD kNoFlags = 0;

// MultiByteToWideChar takes an int length; longer input is refused rather than truncated.
bool FitsInInt(size_t length) { return length <= static_cast<size_t>(INT_MAX); }

}  // namespace

std::wstring AnsiToWide(const std::string& text) {
  try {
    if (!FitsInInt(text.size())) return {};
    const int source_length = static_cast<int>(text.size());
    const int length =
        ::MultiByteToWideChar(CP_ACP, kNoFlags, text.data(), source_length, nullptr, 0);
    if (length <= 0) return {};
    std::wstring result(static_cast<size_t>(length), L'\0');
    if (::MultiByteToWideChar(CP_ACP, kNoFlags, text.data(), source_length, result.data(),
                              length) != length) {
      return {};
    }
    return result;
  } catch (...) {
    return {};
  }
}

std::string WideToAnsi(const std::wstring& text) {
  try {
    if (!FitsInInt(text.size())) return {};
    const int source_length = static_cast<int>(text.size());
    const int length = ::WideCharToMultiByte(CP_ACP, kNoFlags, text.data(), source_length,
                                             nullptr, 0, nullptr, nullptr);
    if (length <= 0) return {};
    std::string result(static_cast<size_t>(length), '\0');
    if (::WideCharToMultiByte(CP_ACP, kNoFlags, text.data(), source_length, result.data(), length,
                              nullptr, nullptr) != length) {
      return {};
    }
    return result;
  } catch (...) {
    return {};
  }
}
