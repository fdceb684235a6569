#include "platform/device_informention.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "platform/batch.h"
#include "platform/device_classes.h"
#include "platform/device_property_keys.h"
#include "tests/support/fake_system.h"

namespace {

namespace keys = velhal::device_keys;
using velhal::device_class::kDisplay;
using velhal::device_class::kMedia;
using velhal::device_class::kNet;
using velhal::device_class::kSystem;

const std::wstring kGpu = L"PCI\\VEN_8086&DEV_9A49&SUBSYS_00000000";
const DEVPROPKEY kManufacturer = keys::kByProperty[DeviceProperty_Manufacturer];
const DEVPROPKEY kProblemCode = keys::kByProperty[DeviceProperty_ProblemCode];
const DEVPROPKEY kStack = keys::kByProperty[DeviceProperty_Stack];

class DeviceInformentionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    db_.Add(kDisplay)
        .HardwareIds({kGpu, L"PCI\\VEN_8086&DEV_9A49"})
        .Description(L"Example Graphics")
        .String(kManufacturer, L"First maker")
        .UInt32(kProblemCode, 22);
    db_.Add(kMedia)
        .HardwareIds({L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257"})
        .Description(L"Example Audio")
        .String(keys::kParent, L"PCI\\VEN_8086&DEV_A0C8\\3&11583659&0&FB");
    db_.Add(kNet).HardwareIds({kGpu}).String(kManufacturer, L"Second maker");
    db_.Add(kNet).Description(L"No hardware IDs");
    db_.Add(kSystem)
        .HardwareIds({L"ACPI\\PNP0A08"})
        .Set(keys::kClass, DEVPROP_TYPE_GUID, std::vector<BYTE>(16, 1));
    db_.Add(kNet).HardwareIds({L"USB\\GONE"}).present = false;
  }
  velhal::testing::FakeSystem os_;
  velhal::testing::FakeDeviceDatabase& db_ = os_.devices;
  DeviceInformention devices_;
};

TEST_F(DeviceInformentionTest, GettersMatchTheExactFirstIdAcrossEveryClass) {
  // Found although it is no media device: the class GUID does not narrow the search, and of
  // the two devices sharing the ID the first in enumeration order wins.
  EXPECT_EQ(devices_.GetDeviceStrInfoByHardwareId(kGpu, kMedia, DeviceProperty_Manufacturer),
            L"First maker");
  ASSERT_EQ(db_.opens.size(), 1u);
  EXPECT_EQ(db_.opens[0].flags, static_cast<DWORD>(DIGCF_PRESENT | DIGCF_ALLCLASSES));
  ASSERT_TRUE(db_.opens[0].class_guid.has_value());
  EXPECT_TRUE(IsEqualGUID(*db_.opens[0].class_guid, kMedia));

  // Neither a later ID, nor another case, nor a device that is not present matches.
  for (const wchar_t* id : {L"PCI\\VEN_8086&DEV_9A49", L"pci\\ven_8086&dev_9a49&subsys_00000000",
                            L"USB\\GONE", L"PCI\\VEN_8086"}) {
    SCOPED_TRACE(testing::Message() << id);
    EXPECT_EQ(devices_.GetDeviceStrInfoByHardwareId(id, kDisplay, DeviceProperty_Manufacturer),
              L"");
  }

  // The Ex variants pass no GUID when asked to; either way the whole system is searched.
  db_.opens.clear();
  EXPECT_EQ(devices_.GetDeviceStrInfoByHardwareIdEx(kGpu, kNet, DeviceProperty_DeviceDesc, true),
            L"Example Graphics");
  EXPECT_EQ(devices_.GetDeviceStrInfoByHardwareIdEx(kGpu, kNet, DeviceProperty_DeviceDesc, false),
            L"Example Graphics");
  ASSERT_EQ(db_.opens.size(), 2u);
  EXPECT_FALSE(db_.opens[0].class_guid.has_value());
  EXPECT_TRUE(db_.opens[1].class_guid.has_value());
  for (const auto& open : db_.opens) {
    EXPECT_EQ(open.flags, static_cast<DWORD>(DIGCF_PRESENT | DIGCF_ALLCLASSES));
  }

  EXPECT_EQ(devices_.GetDeviceStrInfoByDesc(L"Example Audio", kDisplay, DeviceProperty_Parent),
            L"PCI\\VEN_8086&DEV_A0C8\\3&11583659&0&FB");
  EXPECT_EQ(devices_.GetDeviceULONGInfoByDescEx(L"Example Graphics", kNet,
                                                DeviceProperty_ProblemCode, true),
            22u);
  EXPECT_EQ(devices_.GetDeviceULONGInfoByHardwareId(kGpu, kNet, DeviceProperty_ProblemCode), 22u);
}

TEST_F(DeviceInformentionTest, ShortCutsAnswerBeforeAnyEnumeration) {
  EXPECT_EQ(devices_.GetDeviceStrInfoByHardwareId(L"", kDisplay, DeviceProperty_DeviceDesc), L"");
  EXPECT_EQ(
      devices_.GetDeviceStrInfoByHardwareId(L"NO\\SUCH", kDisplay, DeviceProperty_HardwareIds),
      L"NO\\SUCH");
  EXPECT_EQ(devices_.GetDeviceStrInfoByHardwareIdEx(L"NO\\SUCH", kDisplay,
                                                    DeviceProperty_HardwareIds, true),
            L"NO\\SUCH");
  EXPECT_EQ(devices_.GetDeviceStrInfoByDesc(L"Nothing", kDisplay, DeviceProperty_DeviceDesc),
            L"Nothing");
  EXPECT_EQ(
      devices_.GetDeviceStrInfoByDescEx(L"Nothing", kDisplay, DeviceProperty_DeviceDesc, false),
      L"Nothing");
  EXPECT_TRUE(db_.opens.empty());

  // The Ex variant has no empty-ID short cut: it searches and finds nothing.
  EXPECT_EQ(devices_.GetDeviceStrInfoByHardwareIdEx(L"", kDisplay, DeviceProperty_DeviceDesc, true),
            L"");
  EXPECT_EQ(db_.opens.size(), 1u);
}

TEST_F(DeviceInformentionTest, PropertyReadsCheckTheirType) {
  // A number is no string, a string no number; values outside the table give nothing.
  EXPECT_EQ(devices_.GetDeviceStrInfoByHardwareId(kGpu, kDisplay, DeviceProperty_ProblemCode), L"");
  EXPECT_EQ(devices_.GetDeviceULONGInfoByHardwareId(kGpu, kDisplay, DeviceProperty_Manufacturer),
            0u);
  EXPECT_EQ(
      devices_.GetDeviceStrInfoByHardwareId(kGpu, kDisplay, static_cast<EnumDeviceProperty>(16)),
      L"");
  EXPECT_EQ(
      devices_.GetDeviceULONGInfoByHardwareId(kGpu, kDisplay, static_cast<EnumDeviceProperty>(99)),
      0u);
  // A UINT32 of fewer than four bytes is refused; a string list gives its first string.
  db_.devices[1].Set(keys::kByProperty[DeviceProperty_Address], DEVPROP_TYPE_UINT32, {7, 0});
  EXPECT_EQ(devices_.GetDeviceULONGInfoByDesc(L"Example Audio", kMedia, DeviceProperty_Address),
            0u);
  EXPECT_EQ(
      devices_.GetDeviceStrInfoByDesc(L"Example Graphics", kMedia, DeviceProperty_HardwareIds),
      kGpu);
}

TEST_F(DeviceInformentionTest, ClassListsHaveOneEntryPerPresentDevice) {
  EXPECT_EQ(devices_.GetDeviceHardwareId(kNet), (std::vector<std::wstring>{kGpu, L""}));
  EXPECT_EQ(devices_.GetDeviceDesc(kNet), (std::vector<std::wstring>{L"", L"No hardware IDs"}));
  for (const auto& open : db_.opens) {
    EXPECT_EQ(open.flags, static_cast<DWORD>(DIGCF_PRESENT));
    ASSERT_TRUE(open.class_guid.has_value());
    EXPECT_TRUE(IsEqualGUID(*open.class_guid, kNet));
  }
  EXPECT_EQ(devices_.GetDeviceHardwareIDList(kDisplay, kGpu),
            (std::vector<std::wstring>{kGpu, L"PCI\\VEN_8086&DEV_9A49"}));
  EXPECT_TRUE(devices_.GetDeviceHardwareIDList(kDisplay, L"PCI\\VEN_8086&DEV_9A49").empty());
  EXPECT_TRUE(devices_.GetDeviceHardwareIDList(kMedia, kGpu).empty());  // class-scoped

  std::vector<std::wstring> stack{L"kept"};
  db_.devices[0].StringList(kStack, {L"\\Driver\\igfx", L"\\Driver\\pci"});
  devices_.GetDevicePropertyByhardId(kNet, kGpu, DeviceProperty_Stack, stack);
  EXPECT_EQ(stack, (std::vector<std::wstring>{L"kept", L"\\Driver\\igfx", L"\\Driver\\pci"}));
}

TEST_F(DeviceInformentionTest, LongHardwareIdListsStopAtTheBuffer) {
  // 250 + 1 + 8 + 1 units fill the 260-unit buffer; the list needs more, so the read of that
  // device fails and the device is passed over, as SetupAPI refuses a short buffer.
  const std::wstring long_id(250, L'L');
  db_.Add(kDisplay).HardwareIds({long_id, L"SECOND\\X", L"THIRD\\Y"});
  EXPECT_TRUE(devices_.GetDeviceHardwareIDList(kDisplay, long_id).empty());
  // A list that fits exactly is walked to its end.
  const std::wstring fits(240, L'F');
  db_.Add(kDisplay).HardwareIds({fits, L"SECOND\\X", L"T"});
  EXPECT_EQ(devices_.GetDeviceHardwareIDList(kDisplay, fits),
            (std::vector<std::wstring>{fits, L"SECOND\\X", L"T"}));
}

TEST_F(DeviceInformentionTest, InstallTimeIsMillisecondsSinceTheUnixEpoch) {
  const uint64_t first_of_2020 = 132223104000000000ULL;  // FILETIME of 2020-01-01 00:00 UTC
  std::vector<BYTE> bytes(8);
  std::memcpy(bytes.data(), &first_of_2020, 8);
  db_.devices[0].Set(keys::kFirstInstallDate, DEVPROP_TYPE_FILETIME, bytes);
  EXPECT_EQ(devices_.GetLastIntallTime(kGpu, kDisplay), 1577836800000ULL);
  EXPECT_EQ(devices_.GetLastIntallTime(L"NO\\SUCH", kDisplay), 0u);
  EXPECT_EQ(devices_.GetLastIntallTime(L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257", kMedia), 0u);
}

TEST_F(DeviceInformentionTest, SystemWideWalks) {
  std::vector<std::wstring> ids{L"stale"};
  devices_.GetAllDeviceHardwareId(ids);
  EXPECT_EQ(ids, (std::vector<std::wstring>{kGpu, kGpu}));  // "ACPI\..." holds PCI at 1 only
  devices_.GetAllDeviceHardwareIdEx(ids, L"");
  EXPECT_EQ(ids, (std::vector<std::wstring>{kGpu, L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257", kGpu,
                                            L"ACPI\\PNP0A08"}));
  for (const auto& open : db_.opens) {
    EXPECT_FALSE(open.class_guid.has_value());
    EXPECT_EQ(open.flags, static_cast<DWORD>(DIGCF_PRESENT | DIGCF_ALLCLASSES));
  }

  std::vector<std::wstring> children{L"kept"};
  devices_.GetSoftComponentItems(children, L"DEV_A0C8");
  EXPECT_EQ(children, (std::vector<std::wstring>{L"kept", L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257"}));
  devices_.GetSoftComponentItems(children, L"");
  devices_.GetSoftComponentItems(children, L"dev_a0c8");
  EXPECT_EQ(children.size(), 2u);
}

TEST_F(DeviceInformentionTest, UnknownDevicesAreThoseWithoutAClassAndTheLastMayRepeat) {
  // Present devices in order: GPU, audio, NIC, no-ID NIC, ACPI (has a class). Only the last
  // one has a class, so the final re-examination repeats nothing.
  EXPECT_EQ(devices_.GetUnknownDeviceHardId(),
            (std::vector<std::wstring>{kGpu, L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257", kGpu, L""}));
  // With an unknown device last, it is listed twice.
  db_.Add(kNet).HardwareIds({L"ROOT\\LAST"});
  const std::vector<std::wstring> unknown = devices_.GetUnknownDeviceHardId();
  ASSERT_GE(unknown.size(), 2u);
  EXPECT_EQ(unknown[unknown.size() - 1], L"ROOT\\LAST");
  EXPECT_EQ(unknown[unknown.size() - 2], L"ROOT\\LAST");
}

TEST_F(DeviceInformentionTest, InternalDevicesLackTheRemovableBit) {
  db_.devices[2].status = DN_REMOVABLE | 0x1;
  db_.devices[3].status_result = CR_NO_SUCH_DEVNODE;
  const std::vector<HardWareIdInfo> found = devices_.GetInternalDeviceHardwareId(kNet);
  ASSERT_EQ(found.size(), 1u);  // the NIC without IDs is left out
  EXPECT_EQ(found[0].hardwareId, kGpu);
  EXPECT_EQ(found[0].internal, 0);
  db_.devices[2].status = 0;
  EXPECT_EQ(devices_.GetInternalDeviceHardwareId(kNet)[0].internal, 1);
}

TEST_F(DeviceInformentionTest, RemovalReportsTheSystemsAnswer) {
  EXPECT_EQ(devices_.UnstallDeviceByHardwareId(L"NO\\SUCH", kDisplay), 0xFFFFFFFFu);
  EXPECT_EQ(devices_.UnstallDeviceByHardwareId(kGpu, kSystem), 0xFFFFFFFFu);  // class-scoped
  db_.devices[1].remove_error = ERROR_ACCESS_DENIED;
  EXPECT_EQ(devices_.UnstallDeviceByHardwareId(L"HDAUDIO\\FUNC_01&VEN_10EC&DEV_0257", kMedia),
            static_cast<uint32_t>(ERROR_ACCESS_DENIED));
  EXPECT_EQ(devices_.UnstallDeviceByHardwareId(kGpu, kNet), 0u);
  EXPECT_EQ(db_.removed, std::vector<size_t>{2});  // the NIC, not the GPU of the same ID

  EXPECT_EQ(devices_.UnstallDeviceByHardwareIdEx(kGpu, kDisplay), 0u);
  ASSERT_EQ(db_.install_params.size(), 1u);
  EXPECT_EQ(db_.install_params[0].ClassInstallHeader.InstallFunction,
            static_cast<DI_FUNCTION>(DIF_REMOVE));
  EXPECT_EQ(db_.install_params[0].Scope, static_cast<DWORD>(DI_REMOVEDEVICE_GLOBAL));
  EXPECT_EQ(db_.install_params[0].HwProfile, 0u);
  EXPECT_EQ(db_.removed_by_installer, std::vector<size_t>{0});

  db_.fail_list_detail = true;
  EXPECT_EQ(devices_.UnstallDeviceByHardwareIdEx(L"ACPI\\PNP0A08", kSystem),
            static_cast<uint32_t>(ERROR_ACCESS_DENIED));
  db_.fail_list_detail = false;
  db_.fail_device_id = true;
  ::SetLastError(ERROR_GEN_FAILURE);
  EXPECT_NE(devices_.UnstallDeviceByHardwareIdEx(L"ACPI\\PNP0A08", kSystem), 0u);
  EXPECT_EQ(db_.removed_by_installer.size(), 1u);
  EXPECT_EQ(devices_.UnstallDeviceByHardwareIdEx(L"NO\\SUCH", kSystem), 0xFFFFFFFFu);
}

}  // namespace

TEST_F(DeviceInformentionTest, ABatchOpensEachSetOnceUntilTheDevicesChange) {
  velhal::batch::Begin();
  const std::vector<std::wstring> nics = devices_.GetDeviceHardwareId(kNet);
  EXPECT_EQ(devices_.GetDeviceDesc(kNet), (std::vector<std::wstring>{L"", L"No hardware IDs"}));
  EXPECT_EQ(devices_.GetDeviceStrInfoByHardwareId(kGpu, kMedia, DeviceProperty_Manufacturer),
            L"First maker");
  EXPECT_EQ(devices_.GetDeviceULONGInfoByHardwareId(kGpu, kMedia, DeviceProperty_ProblemCode),
            22u);
  EXPECT_EQ(db_.opens.size(), 2u);  // the class's set and the system-wide one
  std::thread([&] { devices_.GetDeviceHardwareId(kNet); }).join();  // its own, and closed
  EXPECT_EQ(db_.opens.size(), 3u);
  EXPECT_EQ(db_.open_sets, 2);

  // A removal changes the devices: the sets are opened again after it.
  EXPECT_EQ(devices_.UnstallDeviceByHardwareId(kGpu, kNet), 0u);
  EXPECT_EQ(nics.front(), kGpu);
  EXPECT_EQ(devices_.GetDeviceHardwareId(kNet), std::vector<std::wstring>{L""});
  EXPECT_TRUE(velhal::batch::End());
  EXPECT_EQ(db_.open_sets, 0);
  EXPECT_EQ(db_.bad_destroys, 0);

  const size_t opens = db_.opens.size();
  devices_.GetDeviceHardwareId(kNet);
  devices_.GetDeviceHardwareId(kNet);
  EXPECT_EQ(db_.opens.size(), opens + 2);  // no batch: each call its own
}
