#include "components/bios_wmi.h"

#include "components/firmware_provider.h"
#include "platform/boundary.h"

namespace velhal {
namespace {

class StandardFirmware final : public FirmwareProvider {
 public:
  DWORD SetChargeThreshold(unsigned char, unsigned char) override { return ERROR_NOT_SUPPORTED; }
  DWORD GetChargeThreshold(unsigned char&, unsigned char&) override { return ERROR_NOT_SUPPORTED; }
};

}  // namespace

FirmwareProvider& FirmwareProvider::Real() noexcept {
  static StandardFirmware provider;
  return provider;
}

}  // namespace velhal

namespace VelSDK {

int BiosWmi::SetBatteryChargeThreshlod(unsigned char first, unsigned char second) {
  return velhal::CallGuarded(static_cast<int>(ERROR_NOT_ENOUGH_MEMORY), [&] {
    return static_cast<int>(velhal::firmware_provider().SetChargeThreshold(first, second));
  });
}

int BiosWmi::GetBatteryChargeThreshold(unsigned char& first, unsigned char& second) {
  return velhal::CallGuarded(static_cast<int>(ERROR_NOT_ENOUGH_MEMORY), [&] {
    return static_cast<int>(velhal::firmware_provider().GetChargeThreshold(first, second));
  });
}

}  // namespace VelSDK
