// The real backend: the Bluetooth API looked up by name in bthprops.cpl on first use; the
// radio handle's I/O control and close forward to kernel32.
#include "platform/os/bluetooth.h"

#include "platform/os/run_time_binding.h"

namespace velhal::os {
namespace {

constexpr wchar_t kLibrary[] = L"bthprops.cpl";

class RealBluetooth final : public Bluetooth {
 public:
  HBLUETOOTH_RADIO_FIND BluetoothFindFirstRadio(const BLUETOOTH_FIND_RADIO_PARAMS* params,
                                                HANDLE* radio) override {
    static const Bound<HBLUETOOTH_RADIO_FIND WINAPI(const BLUETOOTH_FIND_RADIO_PARAMS*, HANDLE*)>
        call(kLibrary, "BluetoothFindFirstRadio");
    return call.CallOr(HBLUETOOTH_RADIO_FIND{}, params, radio);
  }
  BOOL BluetoothFindRadioClose(HBLUETOOTH_RADIO_FIND find) override {
    static const Bound<BOOL WINAPI(HBLUETOOTH_RADIO_FIND)> call(kLibrary,
                                                                "BluetoothFindRadioClose");
    return call.CallOr(FALSE, find);
  }
  DWORD BluetoothGetRadioInfo(HANDLE radio, BLUETOOTH_RADIO_INFO* info) override {
    static const Bound<DWORD WINAPI(HANDLE, BLUETOOTH_RADIO_INFO*)> call(kLibrary,
                                                                         "BluetoothGetRadioInfo");
    return call.CallOr(call.MissingError(), radio, info);
  }
  BOOL BluetoothIsConnectable(HANDLE radio) override {
    static const Bound<BOOL WINAPI(HANDLE)> call(kLibrary, "BluetoothIsConnectable");
    return call.CallOr(FALSE, radio);
  }
  BOOL DeviceIoControl(HANDLE radio, DWORD code, void* in, DWORD in_size, void* out, DWORD out_size,
                       DWORD* returned, OVERLAPPED* overlapped) override {
    return ::DeviceIoControl(radio, code, in, in_size, out, out_size, returned, overlapped);
  }
  BOOL CloseHandle(HANDLE radio) override { return ::CloseHandle(radio); }
};

}  // namespace

Bluetooth& Bluetooth::Real() noexcept {
  static RealBluetooth backend;
  return backend;
}

}  // namespace velhal::os
