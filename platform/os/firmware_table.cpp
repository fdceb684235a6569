// The real backend: kernel32's GetSystemFirmwareTable, looked up by name on first use.
#include "platform/os/firmware_table.h"

namespace velhal::os {
namespace {

using GetSystemFirmwareTableFn = UINT(WINAPI*)(DWORD provider, DWORD id, void* buffer, DWORD size);

// kernel32 is loaded in every process and never unloaded, so the address stays valid.
GetSystemFirmwareTableFn Lookup() noexcept {
  const HMODULE kernel32 = ::GetModuleHandleW(L"kernel32");
  return kernel32 ? reinterpret_cast<GetSystemFirmwareTableFn>(reinterpret_cast<void*>(
                        ::GetProcAddress(kernel32, "GetSystemFirmwareTable")))
                  : nullptr;
}

class RealFirmwareTable final : public FirmwareTable {
 public:
  bool IsAvailable() override { return Function() != nullptr; }
  UINT GetSystemFirmwareTable(DWORD provider, DWORD id, void* buffer, DWORD size) override {
    const GetSystemFirmwareTableFn get = Function();
    if (get == nullptr) {
      ::SetLastError(ERROR_PROC_NOT_FOUND);
      return 0;
    }
    return get(provider, id, buffer, size);
  }

 private:
  static GetSystemFirmwareTableFn Function() noexcept {
    static const GetSystemFirmwareTableFn function = Lookup();
    return function;
  }
};

}  // namespace

FirmwareTable& FirmwareTable::Real() noexcept {
  static RealFirmwareTable backend;
  return backend;
}

}  // namespace velhal::os
