// The running machine's sections (Windows only), each built by one function through the
// library's public interface; live.cpp lists them in report order. See node.h to add one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/halinfo/node.h"

struct GpAdapterList;  // hal/hal_api.h

namespace halinfo {

Node LibrarySection();
Node OperatingSystemSection();
Node ProcessorSection();
Node MemorySection();
Node DisksSection();
Node BatterySection();
Node GraphicsSection();
Node MonitorsSection();
Node DisplaySection();
Node FirmwareSection();
Node SensorsSection();
Node TouchScreenSection();
Node DevicesSection();
Node NetworkSection();
Node DriversSection();
Node AudioDevicesSection();
Node BluetoothSection();
Node BiometricSection();
Node KeyboardSection();
Node UsbSection();

// The name of record index of a graphics block from GpInit (graphics_section.cpp).
std::wstring GraphicsAdapterName(const GpAdapterList* block, uint32_t index);

// A reading of 0 means "not reported" for the library's numeric getters.
template <class T>
std::optional<T> Reported(T value) {
  return value != 0 ? std::optional<T>(value) : std::nullopt;
}

}  // namespace halinfo
