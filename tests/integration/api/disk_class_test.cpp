// Classes 5 and 3 through VelHal.dll on the system's real disks, volumes and device database,
// checked against the test's own I/O controls and walks. What Wine does not serve is a skip
// with its reason.
#include "platform/win32.h"

#include "hal/hal_api.h"

#include <gtest/gtest.h>

#include <setupapi.h>
#include <winioctl.h>

#include <initguid.h>
#include <devguid.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "tests/support/hal_query.h"
#include "tests/support/raw_wmi.h"
#include "tests/support/wine.h"

namespace {

template <class T>
std::optional<T> Query(HalDeviceEntry* entry, uint32_t info_class) {
  return velhal::testing::QueryNumber<T>(HAL_CLASS_DISK, entry, info_class);
}

std::optional<uint64_t> OwnGeometryBytes(HANDLE disk) {
  DISK_GEOMETRY geometry{};
  DWORD bytes = 0;
  if (!::DeviceIoControl(disk, IOCTL_DISK_GET_DRIVE_GEOMETRY, nullptr, 0, &geometry,
                         sizeof(geometry), &bytes, nullptr)) {
    return std::nullopt;
  }
  return static_cast<uint64_t>(geometry.Cylinders.QuadPart) * geometry.TracksPerCylinder *
         geometry.SectorsPerTrack * geometry.BytesPerSector;
}

std::optional<STORAGE_DEVICE_NUMBER> OwnDeviceNumber(const std::wstring& path) {
  HANDLE handle = ::CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, 0, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
  STORAGE_DEVICE_NUMBER number{};
  DWORD bytes = 0;
  const BOOL ok = ::DeviceIoControl(handle, IOCTL_STORAGE_GET_DEVICE_NUMBER, nullptr, 0, &number,
                                    sizeof(number), &bytes, nullptr);
  ::CloseHandle(handle);
  return ok ? std::optional(number) : std::nullopt;
}

// Free MiB of the lettered volumes on a disk, walked the test's own way.
uint64_t OwnFreeMiB(DWORD disk) {
  uint64_t free_mib = 0;
  const DWORD letters = ::GetLogicalDrives();
  for (int i = 0; i < 26; ++i) {
    if (!(letters & (1u << i))) continue;
    const wchar_t letter = static_cast<wchar_t>(L'A' + i);
    const auto number = OwnDeviceNumber(std::wstring(L"\\\\.\\") + letter + L":");
    if (!number || number->DeviceType != FILE_DEVICE_DISK || number->DeviceNumber != disk) continue;
    ULARGE_INTEGER free_bytes{};
    if (::GetDiskFreeSpaceExW((std::wstring(1, letter) + L":\\").c_str(), nullptr, nullptr,
                              &free_bytes)) {
      free_mib += free_bytes.QuadPart >> 20;
    }
  }
  return free_mib;
}

class DiskClassTest : public ::testing::Test {
 protected:
  void SetUp() override {
    entry_.index = 0;
    if (!HalOpenDevice(HAL_CLASS_DISK, &entry_)) GTEST_SKIP() << "no \\\\.\\PHYSICALDRIVE0 here";
  }
  void TearDown() override {
    if (entry_.handle != nullptr && entry_.handle != INVALID_HANDLE_VALUE) {
      EXPECT_EQ(HalCloseDevice(HAL_CLASS_DISK, &entry_), 1u);
      EXPECT_EQ(entry_.handle, nullptr);
    }
  }
  HalDeviceEntry entry_{};
};

TEST_F(DiskClassTest, ListsTheDisksWmiNames) {
  HalDeviceList* list = nullptr;
  if (!HalInit(HAL_CLASS_DISK, &list)) {
    if (velhal::testing::RunningOnWine()) {
      GTEST_SKIP() << "Wine's Win32_DiskDrive has no Name property, so no disk is counted";
    }
    FAIL() << "HalInit(5) failed on a machine with PHYSICALDRIVE0";
  }
  ASSERT_NE(list, nullptr);
  EXPECT_GE(list->count, 1u);
  EXPECT_EQ(list->totalSize, 8 + 16 * list->count);
  EXPECT_EQ(Query<uint32_t>(nullptr, HAL_DISK_INFO_COUNT), list->count);
  std::free(list);
}

TEST_F(DiskClassTest, SizesAgreeWithTheDisksOwnGeometry) {
  const std::optional<uint64_t> bytes = OwnGeometryBytes(entry_.handle);
  ASSERT_TRUE(bytes.has_value()) << "the geometry I/O control fails here";
  EXPECT_EQ(Query<uint64_t>(&entry_, HAL_DISK_INFO_SIZE_MIB), *bytes >> 20);
  EXPECT_EQ(Query<uint64_t>(&entry_, HAL_DISK_INFO_SIZE_DECIMAL_GB), *bytes / 1000000000);
  EXPECT_EQ(Query<uint64_t>(&entry_, HAL_DISK_INFO_SIZE_DECIMAL_MB), *bytes / 1000000);
}

TEST_F(DiskClassTest, FreeSpaceAgreesWithAnIndependentLetterWalk) {
  const uint64_t expected = OwnFreeMiB(0);
  EXPECT_EQ(Query<uint64_t>(&entry_, HAL_DISK_INFO_FREE_MIB), expected);
  EXPECT_EQ(Query<uint64_t>(&entry_, HAL_DISK_INFO_FREE_MIB_SECOND_FORM), expected);
  HalDeviceEntry absent{nullptr, 57, 0};  // no volume: 0, success
  EXPECT_EQ(Query<uint64_t>(&absent, HAL_DISK_INFO_FREE_MIB), 0u);
}

TEST_F(DiskClassTest, TrimFollowsTheStorageProperty) {
  STORAGE_PROPERTY_QUERY query{};
  query.PropertyId = StorageDeviceTrimProperty;
  query.QueryType = PropertyStandardQuery;
  DEVICE_TRIM_DESCRIPTOR trim{};
  DWORD bytes = 0;
  if (!::DeviceIoControl(entry_.handle, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof(query), &trim,
                         sizeof(trim), &bytes, nullptr)) {
    const DWORD error = ::GetLastError();
    EXPECT_EQ(Query<uint32_t>(&entry_, HAL_DISK_INFO_TRIM_ENABLED), std::nullopt);
    GTEST_SKIP() << "the system answers no TRIM property (error " << error << ")";
  }
  EXPECT_EQ(Query<uint32_t>(&entry_, HAL_DISK_INFO_TRIM_ENABLED), uint32_t{trim.TrimEnabled == 1});
}

TEST_F(DiskClassTest, TextClassesAnswerWhereWmiHasTheProperty) {
  wchar_t text[256] = {};
  uint32_t returned = 0;
  // Wine serves MediaType and SerialNumber of Win32_DiskDrive, not Caption or FirmwareRevision.
  for (uint32_t info_class : {HAL_DISK_INFO_MEDIA_TYPE_TEXT, HAL_DISK_INFO_SERIAL_NUMBER}) {
    SCOPED_TRACE(info_class);
    EXPECT_EQ(
        HalQueryInformation(HAL_CLASS_DISK, &entry_, info_class, text, sizeof(text), &returned),
        1u);
    EXPECT_GT(returned, 0u);
    EXPECT_EQ(returned % 2, 0u);
  }
  if (!HalQueryInformation(HAL_CLASS_DISK, &entry_, HAL_DISK_INFO_CAPTION, text, sizeof(text),
                           &returned)) {
    if (velhal::testing::RunningOnWine()) GTEST_SKIP() << "Wine's Win32_DiskDrive has no Caption";
    ADD_FAILURE() << "no caption for disk 0";
  }
}

TEST_F(DiskClassTest, SystemDiskIsTheDiskOfTheVolumeLabelledWindows) {
  // The Wine test session labels C: "Windows"; on Windows the system volume often is so labelled.
  wchar_t label[MAX_PATH + 1] = {};
  ::GetVolumeInformationW(L"C:\\", label, MAX_PATH + 1, nullptr, nullptr, nullptr, nullptr, 0);
  const std::optional<uint32_t> index = Query<uint32_t>(nullptr, HAL_DISK_INFO_SYSTEM_DISK_INDEX);
  if (std::wstring(label) != L"Windows") {
    // Unlabelled: the first partition WMI lists answers, "Disk #n, Partition #m".
    const auto antecedents = velhal::testing::RawWmiTexts(
        L"ROOT\\CIMV2", L"SELECT Antecedent FROM Win32_LogicalDiskToPartition", L"Antecedent");
    if (!antecedents || antecedents->empty()) GTEST_SKIP() << "WMI lists no partition here";
    const std::wstring& first = antecedents->front();
    const size_t hash = first.find(L'#');
    ASSERT_NE(hash, std::wstring::npos);
    EXPECT_EQ(index, std::stoul(first.substr(hash + 1)));
    return;
  }
  const auto own = OwnDeviceNumber(L"\\\\.\\C:");
  ASSERT_TRUE(own.has_value());
  EXPECT_EQ(index, own->DeviceNumber);
}

TEST_F(DiskClassTest, QueryOnlyHandlesReadNothing) {
  int64_t offset = 0;
  unsigned char sector[512];
  uint32_t read = 0;
  EXPECT_EQ(HalRead(HAL_CLASS_DISK, &entry_, &offset, sector, sizeof(sector), &read), 0u);
}

TEST(AudioClassTest, ListsOnlyControllersOfTheOneVendor) {
  HDEVINFO set = ::SetupDiGetClassDevsW(&GUID_DEVCLASS_MEDIA, nullptr, nullptr, DIGCF_PRESENT);
  ASSERT_NE(set, INVALID_HANDLE_VALUE);
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  DWORD media = 0;
  while (::SetupDiEnumDeviceInfo(set, media, &device)) ++media;
  ::SetupDiDestroyDeviceInfoList(set);

  HalDeviceList* list = nullptr;
  const uint32_t made = HalInit(HAL_CLASS_AUDIO_ENDPOINTS, &list);
  if (media == 0) {
    EXPECT_EQ(made, 0u);  // nothing to list, nothing allocated
    EXPECT_EQ(list, nullptr);
    GTEST_SKIP() << "the system has no media-class device";
  }
  if (made) {
    EXPECT_LE(list->count, media);
    std::free(list);
  }
  EXPECT_EQ(HalCloseDevice(HAL_CLASS_AUDIO_ENDPOINTS, nullptr), 1u);
}

}  // namespace
