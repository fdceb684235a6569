// The touch screen: whether the machine has one, and the touch controller's firmware-side mode,
// switched through the vendor WMI class TouchScreenDeviceInformation in "root\WMI" (its boolean
// property ApplicationInstall). The switches return nothing: a failure is reported on standard
// output, in fixed words, and in the debugger output.
#pragma once

#include "hal/velhal_export.h"

struct IWbemServices;
struct IWbemClassObject;

namespace TouchScreen {

// A present HID device declares the touch-screen usage (the virtual HID collection never counts).
VELHAL_API bool IsTouchDeviceExist();
VELHAL_API void OpenTrifingerDriver();   // ApplicationInstall = 1
VELHAL_API void CloseTrifingerDriver();  // ApplicationInstall = 0

}  // namespace TouchScreen

// One WMI connection for the length of one switch. COM: initialised (multithreaded) for the
// object's life where the calling thread allows it, and balanced when the object goes; a thread
// already in another apartment keeps it and is never uninitialised.
class VELHAL_API TouchScreenControlImp {
 public:
  TouchScreenControlImp();
  virtual ~TouchScreenControlImp();
  TouchScreenControlImp(const TouchScreenControlImp&) = delete;
  TouchScreenControlImp& operator=(const TouchScreenControlImp&) = delete;

  // Connects and keeps the class's first instance; nonzero on success.
  int Open();
  // Writes ApplicationInstall (1 or 0) where it is a boolean and saves the instance (update
  // only); 1 on success, else 0.
  int SetApplicationInstall(int value);

 private:
  IWbemServices* services_;
  IWbemClassObject* instance_;
  bool com_initialised_;
};
