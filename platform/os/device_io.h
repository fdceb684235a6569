// File and device I/O facility: opening devices and volumes, I/O controls, reads and writes,
// free space.
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class DeviceIo {
 public:
  virtual HANDLE CreateFileW(const wchar_t* path, DWORD access, DWORD share,
                             SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD attributes,
                             HANDLE template_file) = 0;
  virtual HANDLE CreateFileA(const char* path, DWORD access, DWORD share,
                             SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD attributes,
                             HANDLE template_file) = 0;
  virtual BOOL DeviceIoControl(HANDLE device, DWORD code, void* in, DWORD in_size, void* out,
                               DWORD out_size, DWORD* returned, OVERLAPPED* overlapped) = 0;
  virtual BOOL CloseHandle(HANDLE handle) = 0;
  virtual DWORD SetFilePointer(HANDLE file, LONG distance_low, LONG* distance_high,
                               DWORD method) = 0;
  virtual BOOL ReadFile(HANDLE file, void* buffer, DWORD length, DWORD* read,
                        OVERLAPPED* overlapped) = 0;
  virtual BOOL WriteFile(HANDLE file, const void* buffer, DWORD length, DWORD* written,
                         OVERLAPPED* overlapped) = 0;
  virtual BOOL GetDiskFreeSpaceExA(const char* root, ULARGE_INTEGER* available_to_caller,
                                   ULARGE_INTEGER* total, ULARGE_INTEGER* total_free) = 0;

  static DeviceIo& Real() noexcept;

 protected:
  ~DeviceIo() = default;
};

inline DeviceIo& device_io() noexcept { return Seam<DeviceIo>::Get(); }

}  // namespace velhal::os

namespace velhal {

struct FileHandleTraits {
  using Handle = HANDLE;
  static HANDLE Invalid() noexcept { return INVALID_HANDLE_VALUE; }
  static bool IsValid(HANDLE handle) noexcept {
    return handle != INVALID_HANDLE_VALUE && handle != nullptr;
  }
  static void Close(HANDLE handle) noexcept { os::device_io().CloseHandle(handle); }
};
using UniqueFileHandle = UniqueResource<FileHandleTraits>;

}  // namespace velhal
