#include "platform/win32.h"

#include "platform/file_process.h"

#include <cstdio>
#include <optional>
#include <vector>

#include "core/version_resource.h"
#include "platform/boundary.h"
#include "platform/os/device_io.h"
#include "platform/os/file_system.h"
#include "platform/os/module.h"

namespace {

constexpr size_t kMaxTextBytes = 1 << 20;
constexpr DWORD kReadChunk = 64 * 1024;

// A function of this library, to find the module it lives in.
void Anchor() {}

std::wstring ModulePath(HMODULE module) {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = velhal::os::module().GetModuleFileNameW(module, path.data(),
                                                                 static_cast<DWORD>(path.size()));
    if (length == 0) return {};
    if (length < path.size()) return path.substr(0, length);
    if (path.size() >= 32768) return {};  // a full buffer means truncated: try a larger one
    path.resize(path.size() * 2);
  }
}

std::optional<WIN32_FILE_ATTRIBUTE_DATA> FileAttributes(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!velhal::os::file_system().GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) ||
      (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
    return std::nullopt;
  }
  return data;
}

std::optional<velhal::version_resource::FixedVersions> FixedVersions(const std::wstring& path) {
  auto& files = velhal::os::file_system();
  DWORD ignored = 0;
  const DWORD size = files.GetFileVersionInfoSizeW(path.c_str(), &ignored);
  if (size == 0) return std::nullopt;
  std::vector<uint8_t> block(size);
  if (!files.GetFileVersionInfoW(path.c_str(), 0, size, block.data())) return std::nullopt;
  return velhal::version_resource::ParseFixedVersions(block.data(), block.size());
}

std::wstring VersionText(const std::array<uint16_t, 4>& parts) {
  wchar_t text[24] = {};
  std::swprintf(text, 24, L"%u.%u.%u.%u", parts[0], parts[1], parts[2], parts[3]);
  return text;
}

// Reads the whole file, up to one byte more than the limit; 0 or the failing call's error.
DWORD ReadBytes(const std::wstring& path, std::vector<char>& bytes) {
  auto& io = velhal::os::device_io();
  const velhal::UniqueFileHandle file(
      io.CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                     OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.IsValid()) return ::GetLastError();
  for (;;) {
    const size_t at = bytes.size();
    bytes.resize(at + kReadChunk);
    DWORD read = 0;
    if (!io.ReadFile(file.Get(), bytes.data() + at, kReadChunk, &read, nullptr)) {
      return ::GetLastError();
    }
    bytes.resize(at + read);
    if (read == 0) return ERROR_SUCCESS;
    if (bytes.size() > kMaxTextBytes) return ERROR_FILE_TOO_LARGE;
  }
}

bool StartsWith(const std::vector<char>& bytes, std::initializer_list<unsigned char> mark) {
  if (bytes.size() < mark.size()) return false;
  size_t i = 0;
  for (const unsigned char byte : mark) {
    if (static_cast<unsigned char>(bytes[i++]) != byte) return false;
  }
  return true;
}

std::optional<std::wstring> Utf16(const std::vector<char>& bytes, bool big_endian) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  std::wstring text;
  for (size_t i = 2; i < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    text.push_back(static_cast<wchar_t>(big_endian ? first << 8 | second : second << 8 | first));
  }
  return text;
}

std::optional<std::wstring> Utf8(const char* data, size_t size) {
  if (size == 0) return std::wstring();
  const int length = ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, data,
                                           static_cast<int>(size), nullptr, 0);
  if (length <= 0) return std::nullopt;
  std::wstring text(static_cast<size_t>(length), L'\0');
  ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, data, static_cast<int>(size), text.data(),
                        length);
  return text;
}

std::optional<std::wstring> Decode(const std::vector<char>& bytes) {
  if (StartsWith(bytes, {0xFF, 0xFE})) return Utf16(bytes, false);
  if (StartsWith(bytes, {0xFE, 0xFF})) return Utf16(bytes, true);
  const size_t skipped = StartsWith(bytes, {0xEF, 0xBB, 0xBF}) ? 3 : 0;
  return Utf8(bytes.data() + skipped, bytes.size() - skipped);
}

}  // namespace

std::wstring FileProcess::GetLibraryFolder() {
  return velhal::CallGuarded(std::wstring{}, []() -> std::wstring {
    HMODULE self = nullptr;
    if (!velhal::os::module().GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<const wchar_t*>(&Anchor), &self)) {
      return {};
    }
    const std::wstring path = ModulePath(self);
    const size_t slash = path.find_last_of(L"\\/");
    return slash == std::wstring::npos ? std::wstring{} : path.substr(0, slash + 1);
  });
}

bool FileProcess::IsFileExist(const std::wstring& path) {
  return velhal::CallGuarded(false, [&] {
    const DWORD attributes = velhal::os::file_system().GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
  });
}

uint64_t FileProcess::GetFileSize(const std::wstring& path) {
  return velhal::CallGuarded(uint64_t{0}, [&]() -> uint64_t {
    const std::optional<WIN32_FILE_ATTRIBUTE_DATA> data = FileAttributes(path);
    if (!data) return 0;
    return static_cast<uint64_t>(data->nFileSizeHigh) << 32 | data->nFileSizeLow;
  });
}

std::wstring FileProcess::GetFileVersion(const std::wstring& path) {
  return velhal::CallGuarded(std::wstring{}, [&]() -> std::wstring {
    const auto versions = FixedVersions(path);
    return versions ? VersionText(versions->file) : std::wstring{};
  });
}

std::wstring FileProcess::GetProductVersion(const std::wstring& path) {
  return velhal::CallGuarded(std::wstring{}, [&]() -> std::wstring {
    const auto versions = FixedVersions(path);
    return versions ? VersionText(versions->product) : std::wstring{};
  });
}

unsigned long FileProcess::ReadTextFile(const std::wstring& path, std::wstring& text) {
  text.clear();
  return velhal::CallGuarded(static_cast<unsigned long>(ERROR_NOT_ENOUGH_MEMORY),
                             [&]() -> unsigned long {
                               std::vector<char> bytes;
                               const DWORD error = ReadBytes(path, bytes);
                               if (error != ERROR_SUCCESS) return error;
                               std::optional<std::wstring> decoded = Decode(bytes);
                               if (!decoded) return ERROR_NO_UNICODE_TRANSLATION;
                               text = std::move(*decoded);
                               return ERROR_SUCCESS;
                             });
}
