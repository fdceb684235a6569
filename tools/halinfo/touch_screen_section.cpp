// Whether the machine has a touch screen, through TouchScreen::IsTouchDeviceExist.
#include "components/touch_screen.h"
#include "tools/halinfo/sections.h"

namespace halinfo {

Node TouchScreenSection() {
  return Object("touchScreen", "Touch screen",
                {Flag("present", "present", TouchScreen::IsTouchDeviceExist())});
}

}  // namespace halinfo
