// The local Bluetooth radio as a test sets it: none (the find fails with find_error), or one
// with its radio information, connectable state and IOCTL_BTH_GET_LOCAL_INFO answer. Find
// handles and radio handles are counted, so a test sees one left open.
#pragma once

#include "platform/win32.h"

#include <cstring>
#include <optional>
#include <vector>

#include "platform/os/bluetooth.h"
#include "tests/fakes/fake_common.h"

namespace velhal::testing {

class FakeBluetooth final : public os::Bluetooth {
 public:
  struct Radio {
    BLUETOOTH_RADIO_INFO info{};
    DWORD info_error = ERROR_SUCCESS;  // of BluetoothGetRadioInfo
    bool connectable = true;
    std::vector<BYTE> local_info;  // the IOCTL's answer; empty: the IOCTL fails
  };

  std::optional<Radio> radio;
  DWORD find_error = ERROR_NO_MORE_ITEMS;  // when there is no radio
  int open_finds = 0, open_radios = 0, bad_closes = 0;
  std::vector<DWORD> ioctl_codes;

  HBLUETOOTH_RADIO_FIND BluetoothFindFirstRadio(const BLUETOOTH_FIND_RADIO_PARAMS* params,
                                                HANDLE* handle) override {
    if (params == nullptr || params->dwSize != sizeof(BLUETOOTH_FIND_RADIO_PARAMS)) {
      Fail(ERROR_REVISION_MISMATCH);
      return nullptr;
    }
    if (!radio) {
      Fail(find_error);
      return nullptr;
    }
    ++open_finds;
    ++open_radios;
    *handle = kRadio;
    return kFind;
  }
  BOOL BluetoothFindRadioClose(HBLUETOOTH_RADIO_FIND find) override {
    return Close(find == kFind, open_finds);
  }
  DWORD BluetoothGetRadioInfo(HANDLE handle, BLUETOOTH_RADIO_INFO* info) override {
    if (handle != kRadio || open_radios == 0) return ERROR_INVALID_HANDLE;
    if (info->dwSize != sizeof(BLUETOOTH_RADIO_INFO)) return ERROR_REVISION_MISMATCH;
    if (radio->info_error != ERROR_SUCCESS) return radio->info_error;
    *info = radio->info;
    info->dwSize = sizeof(BLUETOOTH_RADIO_INFO);
    return ERROR_SUCCESS;
  }
  BOOL BluetoothIsConnectable(HANDLE handle) override {
    return handle == kRadio && open_radios > 0 && radio->connectable;
  }
  BOOL DeviceIoControl(HANDLE handle, DWORD code, void*, DWORD, void* out, DWORD out_size,
                       DWORD* returned, OVERLAPPED*) override {
    ioctl_codes.push_back(code);
    if (handle != kRadio || open_radios == 0) return Fail(ERROR_INVALID_HANDLE);
    if (radio->local_info.empty()) return Fail(ERROR_NOT_SUPPORTED);
    if (out_size < radio->local_info.size()) return Fail(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(out, radio->local_info.data(), radio->local_info.size());
    *returned = static_cast<DWORD>(radio->local_info.size());
    return TRUE;
  }
  BOOL CloseHandle(HANDLE handle) override { return Close(handle == kRadio, open_radios); }

 private:
  static inline const HBLUETOOTH_RADIO_FIND kFind = reinterpret_cast<HBLUETOOTH_RADIO_FIND>(0xB7F0);
  static inline const HANDLE kRadio = reinterpret_cast<HANDLE>(0xB7A0);

  BOOL Close(bool known, int& open) {
    if (!known || open == 0) {
      ++bad_closes;
      return Fail(ERROR_INVALID_HANDLE);
    }
    --open;
    return TRUE;
  }
};

}  // namespace velhal::testing
