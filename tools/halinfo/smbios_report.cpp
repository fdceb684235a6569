#include "tools/halinfo/smbios_report.h"

#include <optional>
#include <vector>

#include "core/identity.h"
#include "tools/halinfo/exit_codes.h"
#include "tools/halinfo/input_file.h"
#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

using velhal::smbios::Field;

std::string Utf8(const std::string& ansi) { return ToUtf8(FromAnsi(ansi)); }

const char* FormatName(velhal::smbios::SavedFormat format) {
  switch (format) {
    case velhal::smbios::SavedFormat::kRawFirmwareTable: return "raw firmware table";
    case velhal::smbios::SavedFormat::kDmidecodeDump: return "dmidecode dump";
    default: return "bare structure table";
  }
}

// A version byte pair of 0xFF, 0xFF: the firmware does not support the field.
bool Supported(const std::string& version) { return version != "255.255"; }

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
  r.system_uuid = f.system_uuid;
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

// Each field as both renderers print it; where dmidecode decodes a value (chassis type names,
// unsupported versions, the UUID's text form), plain text shows the decoded form and JSON keeps
// the value, with the decoded facts under keys of their own.
std::vector<Node> SmbiosReport::FieldNodes(const velhal::smbios::FieldName& row) const {
  const auto text_of = [&] { return text[static_cast<size_t>(row.field)]; };
  switch (row.field) {
    case Field::kSystemUuid: {
      const std::string uuid = velhal::smbios::UuidText(system_uuid, static_cast<uint8_t>(major),
                                                        static_cast<uint8_t>(minor));
      return {Shown(Text(row.key, row.label, system_uuid_hex), uuid), Text("uuidText", "", uuid)};
    }
    case Field::kChassisType: {
      const char* name = velhal::smbios::ChassisTypeName(static_cast<uint8_t>(chassis_type));
      const bool locked = (chassis_type & 0x80) != 0;
      const std::string shown = std::string(name ? name : "not a known type") + " (" +
                                std::to_string(chassis_type & 0x7F) + ")" +
                                (locked ? ", lock present" : "");
      return {Shown(Number(row.key, row.label, chassis_type), shown),
              Text("typeName", "", name ? name : ""), Flag("locked", "", locked)};
    }
    case Field::kBiosSystemVersion:
    case Field::kBiosEcVersion: {
      const std::string value = text_of();
      const bool supported = Supported(value);
      const char* key =
          row.field == Field::kBiosSystemVersion ? "systemVersionSupported" : "ecVersionSupported";
      Node version = Text(row.key, row.label, value);
      return {supported ? version : Shown(version, "not supported"), Flag(key, "", supported)};
    }
    default: return {Text(row.key, row.label, text_of())};
  }
}


Node SmbiosReport::ToNode() const {
  std::vector<Node> members = {Object("version", "version",
                                      {Number("major", "major", major),
                                       Number("minor", "minor", minor),
                                       Number("dmiRevision", "DMI revision", dmi_revision)})};
  for (const velhal::smbios::FieldName& row : velhal::smbios::kFieldNames) {
    if (members.back().key != row.group->key) {
      members.push_back(Object(row.group->key, row.group->label, {}));
    }
    for (Node& node : FieldNodes(row)) members.back().children.push_back(std::move(node));
  }
  std::vector<Node> oem;
  for (const auto& [number, value] : oem_strings) {
    oem.push_back(Text(std::to_string(number), "string " + std::to_string(number), value));
  }
  members.push_back(Object("oemStrings", "OEM strings", std::move(oem)));
  members.push_back(Object("identity", "identity",
                           {Number("deviceValue", "device value", device_value),
                            Number("brand", "brand", brand),
                            Number("consumerType", "consumer type", consumer_type),
                            Flag("isTypeDetachablePC", "detachable", detachable),
                            Flag("isUnsupportWifiAndBT", "Wi-Fi/BT hidden",
                                 unsupport_wifi_and_bt)}));
  return Object("smbios", "Firmware (SMBIOS)", std::move(members));
}

int ReportSmbiosFile(const std::string& path, bool json) {
  const std::optional<std::vector<uint8_t>> bytes = ReadInputFile(path);
  if (!bytes) return kExitBadInput;
  const auto saved = velhal::smbios::DetectSavedTable(bytes->data(), bytes->size());
  if (!saved) {
    ReportBadInput(path, "is empty");
    return kExitBadInput;
  }
  velhal::smbios::Fields fields;
  velhal::smbios::Walk(bytes->data() + saved->offset, saved->length, fields);
  const Node report =
      SmbiosReport::FromTable(saved->major, saved->minor, saved->dmi_revision, fields).ToNode();
  if (json) {
    Print(JsonDocument({report}));
  } else {
    Print(path + ": " + FormatName(saved->format) + ", " + std::to_string(saved->length) +
          " bytes of structures\n\n" + PlainText({report}));
  }
  // What could be decoded is printed; a table that is not whole still fails the run.
  const velhal::smbios::TableCheck check =
      velhal::smbios::CheckTable(bytes->data() + saved->offset, saved->length);
  if (check.structures == 0) {
    ReportBadInput(path, "holds no SMBIOS structure");
    return kExitBadInput;
  }
  if (saved->truncated || check.damaged) {
    ReportBadInput(path, "is truncated or damaged: the table breaks off after " +
                             std::to_string(check.structures) +
                             (check.structures == 1 ? " whole structure" : " whole structures"));
    return kExitBadInput;
  }
  return kExitSuccess;
}

}  // namespace halinfo
