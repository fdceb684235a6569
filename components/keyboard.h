// The keyboard: the devices of the keyboard setup class, and the layout and type Windows
// reports for the calling thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "components/component_device.h"
#include "hal/velhal_export.h"

class VELHAL_API Keyboard {
 public:
  // The built-in keyboard's driver version: of the first present keyboard-class device whose
  // first hardware ID begins "ACPI"; empty when there is none. GetDeviceDriverVersion's answer
  // for kind 6.
  std::wstring GetDriverVersion();
  // Whether a keyboard-class device is present (device database).
  bool IsPresent();
  // The present keyboard-class devices, in the device database's order.
  std::vector<ComponentDevice> GetDevices();

  // The calling thread's active input layout: its identifier (GetKeyboardLayoutNameW,
  // "00000409" for US English) and its language as a locale name ("en-US").
  std::wstring GetLayoutId();
  std::wstring GetLayoutLanguage();
  // The language of every layout the user has loaded (GetKeyboardLayoutList), in its order.
  std::vector<std::wstring> GetLayoutLanguages();
  // GetKeyboardType: the type (4: enhanced 101/102-key; 7: Japanese; 8: Korean), the maker's
  // subtype, and the number of function keys; 0 when Windows does not say.
  uint32_t GetKeyboardType();
  uint32_t GetKeyboardSubType();
  uint32_t GetFunctionKeyCount();
};
