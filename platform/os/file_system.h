// File-system facility: what the library asks of files it reads by path (attributes and size,
// the version resource). Reading a file's bytes goes through the device-I/O facility.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class FileSystem {
 public:
  virtual DWORD GetFileAttributesW(const wchar_t* path) = 0;
  virtual BOOL GetFileAttributesExW(const wchar_t* path, GET_FILEEX_INFO_LEVELS level,
                                    void* info) = 0;
  virtual DWORD GetFileVersionInfoSizeW(const wchar_t* path, DWORD* handle) = 0;
  virtual BOOL GetFileVersionInfoW(const wchar_t* path, DWORD handle, DWORD size, void* data) = 0;

  static FileSystem& Real() noexcept;

 protected:
  ~FileSystem() = default;
};

inline FileSystem& file_system() noexcept { return Seam<FileSystem>::Get(); }

}  // namespace velhal::os
