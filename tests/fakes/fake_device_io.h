// Disks and volumes behind the device-I/O facility: each path answers opens and I/O controls
// from a table, volumes report free space. Handles are counted, so a test sees leaks and double
// closes; the last input of each I/O control is kept.
#pragma once

#include "platform/win32.h"

#include <winioctl.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/os/device_io.h"

namespace velhal::testing {

class FakeDeviceIo final : public os::DeviceIo {
 public:
  struct Ioctl {
    BOOL result = TRUE;  // TRUE, FALSE or any other non-zero value a driver may hand back
    DWORD error = 0;     // last error when result is FALSE
    std::vector<BYTE> out;
    std::optional<DWORD> returned;  // bytes reported; out's size when unset
    // Copies what fits a smaller output buffer and succeeds, as the USB hub driver answers its
    // name requests; otherwise a smaller buffer fails.
    bool truncates = false;
    // Answers that depend on the input (such as the battery's information levels): given the
    // input bytes, the answer to give.
    std::function<Ioctl(const std::vector<BYTE>& in)> by_input;
  };
  struct Device {
    DWORD open_error = 0;
    std::map<DWORD, Ioctl> ioctls;
    std::vector<BYTE> data;  // what reads see
  };
  struct OpenCall {
    std::wstring path;
    DWORD access, share, disposition, attributes;
  };

  std::map<std::wstring, Device> devices;      // "\\.\PHYSICALDRIVE0", "\\.\C:", ...
  std::map<std::string, uint64_t> free_bytes;  // "C:" -> total free bytes
  std::vector<OpenCall> opens;
  std::map<DWORD, std::vector<BYTE>> last_input;
  int bad_closes = 0;
  size_t open_handles() const { return handles_.size(); }

  Device& Disk(uint32_t number);
  // A volume "X:" on a device of the given type and number, with free bytes.
  void Volume(char letter, DWORD device_type, DWORD device_number, uint64_t free);
  static Ioctl Answer(std::vector<BYTE> out, std::optional<DWORD> returned = std::nullopt) {
    Ioctl ioctl;
    ioctl.out = std::move(out);
    ioctl.returned = returned;
    return ioctl;
  }
  static Ioctl Failure(DWORD error) {
    Ioctl ioctl;
    ioctl.result = FALSE;
    ioctl.error = error;
    return ioctl;
  }
  static Ioctl Geometry(int64_t cylinders, DWORD tracks, DWORD sectors, DWORD bytes);
  static Ioctl Trim(bool enabled, DWORD returned = sizeof(DEVICE_TRIM_DESCRIPTOR));

  HANDLE CreateFileW(const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                     DWORD disposition, DWORD attributes, HANDLE template_file) override;
  HANDLE CreateFileA(const char* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                     DWORD disposition, DWORD attributes, HANDLE template_file) override;
  BOOL DeviceIoControl(HANDLE device, DWORD code, void* in, DWORD in_size, void* out,
                       DWORD out_size, DWORD* returned, OVERLAPPED* overlapped) override;
  BOOL CloseHandle(HANDLE handle) override;
  DWORD SetFilePointer(HANDLE file, LONG distance_low, LONG* distance_high, DWORD method) override;
  BOOL ReadFile(HANDLE file, void* buffer, DWORD length, DWORD* read,
                OVERLAPPED* overlapped) override;
  BOOL WriteFile(HANDLE file, const void* buffer, DWORD length, DWORD* written,
                 OVERLAPPED* overlapped) override;
  BOOL GetDiskFreeSpaceExA(const char* root, ULARGE_INTEGER* available_to_caller,
                           ULARGE_INTEGER* total, ULARGE_INTEGER* total_free) override;

 private:
  struct Open {
    std::wstring path;
    DWORD access;
    uint64_t position = 0;
  };
  Open* Lookup(HANDLE handle);

  std::map<HANDLE, Open> handles_;
  uintptr_t next_ = 0x4400;
};

}  // namespace velhal::testing
