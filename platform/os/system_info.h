// System-information facility: what the kernel and the processor say about the machine itself
// (memory status, CPUID, the kernel's version, the native architecture, the computer's name,
// the time since start) and about this process's address space. RtlGetVersion and
// IsWow64Process2 are bound at run time: without them the calls fail (STATUS_PROCEDURE_NOT_FOUND,
// FALSE with ERROR_PROC_NOT_FOUND).
#pragma once

#include "platform/win32.h"
#include "platform/os/seam.h"

namespace velhal::os {

class SystemInfo {
 public:
  virtual BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status) = 0;
  // CPUID of leaf into eax, ebx, ecx, edx.
  virtual void Cpuid(int registers[4], int leaf) = 0;
  virtual SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* region,
                              SIZE_T size) = 0;
  // The version the kernel reports, untouched by the compatibility shims of GetVersionExW.
  virtual LONG RtlGetVersion(OSVERSIONINFOEXW* version) = 0;
  virtual void GetNativeSystemInfo(SYSTEM_INFO* info) = 0;
  virtual BOOL IsWow64Process2(HANDLE process, USHORT* process_machine, USHORT* native_machine) = 0;
  virtual BOOL GetComputerNameExW(COMPUTER_NAME_FORMAT format, wchar_t* buffer, DWORD* size) = 0;
  virtual ULONGLONG GetTickCount64() = 0;

  static SystemInfo& Real() noexcept;

 protected:
  ~SystemInfo() = default;
};

inline SystemInfo& system_info() noexcept { return Seam<SystemInfo>::Get(); }

}  // namespace velhal::os
