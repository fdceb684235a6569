// File-system facility: what the library asks of files it reads by path.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class FileSystem {
 public:
  virtual DWORD GetFileAttributesW(const wchar_t* path) = 0;

  static FileSystem& Real() noexcept;

 protected:
  ~FileSystem() = default;
};

inline FileSystem& file_system() noexcept { return Seam<FileSystem>::Get(); }

}  // namespace velhal::os
