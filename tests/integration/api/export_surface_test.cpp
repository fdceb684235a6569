// VelHal.dll as a host sees it: which names it exports and which DLLs it needs.
#include "platform/win32.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <vector>

namespace {

// Walks the PE directories of a loaded module.
class LoadedImage {
 public:
  explicit LoadedImage(HMODULE module) : base_(reinterpret_cast<const BYTE*>(module)) {
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base_);
    nt_ = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base_ + dos->e_lfanew);
  }

  std::vector<std::string> ExportNames() const {
    const IMAGE_DATA_DIRECTORY& dir = Directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
    if (dir.VirtualAddress == 0) return {};
    const auto* exports = At<IMAGE_EXPORT_DIRECTORY>(dir.VirtualAddress);
    const auto* names = At<DWORD>(exports->AddressOfNames);
    std::vector<std::string> result;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i) result.emplace_back(At<char>(names[i]));
    return result;
  }

  std::vector<std::string> ImportedDlls() const {
    std::vector<std::string> result;
    const IMAGE_DATA_DIRECTORY& dir = Directory(IMAGE_DIRECTORY_ENTRY_IMPORT);
    if (dir.VirtualAddress != 0) {
      for (const auto* d = At<IMAGE_IMPORT_DESCRIPTOR>(dir.VirtualAddress); d->Name != 0; ++d) {
        result.emplace_back(At<char>(d->Name));
      }
    }
    const IMAGE_DATA_DIRECTORY& delayed = Directory(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT);
    if (delayed.VirtualAddress != 0) {
      for (const auto* d = At<IMAGE_DELAYLOAD_DESCRIPTOR>(delayed.VirtualAddress);
           d->DllNameRVA != 0; ++d) {
        result.emplace_back(At<char>(d->DllNameRVA));
      }
    }
    return result;
  }

 private:
  const IMAGE_DATA_DIRECTORY& Directory(int index) const {
    return nt_->OptionalHeader.DataDirectory[index];
  }
  template <class T>
  const T* At(DWORD rva) const {
    return reinterpret_cast<const T*>(base_ + rva);
  }

  const BYTE* base_;
  const IMAGE_NT_HEADERS64* nt_;
};

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

class ExportSurfaceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    module_ = ::LoadLibraryW(L"VelHal.dll");
    ASSERT_NE(module_, nullptr) << "error " << ::GetLastError();
  }
  void TearDown() override {
    if (module_ != nullptr) ::FreeLibrary(module_);
  }
  HMODULE module_ = nullptr;
};

TEST_F(ExportSurfaceTest, ExportsTheFlatEntryPointsUndecoratedAndTheClasses) {
  const std::vector<std::string> names = LoadedImage(module_).ExportNames();
  const std::set<std::string> exported(names.begin(), names.end());
  for (const char* flat : {"HalInit", "HalOpenDevice", "HalCloseDevice", "HalRead", "HalWrite",
                           "HalQueryInformation", "HalSetInformation", "HalSetCallback", "CpuInit",
                           "CpuQueryInformation", "BtInit", "BtQueryInformation",
                           "BtSetInformation", "MmInit", "MmQueryInformation", "IsTypeDetachablePC"}) {
    SCOPED_TRACE(flat);
    EXPECT_EQ(exported.count(flat), 1u);
    EXPECT_NE(::GetProcAddress(module_, flat), nullptr);
  }
  // Exported classes appear as mangled members: "<length><class name>" then each member.
  const auto has_member = [&](const std::string& klass, const std::string& member) {
    const std::string needle = std::to_string(klass.size()) + klass +
                               std::to_string(member.size()) + member;
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& n) { return n.find(needle) != std::string::npos; });
  };
  const auto has_function = [&](const std::string& function) {
    const std::string needle = "_Z" + std::to_string(function.size()) + function;
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& n) { return n.rfind(needle, 0) == 0; });
  };
  const std::pair<const char*, std::vector<const char*>> classes[] = {
      {"ReadReg",
       {"ReadLocalMachineRegDW", "ReadLocalMachineRegRZ", "ReadLocalMachineRegExpandRZ",
        "WrightLocalMachineRegDW", "WriteLocalMachineRegRZ", "WrightLocalMachineRegExpandRZ"}},
      {"WmiQuery", {"ExcuteQuery"}},
      {"SmBiosHelper",
       {"GetInstance", "GetBIOSVendor", "GetBIOSVersion", "GetBIOSReleaseDate",
        "GetBIOSSysVersion", "GetBIOSECVersion", "GetSysManufactor", "GetSysProductName",
        "GetSysVersion", "GetSysSerialNumber", "GetSysUUID", "GetSysSKU", "GetSysFamily",
        "GetBoardManufactor", "GetBoardProductName", "GetBoardVersion", "GetBoardSerialNumber",
        "GetBoardAssetTag", "GetBoardLocation", "GetSecManufactor", "GetSecType",
        "GetSecVersion", "GetSecSerialNumber", "GetSecAssetTagNumber", "GetSecSKU",
        "GetSecSkuA", "GetOemString1", "GetOemString2", "GetOemString3", "GetOemString4",
        "GetOemBiosWhitePointInfo", "GetOemProductName", "GetPropagandaName",
        "GetBiosDeviceValue", "IsCorvaneDevice", "IsTalmerDevice", "IsSmartDevice",
        "IsBrakkonDevice", "IsOndrelDevice", "IsVastrelDevice", "IsCorvaneStationDevice",
        "GetBrandType", "GetComsumerType", "IsConsumerTypeToB", "IsUnsupportWifiAndBT"}},
      {"HardwareConfig", {"GetInstance", "LoadConfig", "GetAudioVendor", "Reset"}},
      {"Cpu",
       {"Init", "GetCputype", "GetProperty", "GetUlongPropter", "GetCpuManufacturer",
        "GetCpuName", "GetL1Associativity", "GetL2Associativity", "GetL3Associativity",
        "GetCpuCurClock", "GetCpuExtClock", "GetCpuMaxClock", "GetCpuCoreNumbers",
        "GetCpuCoreThreads", "GetL1CacheSize", "GetL2CacheSize", "GetL3CacheSize",
        "GetCpuLoadPercent", "GetCpuUsage"}},
      {"Memory",
       {"Init", "GetMemoryNums", "GetTotalMemoryNums", "GetStringInfoByIndex",
        "GetLocatorbyIndex", "GetManufacturerbyIndex", "GetSerialNumberbyIndex",
        "GetPartNumberbyIndex", "GetUintInfoByIndex", "GetCapacitybyIndex", "GetSpeedbyIndex",
        "GetMemoryLoad", "GetMemoryLoadF"}},
      {"Battery",
       {"Init", "CheckBattery", "AcLine", "GetBatteryName", "GetBatteryManufacturer",
        "GetBatteryDesignCapacity", "GetBatteryFullCapacity", "GetBatteryRemainCapacity",
        "GetBatteryVoltage", "GetBattertLoss", "GetBatteryPercent", "GetChargeRate",
        "GetDisChargeRate", "GetChargeThreshold", "SetChargeThreshold", "GetProperty"}},
      {"BiosWmi", {"SetBatteryChargeThreshlod"}},
      {"SystemInfo", {"GetDeviceSerialNumber", "GetDeviceSerialNumberEx"}},
      {"Disk",
       {"GetPhysicDiskNumbers", "GetTotalCapacity", "GetTotalVendorCapacity",
        "GetTotalVendorCapacityM", "GetRemainCapacity", "GetUsedCapacity", "GetAllTotalCapacity",
        "GetAllTotalVendorCapcity", "GetAllRemainCapacity", "GetAllUsedCapacity", "GetCaption",
        "GetFirmwareRevision", "GetSerialNumber", "GetMediaType", "JudgeSSd",
        "GetSystemDiskIndex"}},
      {"DeviceInformention",
       {"GetDeviceHardwareId", "GetDeviceDesc", "GetDeviceHardwareIDList",
        "GetDeviceStrInfoByHardwareId", "GetDeviceStrInfoByHardwareIdEx",
        "GetDeviceULONGInfoByHardwareId", "GetDeviceULONGInfoByHardwareIdEx",
        "GetDeviceStrInfoByDesc", "GetDeviceStrInfoByDescEx", "GetDeviceULONGInfoByDesc",
        "GetDeviceULONGInfoByDescEx", "GetDevicePropertyByhardId", "GetLastIntallTime",
        "GetAllDeviceHardwareId", "GetAllDeviceHardwareIdEx", "GetUnknownDeviceHardId",
        "GetSoftComponentItems", "GetInternalDeviceHardwareId", "UnstallDeviceByHardwareId",
        "UnstallDeviceByHardwareIdEx"}},
  };
  for (const auto& [klass, members] : classes) {
    for (const char* member : members) EXPECT_TRUE(has_member(klass, member)) << klass << "::" << member;
  }
  // Constness is part of a member's exported name: only GetAudioVendor is const.
  for (const char* exact : {"_ZN14HardwareConfig10LoadConfigEv", "_ZN14HardwareConfig5ResetEv"}) {
    EXPECT_EQ(exported.count(exact), 1u) << exact;
  }
  EXPECT_TRUE(has_member("HardwareConfig", "GetAudioVendor") &&
              std::any_of(names.begin(), names.end(), [](const std::string& n) {
                return n.rfind("_ZNK14HardwareConfig14GetAudioVendor", 0) == 0;
              }));
  // The three ExcuteQuery instantiations: text, unsigned int and bytes.
  for (const char* instantiation : {"ExcuteQueryINSt7__cxx1112basic_stringIw", "ExcuteQueryIjE",
                                    "ExcuteQueryIhE"}) {
    EXPECT_TRUE(std::any_of(names.begin(), names.end(), [&](const std::string& n) {
      return n.find(instantiation) != std::string::npos;
    })) << instantiation;
  }
  for (const char* function :
       {"AnsiToWide", "WideToAnsi", "WmiQueryFirstString", "WmiQueryFirstUInt",
        "IsProcessRunning", "IsServiceExist", "IsServiceRunning", "GetServiceState",
        "StartServiceByName", "StopServiceByName", "IsProcUnsecappExist",
        "GetWpnUserServiceExName"}) {
    EXPECT_TRUE(has_function(function)) << function;
  }
}

TEST_F(ExportSurfaceTest, ImportsOnlyWindowsSystemDlls) {
  wchar_t system_dir[MAX_PATH] = {};
  ASSERT_GT(::GetSystemDirectoryW(system_dir, MAX_PATH), 0u);
  // The MinGW runtime is linked in; a host must never need these beside the DLL.
  const std::set<std::string> runtime = {"libstdc++-6.dll", "libgcc_s_seh-1.dll",
                                         "libwinpthread-1.dll"};
  const std::vector<std::string> imports = LoadedImage(module_).ImportedDlls();
  EXPECT_FALSE(imports.empty());
  for (const std::string& dll : imports) {
    SCOPED_TRACE(dll);
    EXPECT_EQ(runtime.count(Lower(dll)), 0u);
    const std::wstring path =
        std::wstring(system_dir) + L"\\" + std::wstring(dll.begin(), dll.end());
    EXPECT_NE(::GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES);
  }
}

}  // namespace
