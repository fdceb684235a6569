#include "hal/disk_module.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "hal/disk.h"
#include "hal/hal_api.h"
#include "platform/wmi_namespaces.h"
#include "tests/support/fake_system.h"
#include "tests/support/hal_query.h"

namespace {

using velhal::testing::FakeDeviceIo;
using velhal::testing::FakeValue;
using velhal::wmi::kCimV2;
using velhal::wmi::kStorage;
constexpr uint64_t kGiB = 1ull << 30;

class DiskModuleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    os_.wmi.Script(
        kCimV2, L"SELECT Name FROM Win32_DiskDrive", L"Name",
        {FakeValue::Text(L"\\\\.\\PHYSICALDRIVE0"), FakeValue::Text(L"\\\\.\\PHYSICALDRIVE1"),
         FakeValue::Text(L"\\\\.\\PHYSICALDRIVE2")});
    os_.io.Disk(0).ioctls[IOCTL_DISK_GET_DRIVE_GEOMETRY] =
        FakeDeviceIo::Geometry(100000, 255, 63, 512);
    os_.io.Disk(0).ioctls[IOCTL_STORAGE_QUERY_PROPERTY] = FakeDeviceIo::Trim(true);
    os_.io.Disk(1).ioctls[IOCTL_DISK_GET_DRIVE_GEOMETRY] =
        FakeDeviceIo::Geometry(INT64_C(1) << 41, 255, 63, 512);  // passes 2^63
    os_.io.Disk(1).ioctls[IOCTL_STORAGE_QUERY_PROPERTY] = FakeDeviceIo::Trim(false);
    os_.io.Disk(2);  // answers no I/O control
    os_.io.Volume('C', FILE_DEVICE_DISK, 0, 10 * kGiB + 123);
    os_.io.Volume('D', FILE_DEVICE_DISK, 1, 3 * kGiB);
    os_.io.Volume('E', FILE_DEVICE_DISK, 0, 5 * kGiB);
    os_.io.Volume('F', FILE_DEVICE_CD_ROM, 0, 7 * kGiB);  // matching number, other device type
    os_.io.free_bytes.erase("E:");                        // free space unknown: counts 0
  }
  HalDeviceEntry OpenEntry(uint32_t index) {
    HalDeviceEntry entry{nullptr, index, 0};
    EXPECT_EQ(HalOpenDevice(HAL_CLASS_DISK, &entry), 1u);
    return entry;
  }
  template <class T>
  std::optional<T> QueryNumber(HalDeviceEntry* entry, uint32_t info_class) {
    return velhal::testing::QueryNumber<T>(HAL_CLASS_DISK, entry, info_class);
  }

  velhal::testing::FakeSystem os_;
};

TEST_F(DiskModuleTest, InitMakesTheBlockByteForByte) {
  void* block = nullptr;
  ASSERT_EQ(HalInit(HAL_CLASS_DISK, &block), 1u);
  ASSERT_NE(block, nullptr);
  const auto* bytes = static_cast<const unsigned char*>(block);
  const auto u32 = [&](size_t offset) {
    uint32_t value;
    std::memcpy(&value, bytes + offset, 4);
    return value;
  };
  EXPECT_EQ(u32(0), 56u);
  EXPECT_EQ(u32(4), 3u);
  EXPECT_EQ(u32(16), 0u);
  EXPECT_EQ(u32(32), 1u);
  EXPECT_EQ(u32(48), 2u);
  std::free(block);

  os_.wmi.Script(kCimV2, L"SELECT Name FROM Win32_DiskDrive", L"Name", {}, S_OK);
  block = nullptr;
  EXPECT_EQ(HalInit(HAL_CLASS_DISK, &block), 0u);
  EXPECT_EQ(block, nullptr);
}

TEST_F(DiskModuleTest, OpenAndCloseManageTheHandleSlot) {
  HalDeviceEntry entry = OpenEntry(2);
  ASSERT_EQ(os_.io.opens.size(), 1u);
  EXPECT_EQ(os_.io.opens[0].path, L"\\\\.\\PHYSICALDRIVE2");
  EXPECT_EQ(os_.io.opens[0].access, 0u);
  EXPECT_EQ(os_.io.opens[0].share, static_cast<DWORD>(FILE_SHARE_READ | FILE_SHARE_WRITE));
  EXPECT_EQ(os_.io.opens[0].disposition, static_cast<DWORD>(OPEN_EXISTING));
  EXPECT_EQ(os_.io.opens[0].attributes, static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL));
  EXPECT_EQ(HalCloseDevice(HAL_CLASS_DISK, &entry), 1u);
  EXPECT_EQ(entry.handle, nullptr);
  EXPECT_EQ(HalCloseDevice(HAL_CLASS_DISK, &entry), 0u);

  HalDeviceEntry missing{nullptr, 9, 0};
  EXPECT_EQ(HalOpenDevice(HAL_CLASS_DISK, &missing), 0u);
  EXPECT_EQ(missing.handle, INVALID_HANDLE_VALUE);  // stored as the system returned it
}

TEST_F(DiskModuleTest, GeometryIsScaledAndGuardedAgainstOverflow) {
  HalDeviceEntry disk0 = OpenEntry(0), disk1 = OpenEntry(1), disk2 = OpenEntry(2);
  const uint64_t bytes = 100000ull * 255 * 63 * 512;
  EXPECT_EQ(QueryNumber<uint64_t>(&disk0, HAL_DISK_INFO_SIZE_MIB), bytes >> 20);
  EXPECT_EQ(QueryNumber<uint64_t>(&disk0, HAL_DISK_INFO_SIZE_DECIMAL_GB), bytes / 1000000000);
  EXPECT_EQ(QueryNumber<uint64_t>(&disk0, HAL_DISK_INFO_SIZE_DECIMAL_MB), bytes / 1000000);
  EXPECT_EQ(QueryNumber<uint64_t>(&disk1, HAL_DISK_INFO_SIZE_MIB), 0u);  // overflow: 0, success
  EXPECT_EQ(QueryNumber<uint64_t>(&disk2, HAL_DISK_INFO_SIZE_MIB), std::nullopt);

  // Only exactly TRUE counts; a zero factor gives 0.
  os_.io.Disk(2).ioctls[IOCTL_DISK_GET_DRIVE_GEOMETRY] = FakeDeviceIo::Geometry(10, 0, 63, 512);
  EXPECT_EQ(QueryNumber<uint64_t>(&disk2, HAL_DISK_INFO_SIZE_MIB), 0u);
  os_.io.Disk(2).ioctls[IOCTL_DISK_GET_DRIVE_GEOMETRY].result = 2;
  EXPECT_EQ(QueryNumber<uint64_t>(&disk2, HAL_DISK_INFO_SIZE_MIB), std::nullopt);

  HalDeviceEntry unopened{nullptr, 0, 0};
  EXPECT_EQ(QueryNumber<uint64_t>(&unopened, HAL_DISK_INFO_SIZE_MIB), std::nullopt);
  for (HalDeviceEntry* entry : {&disk0, &disk1, &disk2}) HalCloseDevice(HAL_CLASS_DISK, entry);
}

TEST_F(DiskModuleTest, FreeSpaceSumsTheVolumesOfThisDiskOnly) {
  HalDeviceEntry disk0{nullptr, 0, 0};  // the walk needs no open disk
  EXPECT_EQ(QueryNumber<uint64_t>(&disk0, HAL_DISK_INFO_FREE_MIB), (10 * kGiB + 123) >> 20);
  HalDeviceEntry disk2{nullptr, 2, 0};
  EXPECT_EQ(QueryNumber<uint64_t>(&disk2, HAL_DISK_INFO_FREE_MIB), 0u);  // no volume: 0, success
  EXPECT_EQ(QueryNumber<uint64_t>(&disk0, HAL_DISK_INFO_FREE_MIB_SECOND_FORM), (10 * kGiB) >> 20);

  // The second form zeroes a short buffer and fails; the first leaves it alone.
  std::array<unsigned char, 4> small;
  small.fill(0xEE);
  uint32_t returned = 99;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISK, &disk0, HAL_DISK_INFO_FREE_MIB_SECOND_FORM,
                                small.data(), 4, &returned),
            0u);
  EXPECT_EQ(small, (std::array<unsigned char, 4>{}));
  small.fill(0xEE);
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISK, &disk0, HAL_DISK_INFO_FREE_MIB, small.data(), 4,
                                &returned),
            0u);
  EXPECT_EQ(small[0], 0xEE);
  EXPECT_EQ(returned, 99u);
  for (const auto& open : os_.io.opens) EXPECT_EQ(open.access, 0u);
}

TEST_F(DiskModuleTest, TrimAsksTheTrimPropertyAndNeedsTheWholeDescriptor) {
  HalDeviceEntry disk0 = OpenEntry(0), disk1 = OpenEntry(1);
  EXPECT_EQ(QueryNumber<uint32_t>(&disk0, HAL_DISK_INFO_TRIM_ENABLED), 1u);
  const std::vector<BYTE>& query = os_.io.last_input[IOCTL_STORAGE_QUERY_PROPERTY];
  ASSERT_EQ(query.size(), 12u);
  EXPECT_EQ(query[0], 8);  // StorageDeviceTrimProperty
  EXPECT_EQ(query[4], 0);  // PropertyStandardQuery
  EXPECT_EQ(QueryNumber<uint32_t>(&disk1, HAL_DISK_INFO_TRIM_ENABLED), 0u);
  os_.io.Disk(1).ioctls[IOCTL_STORAGE_QUERY_PROPERTY] = FakeDeviceIo::Trim(true, 8);
  EXPECT_EQ(QueryNumber<uint32_t>(&disk1, HAL_DISK_INFO_TRIM_ENABLED), std::nullopt);
  HalDeviceEntry invalid{INVALID_HANDLE_VALUE, 0, 0};
  EXPECT_EQ(QueryNumber<uint32_t>(&invalid, HAL_DISK_INFO_TRIM_ENABLED), std::nullopt);
  HalCloseDevice(HAL_CLASS_DISK, &disk0);
  HalCloseDevice(HAL_CLASS_DISK, &disk1);
}

TEST_F(DiskModuleTest, WmiClassesQueryByIndex) {
  os_.wmi.Script(kCimV2, L"SELECT Caption FROM Win32_DiskDrive WHERE Index='1'", L"Caption",
                 {FakeValue::Text(L"Example NVMe 1TB")});
  os_.wmi.Script(kCimV2, L"SELECT MediaType FROM Win32_DiskDrive WHERE Index = '1'", L"MediaType",
                 {FakeValue::Text(L"Fixed hard disk media")});
  os_.wmi.Script(kCimV2, L"SELECT SerialNumber FROM Win32_DiskDrive WHERE Index='1'",
                 L"serialNumber", {FakeValue::Text(L"")});
  os_.wmi.Script(kStorage, L"SELECT * FROM MSFT_PhysicalDisk where DeviceID = '1'", L"MediaType",
                 {FakeValue::UInt32(4)});
  HalDeviceEntry disk1{nullptr, 1, 0};

  // Text: 2n bytes copied, no NUL written, yet room for one required.
  const std::wstring caption = L"Example NVMe 1TB";
  const uint32_t bytes = static_cast<uint32_t>(caption.size() * 2);
  std::array<wchar_t, 64> text;
  text.fill(L'#');
  uint32_t returned = 0;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISK, &disk1, HAL_DISK_INFO_CAPTION, text.data(), bytes,
                                &returned),
            0u);
  EXPECT_EQ(text[0], L'#');
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISK, &disk1, HAL_DISK_INFO_CAPTION, text.data(),
                                bytes + 2, &returned),
            1u);
  EXPECT_EQ(returned, bytes);
  EXPECT_EQ(std::wstring(text.data(), caption.size()), caption);
  EXPECT_EQ(text[caption.size()], L'#');
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISK, &disk1, HAL_DISK_INFO_MEDIA_TYPE_TEXT, text.data(),
                                128, &returned),
            1u);
  // An empty serial is an answer of 0 bytes, its NUL still needing room; a failed query fails.
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISK, &disk1, HAL_DISK_INFO_SERIAL_NUMBER, text.data(), 1,
                                &returned),
            0u);
  returned = 0xA5A5;
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISK, &disk1, HAL_DISK_INFO_SERIAL_NUMBER, text.data(), 2,
                                &returned),
            1u);
  EXPECT_EQ(returned, 0u);
  EXPECT_EQ(HalQueryInformation(HAL_CLASS_DISK, &disk1, HAL_DISK_INFO_FIRMWARE_REVISION,
                                text.data(), 128, &returned),
            0u);
  EXPECT_EQ(QueryNumber<uint32_t>(&disk1, HAL_DISK_INFO_STORAGE_MEDIA_TYPE), 4u);
  EXPECT_EQ(QueryNumber<uint32_t>(nullptr, HAL_DISK_INFO_COUNT), 3u);
  EXPECT_EQ(QueryNumber<uint32_t>(&disk1, 13), std::nullopt);
}

TEST_F(DiskModuleTest, SystemDiskComesFromThePartitionOfTheWindowsVolume) {
  const auto script = [&](std::vector<FakeValue> dependents, std::vector<FakeValue> antecedents) {
    os_.wmi.Script(kCimV2, L"SELECT Caption FROM Win32_LogicalDisk WHERE VolumeName = 'Windows'",
                   L"Caption", {FakeValue::Text(L"C:")});
    os_.wmi.Script(kCimV2, L"SELECT Dependent FROM Win32_LogicalDiskToPartition", L"Dependent",
                   std::move(dependents));
    os_.wmi.Script(kCimV2, L"SELECT Antecedent FROM Win32_LogicalDiskToPartition", L"Antecedent",
                   std::move(antecedents));
  };
  const FakeValue d = FakeValue::Text(L"\\\\HOST\\root\\cimv2:Win32_LogicalDisk.DeviceID=\"D:\"");
  const FakeValue c = FakeValue::Text(L"\\\\HOST\\root\\cimv2:Win32_LogicalDisk.DeviceID=\"C:\"");
  const auto partition = [](const wchar_t* disk_part) {
    return FakeValue::Text(
        std::wstring(L"\\\\HOST\\root\\cimv2:Win32_DiskPartition.DeviceID=\"Disk #") + disk_part +
        L", Partition #0\"");
  };
  script({d, c}, {partition(L"0"), partition(L"12")});
  EXPECT_EQ(QueryNumber<uint32_t>(nullptr, HAL_DISK_INFO_SYSTEM_DISK_INDEX), 12u);
  // Conversions that fail end as a failed query, never as an exception.
  for (const wchar_t* bad : {L"x", L"99999999999999999999"}) {
    SCOPED_TRACE(testing::Message() << bad);
    script({c}, {partition(bad)});
    EXPECT_EQ(QueryNumber<uint32_t>(nullptr, HAL_DISK_INFO_SYSTEM_DISK_INDEX), std::nullopt);
  }
  script({c}, {FakeValue::Text(L"Disk #, Partition")});  // comma right after '#'
  EXPECT_EQ(QueryNumber<uint32_t>(nullptr, HAL_DISK_INFO_SYSTEM_DISK_INDEX), std::nullopt);
  script({d}, {partition(L"0")});  // no partition holds C:
  EXPECT_EQ(QueryNumber<uint32_t>(nullptr, HAL_DISK_INFO_SYSTEM_DISK_INDEX), std::nullopt);
  // No volume labelled "Windows": the empty caption is found at the first position.
  script({d, c}, {partition(L"3"), partition(L"12")});
  os_.wmi.Script(kCimV2, L"SELECT Caption FROM Win32_LogicalDisk WHERE VolumeName = 'Windows'",
                 L"Caption", {});
  EXPECT_EQ(QueryNumber<uint32_t>(nullptr, HAL_DISK_INFO_SYSTEM_DISK_INDEX), 3u);
}

TEST_F(DiskModuleTest, ReadAndWriteMoveThePointerFirst) {
  os_.io.Disk(0).data.assign(16, 0);
  for (int i = 0; i < 16; ++i) os_.io.Disk(0).data[i] = static_cast<BYTE>(i);
  HalDeviceEntry query_only = OpenEntry(0);
  int64_t offset = 4;
  unsigned char buffer[4] = {};
  uint32_t count = 0;
  // A query-only handle: the system refuses the read itself.
  EXPECT_EQ(HalRead(HAL_CLASS_DISK, &query_only, &offset, buffer, 4, &count), 0u);
  EXPECT_EQ(HalRead(HAL_CLASS_DISK, &query_only, nullptr, buffer, 4, &count), 0u);
  HalCloseDevice(HAL_CLASS_DISK, &query_only);

  HalDeviceEntry writable{os_.io.CreateFileW(L"\\\\.\\PHYSICALDRIVE0", GENERIC_READ | GENERIC_WRITE,
                                             0, nullptr, OPEN_EXISTING, 0, nullptr),
                          0, 0};
  offset = 4;
  EXPECT_EQ(HalRead(HAL_CLASS_DISK, &writable, &offset, buffer, 4, &count), 1u);
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(buffer[0], 4);
  const unsigned char patch[2] = {0xAA, 0xBB};
  EXPECT_EQ(HalWrite(HAL_CLASS_DISK, &writable, nullptr, patch, 2, &count), 1u);  // at 8
  EXPECT_EQ(os_.io.Disk(0).data[8], 0xAA);
  EXPECT_EQ(HalWrite(HAL_CLASS_DISK, &writable, nullptr, patch, 2, nullptr), 0u);
  offset = 0x7FFFFFFF00000000;  // the high half is handed back as the system reports it
  EXPECT_EQ(HalWrite(HAL_CLASS_DISK, &writable, &offset, patch, 0, &count), 1u);
  EXPECT_EQ(offset, 0x7FFFFFFF00000000);
  offset = 0xFFFFFFFF;  // a position whose low half is 0xFFFFFFFF is refused
  EXPECT_EQ(HalRead(HAL_CLASS_DISK, &writable, &offset, buffer, 1, &count), 0u);
  HalCloseDevice(HAL_CLASS_DISK, &writable);
}

TEST_F(DiskModuleTest, DiskClassAnswersPerDiskAndInTotal) {
  {
    Disk disks;
    EXPECT_EQ(disks.GetPhysicDiskNumbers(), 3);
    const uint64_t disk0_mib = (100000ull * 255 * 63 * 512) >> 20;
    EXPECT_EQ(disks.GetTotalCapacity(0), disk0_mib);
    EXPECT_EQ(disks.GetRemainCapacity(0), (10 * kGiB + 123) >> 20);
    EXPECT_EQ(disks.GetUsedCapacity(0), disk0_mib - ((10 * kGiB + 123) >> 20));
    EXPECT_EQ(disks.GetUsedCapacity(1), 0u);  // overflowed size 0, free 3 GiB: no wrap
    EXPECT_EQ(disks.GetAllTotalCapacity(), disk0_mib);
    EXPECT_EQ(disks.GetAllRemainCapacity(), ((10 * kGiB + 123) >> 20) + ((3 * kGiB) >> 20));
    EXPECT_EQ(disks.GetAllTotalVendorCapcity(), 100000ull * 255 * 63 * 512 / 1000000000);
    EXPECT_EQ(disks.GetTotalCapacity(3), 0u);
    EXPECT_EQ(disks.GetTotalCapacity(-1), 0u);

    // Media type: the storage namespace first, then WMI's text; SSD judged the same way.
    os_.wmi.Script(kStorage, L"SELECT * FROM MSFT_PhysicalDisk where DeviceID = '1'", L"MediaType",
                   {FakeValue::UInt32(3)});
    os_.wmi.Script(kCimV2, L"SELECT MediaType FROM Win32_DiskDrive WHERE Index = '0'", L"MediaType",
                   {FakeValue::Text(L"Fixed hard disk media")});
    EXPECT_EQ(disks.GetMediaType(1), L"HDD");
    EXPECT_EQ(disks.GetMediaType(0), L"Fixed hard disk media");
    bool ssd = true;
    EXPECT_TRUE(disks.JudgeSSd(1, ssd));  // HDD by media type, although TRIM says nothing here
    EXPECT_FALSE(ssd);
    EXPECT_TRUE(disks.JudgeSSd(0, ssd));  // no media type: TRIM decides
    EXPECT_TRUE(ssd);
    EXPECT_FALSE(disks.JudgeSSd(2, ssd));
    EXPECT_FALSE(ssd);
    EXPECT_GT(os_.io.open_handles(), 0u);
  }
  // The destructor closed what the members opened (checked in TearDown).
}

}  // namespace
