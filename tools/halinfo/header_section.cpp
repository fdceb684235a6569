#include "platform/win32.h"

#include "tools/halinfo/header_section.h"

#include <vector>

#include "platform/read_reg.h"
#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

std::wstring ModulePath(HMODULE module) {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0) return {};
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

std::string FileVersion(const std::wstring& path) {
  DWORD ignored = 0;
  const DWORD size = ::GetFileVersionInfoSizeW(path.c_str(), &ignored);
  if (size == 0) return {};
  std::vector<BYTE> data(size);
  if (!::GetFileVersionInfoW(path.c_str(), 0, size, data.data())) return {};
  VS_FIXEDFILEINFO* info = nullptr;
  UINT info_size = 0;
  if (!::VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &info_size) ||
      info == nullptr || info_size < sizeof(VS_FIXEDFILEINFO)) {
    return {};
  }
  return std::to_string(HIWORD(info->dwFileVersionMS)) + "." +
         std::to_string(LOWORD(info->dwFileVersionMS)) + "." +
         std::to_string(HIWORD(info->dwFileVersionLS)) + "." +
         std::to_string(LOWORD(info->dwFileVersionLS));
}

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

HeaderSection HeaderSection::Collect(void* library_module) {
  HeaderSection header;
  const std::wstring path = ModulePath(static_cast<HMODULE>(library_module));
  header.library_path = ToUtf8(path);
  header.library_version = FileVersion(path);

  const OSVERSIONINFOW version = KernelVersion();
  header.windows_major = version.dwMajorVersion;
  header.windows_minor = version.dwMinorVersion;
  header.windows_build = version.dwBuildNumber;

  std::wstring product;
  if (ReadReg::ReadLocalMachineRegRZ(L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",
                                     L"ProductName", product)) {
    header.windows_product = ToUtf8(product);
  }
  return header;
}

void HeaderSection::AddTo(nlohmann::ordered_json& document) const {
  document["library"] = {{"name", "VelHal"}, {"version", library_version}, {"path", library_path}};
  document["windows"] = {{"major", windows_major},
                         {"minor", windows_minor},
                         {"build", windows_build},
                         {"productName", windows_product}};
}

std::string HeaderSection::ToText() const {
  std::string text = "VelHal " + (library_version.empty() ? "(unknown version)" : library_version) +
                     "  " + library_path + "\n";
  text += "Windows " + std::to_string(windows_major) + "." + std::to_string(windows_minor) +
          " build " + std::to_string(windows_build);
  if (!windows_product.empty()) text += "  (" + windows_product + ")";
  text += "\n";
  return text;
}

}  // namespace halinfo
