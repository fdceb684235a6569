// The WMI namespaces the library queries, written once.
#pragma once

namespace velhal::wmi {

inline constexpr wchar_t kCimV2[] = L"ROOT\\CIMV2";  // inventory classes: Win32_*
inline constexpr wchar_t kRootWmi[] = L"ROOT\\WMI";  // battery, firmware and thermal classes
inline constexpr wchar_t kStorage[] = L"ROOT\\Microsoft\\Windows\\Storage";  // MSFT_PhysicalDisk

}  // namespace velhal::wmi
