// Which Windows the library runs on: the kernel's version and the registry's product name.
#include "platform/win32.h"

#include <string>

#include "platform/read_reg.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

// GetVersionExW answers what the manifest allows; RtlGetVersion answers what the system is.
OSVERSIONINFOW KernelVersion() {
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  using RtlGetVersionFn = LONG(WINAPI*)(OSVERSIONINFOW*);
  const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
  const auto rtl_get_version =
      ntdll ? reinterpret_cast<RtlGetVersionFn>(
                  reinterpret_cast<void*>(::GetProcAddress(ntdll, "RtlGetVersion")))
            : nullptr;
  if (rtl_get_version == nullptr || rtl_get_version(&version) != 0) version = {};
  return version;
}

}  // namespace

Node WindowsSection() {
  const OSVERSIONINFOW version = KernelVersion();
  std::wstring product;
  if (!ReadReg::ReadLocalMachineRegRZ(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",
                                      L"ProductName", product)) {
    product.clear();
  }
  return Object("windows", "Windows",
                {Number("major", "major version", version.dwMajorVersion),
                 Number("minor", "minor version", version.dwMinorVersion),
                 Number("build", "build", version.dwBuildNumber),
                 Text("productName", "product", ToUtf8(product))});
}

}  // namespace halinfo
