// Device class 4: the graphics adapters, taken once into the caller's GpAdapterList by GpInit,
// and live display readings (metrics, display mode and configuration, WMI).
#pragma once

#include <optional>
#include <span>
#include <string>

#include "hal/class_dispatch.h"
#include "hal/hal_api.h"

namespace velhal::hal {

const ClassModule& GraphicsModule();

// The monitor's PNP instance path, as class 16 and VideoCard ask WMI for it.
inline constexpr wchar_t kMonitorPnpIdQuery[] =
    L"SELECT PNPDeviceID FROM Win32_DesktopMonitor WHERE PNPDeviceID IS NOT NULL";

// The records of a block as a caller hands it back; nullopt when its size field is not
// 8 + 552 x count, or the memory it claims is not committed and readable, so that a damaged
// block is a failed query rather than a fault.
std::optional<std::span<const GpAdapterEntry>> AdapterRecords(const GpAdapterList* block);

// A record's name; nullopt when the field holds no NUL within its 260 characters.
std::optional<std::wstring> AdapterName(const GpAdapterEntry& record);

}  // namespace velhal::hal
