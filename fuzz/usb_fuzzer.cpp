// libFuzzer target for the USB walk: every answer of every controller and hub comes from the
// input (a length byte, 0 failing the call, then that many bytes), so names, descriptors, port
// counts and hubs that lead anywhere, themselves included, are all tried. A read outside an
// answer is caught by AddressSanitizer; a walk past its bounds, or one that does not end, here.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/usb.h"

namespace {

namespace usb = velhal::usb;

class Script final : public usb::Transport, public usb::Device {
 public:
  Script(const uint8_t* data, size_t size) : data_(data), size_(size) {}

  std::unique_ptr<usb::Device> Open(const std::u16string&) override {
    return std::make_unique<Forward>(*this);
  }
  std::optional<std::vector<uint8_t>> Control(uint32_t, const std::vector<uint8_t>&,
                                              size_t out_size) override {
    // Once the input is spent every call fails at once, so a bounded walk ends well before.
    if (++calls_ > 200'000) __builtin_trap();
    if (at_ >= size_) return std::nullopt;
    const size_t wanted = data_[at_++];
    if (wanted == 0) return std::nullopt;
    const size_t length = std::min(wanted, size_ - at_);
    std::vector<uint8_t> answer(data_ + at_, data_ + at_ + std::min(length, out_size));
    at_ += length;
    return answer;
  }

 private:
  struct Forward final : usb::Device {
    explicit Forward(Script& script) : script(script) {}
    std::optional<std::vector<uint8_t>> Control(uint32_t code, const std::vector<uint8_t>& in,
                                                size_t out_size) override {
      return script.Control(code, in, out_size);
    }
    Script& script;
  };

  const uint8_t* data_;
  size_t size_, at_ = 0, calls_ = 0;
};

// The tiers and port counts stay in bounds whatever was answered; returns the devices. ports
// are those of a hub at tier: a hub of the last tier still has ports, one below it none.
size_t Check(const std::vector<usb::Port>& ports, size_t tier) {
  if ((tier > usb::kMaxHubTier && !ports.empty()) || ports.size() > usb::kMaxPortsPerHub)
    __builtin_trap();
  size_t devices = 0;
  for (const usb::Port& port : ports)
    devices += (port.status == usb::kDeviceConnected) + Check(port.ports, tier + 1);
  return devices;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Script script(data, size);
  const usb::Controller controller = usb::WalkController(script, u"\\\\?\\usb#controller");
  if (Check(controller.ports, 1) > usb::kMaxDevicesPerBus) __builtin_trap();
  return 0;
}
