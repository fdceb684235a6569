// Files by path as a test sets them: attributes, size and version resource. A path the table
// does not hold is answered by the real file system, so tests that write real scratch files
// (the product-adapter files) keep working beside it.
#pragma once

#include "platform/win32.h"

#include <winver.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "platform/os/file_system.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {

class FakeFileSystem final : public os::FileSystem {
 public:
  struct File {
    DWORD attributes = FILE_ATTRIBUTE_NORMAL;
    uint64_t size = 0;
    std::vector<BYTE> version_info;  // the resource GetFileVersionInfoW copies; empty: none
  };

  std::map<std::wstring, File> files;

  DWORD GetFileAttributesW(const wchar_t* path) override {
    const File* file = Find(path);
    return file ? file->attributes : ::GetFileAttributesW(path);
  }
  BOOL GetFileAttributesExW(const wchar_t* path, GET_FILEEX_INFO_LEVELS level,
                            void* info) override {
    const File* file = Find(path);
    if (file == nullptr) return ::GetFileAttributesExW(path, level, info);
    auto* data = static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(info);
    *data = {};
    data->dwFileAttributes = file->attributes;
    data->nFileSizeHigh = static_cast<DWORD>(file->size >> 32);
    data->nFileSizeLow = static_cast<DWORD>(file->size);
    return TRUE;
  }
  DWORD GetFileVersionInfoSizeW(const wchar_t* path, DWORD* handle) override {
    const File* file = Find(path);
    if (file == nullptr) return ::GetFileVersionInfoSizeW(path, handle);
    *handle = 0;
    if (file->version_info.empty()) {
      ::SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
      return 0;
    }
    return static_cast<DWORD>(file->version_info.size());
  }
  BOOL GetFileVersionInfoW(const wchar_t* path, DWORD handle, DWORD size, void* data) override {
    const File* file = Find(path);
    if (file == nullptr) return ::GetFileVersionInfoW(path, handle, size, data);
    if (file->version_info.empty()) return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
    const size_t copied = std::min<size_t>(size, file->version_info.size());
    std::memcpy(data, file->version_info.data(), copied);
    return TRUE;
  }

 private:
  const File* Find(const wchar_t* path) const {
    const auto found = files.find(path ? path : L"");
    return found == files.end() ? nullptr : &found->second;
  }
};

}  // namespace velhal::testing
