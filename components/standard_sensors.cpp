#include "components/standard_sensors.h"

#include <pdh.h>
#include <pdhmsg.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <optional>
#include <vector>

#include "hal/battery_driver.h"
#include "platform/os/module.h"
#include "platform/wmi_namespaces.h"
#include "platform/wmi_query.h"

namespace velhal::sensors {
namespace {

// ACPI reports thermal zones in tenths of a kelvin; 0 is firmware with no reading.
constexpr wchar_t kThermalZoneQuery[] =
    L"SELECT CurrentTemperature FROM MSAcpi_ThermalZoneTemperature";
// The same zones as performance counters, in whole kelvin, readable without administrator
// rights. English names, so that a localised Windows finds them too.
constexpr wchar_t kThermalZoneCounter[] = L"\\Thermal Zone Information(*)\\Temperature";

int TenthsOfKelvinToCelsius(unsigned int tenths) {
  return static_cast<int>(std::lround((static_cast<double>(tenths) - 2731.5) / 10.0));
}

// PDH is bound at run time: the library then loads it only where WMI gave no zone.
using OpenQueryFn = PDH_STATUS(WINAPI*)(const wchar_t*, DWORD_PTR, PDH_HQUERY*);
using AddEnglishCounterFn = PDH_STATUS(WINAPI*)(PDH_HQUERY, const wchar_t*, DWORD_PTR,
                                                PDH_HCOUNTER*);
using CollectQueryDataFn = PDH_STATUS(WINAPI*)(PDH_HQUERY);
using GetFormattedCounterArrayFn = PDH_STATUS(WINAPI*)(PDH_HCOUNTER, DWORD, DWORD*, DWORD*,
                                                       PDH_FMT_COUNTERVALUE_ITEM_W*);
using CloseQueryFn = PDH_STATUS(WINAPI*)(PDH_HQUERY);

template <class Function>
Function Bind(HMODULE library, const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(os::module().GetProcAddress(library, name)));
}

// Every instance of the counter, in PDH's order; an instance without valid data is nullopt.
std::vector<std::optional<LONG>> ReadInstances(GetFormattedCounterArrayFn read,
                                               PDH_HCOUNTER counter) {
  DWORD size = 0;
  DWORD count = 0;
  if (read(counter, PDH_FMT_LONG, &size, &count, nullptr) !=
      static_cast<PDH_STATUS>(PDH_MORE_DATA)) {
    return {};
  }
  // Whole items, so that the array is aligned; the instance names follow it in the buffer.
  std::vector<PDH_FMT_COUNTERVALUE_ITEM_W> items(size / sizeof(PDH_FMT_COUNTERVALUE_ITEM_W) + 1);
  size = static_cast<DWORD>(items.size() * sizeof(PDH_FMT_COUNTERVALUE_ITEM_W));
  if (read(counter, PDH_FMT_LONG, &size, &count, items.data()) != ERROR_SUCCESS) return {};
  std::vector<std::optional<LONG>> values;
  for (DWORD i = 0; i < count && i < items.size(); ++i) {
    const PDH_FMT_COUNTERVALUE& value = items[i].FmtValue;
    const bool valid =
        value.CStatus == PDH_CSTATUS_VALID_DATA || value.CStatus == PDH_CSTATUS_NEW_DATA;
    values.push_back(valid ? std::optional(value.longValue) : std::nullopt);
  }
  return values;
}

std::vector<std::optional<LONG>> ThermalZoneCounters() {
  const UniqueModule pdh(
      os::module().LoadLibraryExW(L"pdh.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
  if (!pdh.IsValid()) return {};
  const auto open = Bind<OpenQueryFn>(pdh.Get(), "PdhOpenQueryW");
  const auto add = Bind<AddEnglishCounterFn>(pdh.Get(), "PdhAddEnglishCounterW");
  const auto collect = Bind<CollectQueryDataFn>(pdh.Get(), "PdhCollectQueryData");
  const auto read = Bind<GetFormattedCounterArrayFn>(pdh.Get(), "PdhGetFormattedCounterArrayW");
  const auto close = Bind<CloseQueryFn>(pdh.Get(), "PdhCloseQuery");
  if (!open || !add || !collect || !read || !close) return {};
  struct Query {
    CloseQueryFn close;
    PDH_HQUERY handle = nullptr;
    ~Query() {
      if (handle != nullptr) close(handle);
    }
  } query{close};
  if (open(nullptr, 0, &query.handle) != ERROR_SUCCESS) return {};
  PDH_HCOUNTER counter = nullptr;
  // A temperature is an instant value: one collection reads it.
  if (add(query.handle, kThermalZoneCounter, 0, &counter) != ERROR_SUCCESS ||
      collect(query.handle) != ERROR_SUCCESS) {
    return {};
  }
  return ReadInstances(read, counter);
}

}  // namespace

DWORD ThermalZoneCelsius(uint32_t index, int& celsius) {
  VelSDK::WmiQuery wmi(wmi::kRootWmi);
  std::vector<unsigned int> tenths;
  if (wmi.ExcuteQuery(kThermalZoneQuery, L"CurrentTemperature", tenths, false) == 0) {
    if (index >= tenths.size() || tenths[index] == 0) return ERROR_NOT_SUPPORTED;
    celsius = TenthsOfKelvinToCelsius(tenths[index]);
    return 0;
  }
  const std::vector<std::optional<LONG>> kelvin = ThermalZoneCounters();
  if (index >= kelvin.size() || !kelvin[index] || *kelvin[index] <= 0) return ERROR_NOT_SUPPORTED;
  celsius = static_cast<int>(*kelvin[index] - 273);  // whole kelvin: 273.15 rounds to 273
  return 0;
}

DWORD FanRpm(uint32_t index, int& rpm) {
  VelSDK::WmiQuery wmi(wmi::kCimV2);
  std::vector<unsigned int> speeds;  // instances with no speed (NULL) yield none
  if (wmi.ExcuteQuery(L"SELECT DesiredSpeed FROM Win32_Fan", L"DesiredSpeed", speeds, false) != 0 ||
      index >= speeds.size()) {
    return ERROR_NOT_SUPPORTED;
  }
  rpm = static_cast<int>(std::min<unsigned int>(speeds[index], INT_MAX));
  return 0;
}

DWORD BatteryVoltageOrCurrent(uint32_t battery, bool current, int& value) {
  const std::optional<hal::BatteryDriverReading> reading = hal::ReadBatteryDriver(battery);
  if (!reading) return ERROR_NOT_SUPPORTED;
  const ULONG millivolts = reading->status.Voltage;
  if (millivolts == 0 || millivolts > INT_MAX) return ERROR_NOT_SUPPORTED;  // unknown voltage
  if (!current) {
    value = static_cast<int>(millivolts);
    return 0;
  }
  // The rate is in mW unless the battery counts its capacity in relative units.
  const LONG milliwatts = reading->status.Rate;
  if (milliwatts == static_cast<LONG>(BATTERY_UNKNOWN_RATE) ||
      (reading->information.Capabilities & BATTERY_CAPACITY_RELATIVE) != 0) {
    return ERROR_NOT_SUPPORTED;
  }
  value = static_cast<int>(int64_t{milliwatts} * 1000 / millivolts);
  return 0;
}

}  // namespace velhal::sensors
