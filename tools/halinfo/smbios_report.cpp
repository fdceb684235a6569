#include "tools/halinfo/smbios_report.h"

#include <fstream>
#include <iterator>

#include "core/identity.h"
#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

constexpr int kExitUnreadable = 2;

std::string Utf8(const std::string& ansi) { return ToUtf8(FromAnsi(ansi)); }

const char* FormatName(velhal::smbios::SavedFormat format) {
  switch (format) {
    case velhal::smbios::SavedFormat::kRawFirmwareTable: return "raw firmware table";
    case velhal::smbios::SavedFormat::kDmidecodeDump: return "dmidecode dump";
    default: return "bare structure table";
  }
}

}  // namespace

std::string UuidHex(const std::array<uint8_t, 16>& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (const uint8_t b : bytes) {
    hex += kDigits[b >> 4];
    hex += kDigits[b & 0xF];
  }
  return hex;
}

SmbiosReport SmbiosReport::FromTable(uint32_t major, uint32_t minor, uint32_t dmi_revision,
                                     const velhal::smbios::Fields& f) {
  SmbiosReport r;
  r.major = major;
  r.minor = minor;
  r.dmi_revision = dmi_revision;
  r.bios_vendor = Utf8(f.bios_vendor);
  r.bios_version = Utf8(f.bios_version);
  r.bios_release_date = Utf8(f.bios_release_date);
  r.bios_system_version = Utf8(f.bios_system_version);
  r.bios_ec_version = Utf8(f.bios_ec_version);
  r.system_manufacturer = Utf8(f.system_manufacturer);
  r.system_product_name = Utf8(f.system_product_name);
  r.system_version = Utf8(f.system_version);
  r.system_serial_number = Utf8(f.system_serial_number);
  r.system_uuid_hex = UuidHex(f.system_uuid);
  r.system_sku = Utf8(f.system_sku);
  r.system_family = Utf8(f.system_family);
  r.board_manufacturer = Utf8(f.board_manufacturer);
  r.board_product = Utf8(f.board_product);
  r.board_version = Utf8(f.board_version);
  r.board_serial_number = Utf8(f.board_serial_number);
  r.board_asset_tag = Utf8(f.board_asset_tag);
  r.board_location = Utf8(f.board_location);
  r.chassis_manufacturer = Utf8(f.chassis_manufacturer);
  r.chassis_type = f.chassis_type;
  r.chassis_version = Utf8(f.chassis_version);
  r.chassis_serial_number = Utf8(f.chassis_serial_number);
  r.chassis_asset_tag = Utf8(f.chassis_asset_tag);
  r.chassis_sku = Utf8(f.chassis_sku);
  for (const auto& [number, text] : f.oem_strings) r.oem_strings[number] = Utf8(text);

  namespace id = velhal::identity;
  const auto oem = [&](int number) {
    const auto found = f.oem_strings.find(number);
    return found == f.oem_strings.end() ? std::wstring() : FromAnsi(found->second);
  };
  const std::wstring oem1 = oem(1);
  r.device_value = id::DeviceValue(oem1);
  r.brand = id::BrandOf(static_cast<uint16_t>(r.device_value));
  id::ConsumerType(oem1, r.consumer_type);
  r.detachable = f.chassis_type == id::kChassisDetachable;
  r.unsupport_wifi_and_bt = id::IsUnsupportWifiAndBt(oem(7), oem1, f.chassis_sku, {});
  return r;
}

void SmbiosReport::AddTo(nlohmann::ordered_json& document) const {
  nlohmann::ordered_json oem = nlohmann::ordered_json::object();
  for (const auto& [number, text] : oem_strings) oem[std::to_string(number)] = text;
  document["smbios"] = {
      {"version", {{"major", major}, {"minor", minor}, {"dmiRevision", dmi_revision}}},
      {"bios",
       {{"vendor", bios_vendor},
        {"version", bios_version},
        {"releaseDate", bios_release_date},
        {"systemVersion", bios_system_version},
        {"ecVersion", bios_ec_version}}},
      {"system",
       {{"manufacturer", system_manufacturer},
        {"productName", system_product_name},
        {"version", system_version},
        {"serialNumber", system_serial_number},
        {"uuid", system_uuid_hex},
        {"sku", system_sku},
        {"family", system_family}}},
      {"baseboard",
       {{"manufacturer", board_manufacturer},
        {"product", board_product},
        {"version", board_version},
        {"serialNumber", board_serial_number},
        {"assetTag", board_asset_tag},
        {"location", board_location}}},
      {"chassis",
       {{"manufacturer", chassis_manufacturer},
        {"type", chassis_type},
        {"version", chassis_version},
        {"serialNumber", chassis_serial_number},
        {"assetTag", chassis_asset_tag},
        {"sku", chassis_sku}}},
      {"oemStrings", std::move(oem)},
      {"identity",
       {{"deviceValue", device_value},
        {"brand", brand},
        {"consumerType", consumer_type},
        {"isTypeDetachablePC", detachable},
        {"isUnsupportWifiAndBT", unsupport_wifi_and_bt}}}};
}

std::string SmbiosReport::ToText() const {
  const auto line = [](const char* label, const std::string& value) {
    return std::string("  ") + label + (value.empty() ? "-" : value) + "\n";
  };
  std::string text = "\nFirmware (SMBIOS " + std::to_string(major) + "." + std::to_string(minor) +
                     ", DMI revision " + std::to_string(dmi_revision) + ")\n";
  text += line("BIOS:       ", bios_vendor + " " + bios_version + ", " + bios_release_date +
                                 " (system " + bios_system_version + ", EC " + bios_ec_version +
                                 ")");
  text += line("System:     ", system_manufacturer + " " + system_product_name + " " +
                                 system_version);
  text += line("  serial    ", system_serial_number);
  text += line("  UUID      ", system_uuid_hex);
  text += line("  SKU       ", system_sku);
  text += line("  family    ", system_family);
  text += line("Baseboard:  ", board_manufacturer + " " + board_product + " " + board_version);
  text += line("  serial    ", board_serial_number);
  text += line("  asset tag ", board_asset_tag);
  text += line("  location  ", board_location);
  text += line("Chassis:    ", chassis_manufacturer + ", type " + std::to_string(chassis_type) +
                                 " " + chassis_version);
  text += line("  serial    ", chassis_serial_number);
  text += line("  asset tag ", chassis_asset_tag);
  text += line("  SKU       ", chassis_sku);
  for (const auto& [number, value] : oem_strings) {
    text += line(("OEM string " + std::to_string(number) + ": ").c_str(), value);
  }
  text += "  Identity:   device value " + std::to_string(device_value) + ", brand " +
          std::to_string(brand) + ", consumer type " + std::to_string(consumer_type) +
          ", detachable " + (detachable ? "yes" : "no") + ", Wi-Fi/BT hidden " +
          (unsupport_wifi_and_bt ? "yes" : "no") + "\n";
  return text;
}

int ReportSmbiosFile(const std::string& path, bool json) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    PrintError("halinfo: cannot read " + path + "\n");
    return kExitUnreadable;
  }
  const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(file)), {});
  const auto saved = velhal::smbios::DetectSavedTable(bytes.data(), bytes.size());
  if (!saved) {
    PrintError("halinfo: " + path + " is empty\n");
    return kExitUnreadable;
  }
  velhal::smbios::Fields fields;
  velhal::smbios::Walk(bytes.data() + saved->offset, saved->length, fields);
  const SmbiosReport report =
      SmbiosReport::FromTable(saved->major, saved->minor, saved->dmi_revision, fields);
  if (json) {
    nlohmann::ordered_json document = nlohmann::ordered_json::object();
    report.AddTo(document);
    Print(document.dump(2) + "\n");
  } else {
    Print(path + ": " + FormatName(saved->format) + ", " + std::to_string(saved->length) +
          " bytes of structures\n");
    Print(report.ToText());
  }
  return 0;
}

}  // namespace halinfo
