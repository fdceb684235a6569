#include "hal/disk.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "hal/disk_module.h"
#include "hal/hal_api.h"
#include "hal/query_output.h"
#include "platform/boundary.h"

namespace {

using velhal::CallGuarded;

// MSFT_PhysicalDisk.MediaType values.
constexpr uint32_t kMediaUnspecified = 0;
constexpr uint32_t kMediaHdd = 3;
constexpr uint32_t kMediaSsd = 4;
constexpr uint32_t kMediaScm = 5;

constexpr uint32_t kTextBufferBytes = 1024;

// The object's class-5 list and its count, opened on first use.
bool EnsureList(HalDeviceList*& list, int32_t& count) {
  if (list != nullptr) return true;
  HalDeviceList* opened = nullptr;
  if (!HalInit(HAL_CLASS_DISK, &opened) || opened == nullptr) return false;
  list = opened;
  count = static_cast<int32_t>(opened->count);
  return true;
}

// The one getter behind every member: queries class 5 for one disk, opening it on first use.
bool Number(HalDeviceList*& list, int32_t& count, uint32_t infoClass, int index, uint64_t& value) {
  if (!EnsureList(list, count) || index < 0 || index >= count) return false;
  HalDeviceEntry* entry = velhal::hal::EntryAt(list, static_cast<uint32_t>(index));
  // A failed open leaves INVALID_HANDLE_VALUE in the slot; clearing it makes the next member
  // try again instead of querying a dead handle.
  if (entry->handle == nullptr && !HalOpenDevice(HAL_CLASS_DISK, entry)) entry->handle = nullptr;
  std::array<unsigned char, 8> buffer{};
  uint32_t returned = 0;
  if (!HalQueryInformation(HAL_CLASS_DISK, entry, infoClass, buffer.data(),
                           static_cast<uint32_t>(buffer.size()), &returned)) {
    return false;
  }
  value = 0;
  std::memcpy(&value, buffer.data(), returned <= sizeof(value) ? returned : sizeof(value));
  return true;
}

std::wstring Text(HalDeviceList*& list, int32_t& count, uint32_t infoClass, int index) {
  if (!EnsureList(list, count) || index < 0 || index >= count) return {};
  std::array<wchar_t, kTextBufferBytes / sizeof(wchar_t)> buffer{};
  uint32_t returned = 0;
  if (!HalQueryInformation(HAL_CLASS_DISK, velhal::hal::EntryAt(list, static_cast<uint32_t>(index)),
                           infoClass, buffer.data(), kTextBufferBytes, &returned)) {
    return {};
  }
  return std::wstring(buffer.data(), returned / sizeof(wchar_t));
}

// A per-disk member summed over every disk.
uint64_t Sum(Disk& disk, HalDeviceList*& list, int32_t& count, uint64_t (Disk::*perDisk)(int)) {
  if (!EnsureList(list, count)) return 0;
  uint64_t total = 0;
  for (int i = 0; i < count; ++i) total += (disk.*perDisk)(i);
  return total;
}

}  // namespace

Disk::Disk() : list_(nullptr), count_(0) {}

Disk::~Disk() {
  if (list_ == nullptr) return;
  for (int i = 0; i < count_; ++i)
    HalCloseDevice(HAL_CLASS_DISK, velhal::hal::EntryAt(list_, static_cast<uint32_t>(i)));
  std::free(list_);
}

int Disk::GetPhysicDiskNumbers() {
  return CallGuarded(0, [&] {
    std::array<unsigned char, 4> buffer{};
    uint32_t returned = 0;
    if (!HalQueryInformation(HAL_CLASS_DISK, nullptr, HAL_DISK_INFO_COUNT, buffer.data(), 4,
                             &returned)) {
      return 0;
    }
    uint32_t count = 0;
    std::memcpy(&count, buffer.data(), sizeof(count));
    return static_cast<int>(count);
  });
}

uint64_t Disk::GetTotalCapacity(int index) {
  return CallGuarded(uint64_t{0}, [&] {
    uint64_t value = 0;
    return Number(list_, count_, HAL_DISK_INFO_SIZE_MIB, index, value) ? value : 0;
  });
}

uint64_t Disk::GetTotalVendorCapacity(int index) {
  return CallGuarded(uint64_t{0}, [&] {
    uint64_t value = 0;
    return Number(list_, count_, HAL_DISK_INFO_SIZE_DECIMAL_GB, index, value) ? value : 0;
  });
}

uint64_t Disk::GetTotalVendorCapacityM(int index) {
  return CallGuarded(uint64_t{0}, [&] {
    uint64_t value = 0;
    return Number(list_, count_, HAL_DISK_INFO_SIZE_DECIMAL_MB, index, value) ? value : 0;
  });
}

uint64_t Disk::GetRemainCapacity(int index) {
  return CallGuarded(uint64_t{0}, [&] {
    uint64_t value = 0;
    return Number(list_, count_, HAL_DISK_INFO_FREE_MIB, index, value) ? value : 0;
  });
}

uint64_t Disk::GetUsedCapacity(int index) {
  return CallGuarded(uint64_t{0}, [&]() -> uint64_t {
    const uint64_t total = GetTotalCapacity(index);
    const uint64_t free = GetRemainCapacity(index);
    return total > free ? total - free : 0;
  });
}

uint64_t Disk::GetAllTotalCapacity() {
  return CallGuarded(uint64_t{0},
                     [&] { return Sum(*this, list_, count_, &Disk::GetTotalCapacity); });
}

uint64_t Disk::GetAllTotalVendorCapcity() {
  return CallGuarded(uint64_t{0},
                     [&] { return Sum(*this, list_, count_, &Disk::GetTotalVendorCapacity); });
}

uint64_t Disk::GetAllRemainCapacity() {
  return CallGuarded(uint64_t{0},
                     [&] { return Sum(*this, list_, count_, &Disk::GetRemainCapacity); });
}

uint64_t Disk::GetAllUsedCapacity() {
  return CallGuarded(uint64_t{0},
                     [&] { return Sum(*this, list_, count_, &Disk::GetUsedCapacity); });
}

std::wstring Disk::GetCaption(int index) {
  return CallGuarded(std::wstring{},
                     [&] { return Text(list_, count_, HAL_DISK_INFO_CAPTION, index); });
}

std::wstring Disk::GetFirmwareRevision(int index) {
  return CallGuarded(std::wstring{},
                     [&] { return Text(list_, count_, HAL_DISK_INFO_FIRMWARE_REVISION, index); });
}

std::wstring Disk::GetSerialNumber(int index) {
  return CallGuarded(std::wstring{},
                     [&] { return Text(list_, count_, HAL_DISK_INFO_SERIAL_NUMBER, index); });
}

std::wstring Disk::GetMediaType(int index) {
  return CallGuarded(std::wstring{}, [&]() -> std::wstring {
    uint64_t media = kMediaUnspecified;
    if (Number(list_, count_, HAL_DISK_INFO_STORAGE_MEDIA_TYPE, index, media)) {
      if (media == kMediaSsd) return L"SSD";
      if (media == kMediaHdd) return L"HDD";
      if (media == kMediaScm) return L"SCM";
    }
    return Text(list_, count_, HAL_DISK_INFO_MEDIA_TYPE_TEXT, index);
  });
}

bool Disk::JudgeSSd(int index, bool& isSsd) {
  isSsd = false;
  return CallGuarded(false, [&] {
    uint64_t value = 0;
    // The media type is the better witness: some hard disks (SMR drives) support TRIM too.
    if (Number(list_, count_, HAL_DISK_INFO_STORAGE_MEDIA_TYPE, index, value) &&
        (value == kMediaSsd || value == kMediaHdd)) {
      isSsd = value == kMediaSsd;
      return true;
    }
    if (Number(list_, count_, HAL_DISK_INFO_TRIM_ENABLED, index, value)) {
      isSsd = value == 1;
      return true;
    }
    return false;
  });
}

bool Disk::GetSystemDiskIndex(uint32_t& index) {
  return CallGuarded(false, [&] {
    std::array<unsigned char, 4> buffer{};
    uint32_t returned = 0;
    if (!HalQueryInformation(HAL_CLASS_DISK, nullptr, HAL_DISK_INFO_SYSTEM_DISK_INDEX,
                             buffer.data(), 4, &returned)) {
      return false;
    }
    std::memcpy(&index, buffer.data(), sizeof(index));
    return true;
  });
}
