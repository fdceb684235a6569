#ifdef _WIN32
#include "platform/win32.h"
#endif

#include "tools/halinfo/output.h"

#include <cstdint>
#include <cstdio>

namespace halinfo {

void Print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

void PrintError(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); }

#ifdef _WIN32

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

namespace {

std::wstring ToWide(UINT code_page, std::string_view text) {
  if (text.empty()) return {};
  const int length = ::MultiByteToWideChar(code_page, 0, text.data(),
                                           static_cast<int>(text.size()), nullptr, 0);
  std::wstring result(static_cast<size_t>(length > 0 ? length : 0), L'\0');
  if (length > 0) {
    ::MultiByteToWideChar(code_page, 0, text.data(), static_cast<int>(text.size()), result.data(),
                          length);
  }
  return result;
}

}  // namespace

std::wstring FromUtf8(std::string_view text) { return ToWide(CP_UTF8, text); }
std::wstring FromAnsi(std::string_view text) { return ToWide(CP_ACP, text); }

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

#else

std::string ToUtf8(std::wstring_view text) {
  std::string out;
  for (const wchar_t c : text) {
    const uint32_t cp = static_cast<uint32_t>(c);
    if (cp < 0x80) {
      out += static_cast<char>(cp);
    } else if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
      out += static_cast<char>(0xE0 | (cp >> 12));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (cp >> 18));
      out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  return out;
}

// Windows-1252: Latin-1 but for 0x80-0x9F; the five unassigned bytes map through unchanged,
// as Windows maps them.
std::wstring FromAnsi(std::string_view text) {
  static constexpr char16_t kHigh[32] = {
      0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  std::wstring out;
  out.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<uint8_t>(c);
    out += static_cast<wchar_t>(byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80] : byte);
  }
  return out;
}

#endif

}  // namespace halinfo
