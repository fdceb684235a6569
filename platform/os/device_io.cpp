// The real backend: each member forwards to the Win32 function of the same name.
#include "platform/os/device_io.h"

namespace velhal::os {
namespace {

class RealDeviceIo final : public DeviceIo {
 public:
  HANDLE CreateFileW(const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                     DWORD disposition, DWORD attributes, HANDLE template_file) override {
    return ::CreateFileW(path, access, share, security, disposition, attributes, template_file);
  }
  HANDLE CreateFileA(const char* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                     DWORD disposition, DWORD attributes, HANDLE template_file) override {
    return ::CreateFileA(path, access, share, security, disposition, attributes, template_file);
  }
  BOOL DeviceIoControl(HANDLE device, DWORD code, void* in, DWORD in_size, void* out,
                       DWORD out_size, DWORD* returned, OVERLAPPED* overlapped) override {
    return ::DeviceIoControl(device, code, in, in_size, out, out_size, returned, overlapped);
  }
  BOOL CloseHandle(HANDLE handle) override { return ::CloseHandle(handle); }
  DWORD SetFilePointer(HANDLE file, LONG distance_low, LONG* distance_high, DWORD method) override {
    return ::SetFilePointer(file, distance_low, distance_high, method);
  }
  BOOL ReadFile(HANDLE file, void* buffer, DWORD length, DWORD* read,
                OVERLAPPED* overlapped) override {
    return ::ReadFile(file, buffer, length, read, overlapped);
  }
  BOOL WriteFile(HANDLE file, const void* buffer, DWORD length, DWORD* written,
                 OVERLAPPED* overlapped) override {
    return ::WriteFile(file, buffer, length, written, overlapped);
  }
  BOOL GetDiskFreeSpaceExA(const char* root, ULARGE_INTEGER* available_to_caller,
                           ULARGE_INTEGER* total, ULARGE_INTEGER* total_free) override {
    return ::GetDiskFreeSpaceExA(root, available_to_caller, total, total_free);
  }
};

}  // namespace

DeviceIo& DeviceIo::Real() noexcept {
  static RealDeviceIo backend;
  return backend;
}

}  // namespace velhal::os
