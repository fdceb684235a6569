// Bluetooth facility: the local radio through the Bluetooth API, and the radio handle's own
// I/O control and close. The API is bound at run time from bthprops.cpl, which every Windows
// since XP SP2 has (its functions forward to BluetoothApis.dll on newer ones; Wine answers
// there with ERROR_CALL_NOT_IMPLEMENTED where BluetoothApis.dll's would end the process).
// Without the library or a function, a call fails with ERROR_MOD_NOT_FOUND or
// ERROR_PROC_NOT_FOUND (as its result, or as the last error beside null or FALSE).
#pragma once

#include "platform/win32.h"

#include <bluetoothapis.h>

#include "platform/os/seam.h"
#include "platform/unique_resource.h"

namespace velhal::os {

class Bluetooth {
 public:
  virtual HBLUETOOTH_RADIO_FIND BluetoothFindFirstRadio(const BLUETOOTH_FIND_RADIO_PARAMS* params,
                                                        HANDLE* radio) = 0;
  virtual BOOL BluetoothFindRadioClose(HBLUETOOTH_RADIO_FIND find) = 0;
  virtual DWORD BluetoothGetRadioInfo(HANDLE radio, BLUETOOTH_RADIO_INFO* info) = 0;
  virtual BOOL BluetoothIsConnectable(HANDLE radio) = 0;
  virtual BOOL DeviceIoControl(HANDLE radio, DWORD code, void* in, DWORD in_size, void* out,
                               DWORD out_size, DWORD* returned, OVERLAPPED* overlapped) = 0;
  virtual BOOL CloseHandle(HANDLE radio) = 0;

  static Bluetooth& Real() noexcept;

 protected:
  ~Bluetooth() = default;
};

inline Bluetooth& bluetooth() noexcept { return Seam<Bluetooth>::Get(); }

}  // namespace velhal::os

namespace velhal {

struct RadioFindTraits {
  using Handle = HBLUETOOTH_RADIO_FIND;
  static HBLUETOOTH_RADIO_FIND Invalid() noexcept { return nullptr; }
  static bool IsValid(HBLUETOOTH_RADIO_FIND find) noexcept { return find != nullptr; }
  static void Close(HBLUETOOTH_RADIO_FIND find) noexcept {
    os::bluetooth().BluetoothFindRadioClose(find);
  }
};
using UniqueRadioFind = UniqueResource<RadioFindTraits>;

struct RadioTraits {
  using Handle = HANDLE;
  static HANDLE Invalid() noexcept { return nullptr; }
  static bool IsValid(HANDLE radio) noexcept {
    return radio != nullptr && radio != INVALID_HANDLE_VALUE;
  }
  static void Close(HANDLE radio) noexcept { os::bluetooth().CloseHandle(radio); }
};
using UniqueRadio = UniqueResource<RadioTraits>;

}  // namespace velhal
