// libFuzzer target for the USB walk: every answer of every hub and controller comes from the
// input, so names, descriptors, port counts and hubs that lead anywhere (themselves included)
// are all tried. Any read outside an answer is caught by AddressSanitizer; a walk past its
// bounds, or one that does not end, fails here.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/usb.h"

namespace {

using velhal::usb::Port;

// Each answer takes a length byte (0 fails the call) and that many bytes; an answer longer than
// the caller's buffer is cut to it, as a driver's would be.
class Script {
 public:
  Script(const uint8_t* data, size_t size) : data_(data), size_(size) {}

  std::optional<std::vector<uint8_t>> Next(size_t out_size) {
    if (++calls_ > kMaxCalls) __builtin_trap();  // the walk did not end
    if (at_ >= size_) return std::nullopt;
    const size_t length = data_[at_++];
    if (length == 0) return std::nullopt;
    const size_t taken = std::min(length, size_ - at_);
    std::vector<uint8_t> answer(data_ + at_, data_ + at_ + std::min(taken, out_size));
    at_ += taken;
    return answer;
  }

 private:
  // Per hub, a few controls per walked port and three per string: well above what the bounds
  // allow once the input is spent (then every call fails at once).
  static constexpr size_t kMaxCalls = 200'000;
  const uint8_t* data_;
  size_t size_;
  size_t at_ = 0;
  size_t calls_ = 0;
};

class FuzzedDevice final : public velhal::usb::Device {
 public:
  explicit FuzzedDevice(Script& script) : script_(script) {}
  std::optional<std::vector<uint8_t>> Control(uint32_t, const std::vector<uint8_t>&,
                                              size_t out_size) override {
    return script_.Next(out_size);
  }

 private:
  Script& script_;
};

class FuzzedTransport final : public velhal::usb::Transport {
 public:
  explicit FuzzedTransport(Script& script) : script_(script) {}
  std::unique_ptr<velhal::usb::Device> Open(const std::u16string&) override {
    return std::make_unique<FuzzedDevice>(script_);
  }

 private:
  Script& script_;
};

// The bounds of the walk hold whatever was answered.
void Check(const std::vector<Port>& ports, size_t tier, size_t& devices) {
  if (tier > velhal::usb::kMaxHubTier || ports.size() > velhal::usb::kMaxPortsPerHub)
    __builtin_trap();
  for (const Port& port : ports) {
    if (port.status == velhal::usb::kDeviceConnected) ++devices;
    if (port.product.size() > 127 || port.hub_name.size() * 2 > velhal::usb::kMaxNameBytes)
      __builtin_trap();
    Check(port.ports, tier + 1, devices);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Script script(data, size);
  FuzzedTransport transport(script);
  const velhal::usb::Controller controller =
      velhal::usb::WalkController(transport, u"\\\\?\\usb#controller");
  size_t devices = 0;
  Check(controller.ports, 1, devices);
  if (devices > velhal::usb::kMaxDevicesPerBus) __builtin_trap();
  return 0;
}
