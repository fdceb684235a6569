// The device kinds of the component classes, one section each, sharing the device list: audio
// devices (AudioCard), Bluetooth with its radio, the biometric devices with the framework's
// units, the keyboards with the layout and type.
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "components/audio_card.h"
#include "components/biometric.h"
#include "components/bluetooth.h"
#include "components/keyboard.h"
#include "tools/halinfo/output.h"
#include "tools/halinfo/sections.h"

namespace halinfo {
namespace {

Node Device(const ComponentDevice& device) {
  const std::string description = ToUtf8(device.description);
  return Object("", description.empty() ? ToUtf8(device.hardwareId) : description,
                {Text("hardwareId", "hardware ID", ToUtf8(device.hardwareId)),
                 Text("description", "", description),
                 Text("manufacturer", "maker", ToUtf8(device.manufacturer)),
                 Text("driverVersion", "driver version", ToUtf8(device.driverVersion)),
                 Text("driverDate", "driver date", ToUtf8(device.driverDate)),
                 Number("problemCode", "problem code", device.problemCode)});
}

Node Devices(const std::vector<ComponentDevice>& devices) {
  std::vector<Node> nodes;
  for (const ComponentDevice& device : devices) nodes.push_back(Device(device));
  return Array("devices", "devices", std::move(nodes));
}

std::string Hex(uint32_t number, int digits) {
  char text[16] = {};
  std::snprintf(text, sizeof(text), "0x%0*X", digits, number);
  return text;
}

Node Radio(const BluetoothRadio& radio) {
  std::string maker = Hex(radio.manufacturer, 4);
  if (!radio.manufacturerName.empty()) maker += " (" + ToUtf8(radio.manufacturerName) + ")";
  return Object(
      "radio", "radio",
      {Flag("present", "present", radio.present), Flag("on", "on", radio.on),
       Text("address", "address", ToUtf8(radio.address)), Text("name", "name", ToUtf8(radio.name)),
       Text("maker", "maker", radio.present ? maker : ""),
       Number("subversion", "LMP subversion",
              radio.present ? std::optional<uint16_t>(radio.subversion) : std::nullopt),
       Text("coreVersion", "Bluetooth core version", ToUtf8(radio.coreVersion))});
}

const char* FactorText(uint32_t factor) {
  switch (factor) {
    case 0x02: return "face";
    case 0x08: return "fingerprint";
    case 0x10: return "iris";
  }
  return "other";
}

Node Unit(const BiometricUnit& unit) {
  const char* sensor = unit.factor != 0x08       ? ""
                       : unit.sensorSubType == 1 ? "swipe"
                       : unit.sensorSubType == 2 ? "touch"
                                                 : "";
  return Object("", ToUtf8(unit.description.empty() ? unit.model : unit.description),
                {Text("type", "type", FactorText(unit.factor)), Text("sensor", "sensor", sensor),
                 Text("model", "model", ToUtf8(unit.model)),
                 Text("manufacturer", "maker", ToUtf8(unit.manufacturer)),
                 Text("firmwareVersion", "firmware", ToUtf8(unit.firmwareVersion))});
}

}  // namespace

Node AudioDevicesSection() {
  AudioCard audio;
  return Object("audioDevices", "Audio devices",
                {Flag("present", "present", audio.IsPresent()), Devices(audio.GetDevices()),
                 Text("driverVersion", "driver version", ToUtf8(audio.GetDriverVersion()))});
}

Node BluetoothSection() {
  Bluetooth bluetooth;
  return Object(
      "bluetooth", "Bluetooth",
      {Flag("present", "present", bluetooth.IsPresent()), Radio(bluetooth.GetRadio()),
       Text("driverVersion", "radio driver version", ToUtf8(bluetooth.GetDriverVersion())),
       Devices(bluetooth.GetDevices())});
}

Node BiometricSection() {
  Biometric biometric;
  std::vector<Node> units;
  for (const BiometricUnit& unit : biometric.GetUnits()) units.push_back(Unit(unit));
  return Object("biometric", "Biometric devices",
                {Flag("present", "present", biometric.IsPresent()), Devices(biometric.GetDevices()),
                 Array("units", "units", std::move(units)),
                 Text("driverVersion", "driver version", ToUtf8(biometric.GetDriverVersion()))});
}

Node KeyboardSection() {
  Keyboard keyboard;
  std::vector<Node> languages;
  for (const std::wstring& language : keyboard.GetLayoutLanguages()) {
    languages.push_back(Text("", "layout", ToUtf8(language)));
  }
  return Object(
      "keyboard", "Keyboard",
      {Flag("present", "present", keyboard.IsPresent()),
       Text("layoutId", "active layout", ToUtf8(keyboard.GetLayoutId())),
       Text("layoutLanguage", "its language", ToUtf8(keyboard.GetLayoutLanguage())),
       Array("layoutLanguages", "loaded layouts", std::move(languages)),
       Number("type", "type", Reported(keyboard.GetKeyboardType())),
       Number("subType", "subtype", keyboard.GetKeyboardSubType()),
       Number("functionKeys", "function keys", Reported(keyboard.GetFunctionKeyCount())),
       Text("builtInDriverVersion", "built-in driver version", ToUtf8(keyboard.GetDriverVersion())),
       Devices(keyboard.GetDevices())});
}

}  // namespace halinfo
