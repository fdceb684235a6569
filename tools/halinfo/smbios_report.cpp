#include "tools/halinfo/smbios_report.h"

#include <fstream>
#include <iterator>

#include "core/identity.h"
#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

using velhal::smbios::Field;

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
  for (size_t i = 0; i < r.text.size(); ++i) r.text[i] = Utf8(f.text[i]);
  r.system_uuid_hex = UuidHex(f.system_uuid);
  r.chassis_type = f.chassis_type;
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
  r.unsupport_wifi_and_bt = id::IsUnsupportWifiAndBt(oem(7), oem1, f[Field::kChassisSku], {});
  return r;
}

nlohmann::ordered_json SmbiosReport::Value(Field field) const {
  switch (field) {
    case Field::kSystemUuid: return system_uuid_hex;
    case Field::kChassisType: return chassis_type;
    default: return text[static_cast<size_t>(field)];
  }
}

void SmbiosReport::AddTo(nlohmann::ordered_json& document) const {
  nlohmann::ordered_json smbios = {
      {"version", {{"major", major}, {"minor", minor}, {"dmiRevision", dmi_revision}}}};
  for (const velhal::smbios::FieldName& row : velhal::smbios::kFieldNames) {
    smbios[row.group->key][row.key] = Value(row.field);
  }
  nlohmann::ordered_json oem = nlohmann::ordered_json::object();
  for (const auto& [number, value] : oem_strings) oem[std::to_string(number)] = value;
  smbios["oemStrings"] = std::move(oem);
  smbios["identity"] = {{"deviceValue", device_value},
                        {"brand", brand},
                        {"consumerType", consumer_type},
                        {"isTypeDetachablePC", detachable},
                        {"isUnsupportWifiAndBT", unsupport_wifi_and_bt}};
  document["smbios"] = std::move(smbios);
}

std::string SmbiosReport::ToText() const {
  std::string out = "\nFirmware (SMBIOS " + std::to_string(major) + "." + std::to_string(minor) +
                     ", DMI revision " + std::to_string(dmi_revision) + ")\n";
  const velhal::smbios::Group* group = nullptr;
  for (const velhal::smbios::FieldName& row : velhal::smbios::kFieldNames) {
    if (row.group != group) out += std::string("  ") + (group = row.group)->label + "\n";
    const nlohmann::ordered_json value = Value(row.field);
    out += std::string("    ") + row.label + ": " +
            (value.is_string() ? value.get<std::string>() : value.dump()) + "\n";
  }
  for (const auto& [number, value] : oem_strings) {
    out += "  OEM string " + std::to_string(number) + ": " + value + "\n";
  }
  out += "  Identity:   device value " + std::to_string(device_value) + ", brand " +
          std::to_string(brand) + ", consumer type " + std::to_string(consumer_type) +
          ", detachable " + (detachable ? "yes" : "no") + ", Wi-Fi/BT hidden " +
          (unsupport_wifi_and_bt ? "yes" : "no") + "\n";
  return out;
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
