#include "tests/fakes/fake_device_io.h"

#include <algorithm>
#include <cstring>

#include "tests/fakes/fake_common.h"

namespace velhal::testing {

FakeDeviceIo::Device& FakeDeviceIo::Disk(uint32_t number) {
  return devices[L"\\\\.\\PHYSICALDRIVE" + std::to_wstring(number)];
}

void FakeDeviceIo::Volume(char letter, DWORD device_type, DWORD device_number, uint64_t free) {
  STORAGE_DEVICE_NUMBER number{};
  number.DeviceType = device_type;
  number.DeviceNumber = device_number;
  number.PartitionNumber = 1;
  Device& volume = devices[std::wstring(L"\\\\.\\") + static_cast<wchar_t>(letter) + L":"];
  volume.ioctls[IOCTL_STORAGE_GET_DEVICE_NUMBER] = Answer(Bytes(number));
  free_bytes[std::string(1, letter) + ":"] = free;
}

FakeDeviceIo::Ioctl FakeDeviceIo::Geometry(int64_t cylinders, DWORD tracks, DWORD sectors,
                                           DWORD bytes) {
  DISK_GEOMETRY geometry{};
  geometry.Cylinders.QuadPart = cylinders;
  geometry.MediaType = FixedMedia;
  geometry.TracksPerCylinder = tracks;
  geometry.SectorsPerTrack = sectors;
  geometry.BytesPerSector = bytes;
  return Answer(Bytes(geometry));
}

FakeDeviceIo::Ioctl FakeDeviceIo::Trim(bool enabled, DWORD returned) {
  DEVICE_TRIM_DESCRIPTOR trim{};
  trim.Version = sizeof(trim);
  trim.Size = sizeof(trim);
  trim.TrimEnabled = enabled ? 1 : 0;
  return Answer(Bytes(trim), returned);
}

FakeDeviceIo::Open* FakeDeviceIo::Lookup(HANDLE handle) {
  const auto found = handles_.find(handle);
  return found == handles_.end() ? nullptr : &found->second;
}

HANDLE FakeDeviceIo::CreateFileW(const wchar_t* path, DWORD access, DWORD share,
                                 SECURITY_ATTRIBUTES*, DWORD disposition, DWORD attributes,
                                 HANDLE) {
  opens.push_back({path ? path : L"", access, share, disposition, attributes});
  const auto found = devices.find(opens.back().path);
  if (found == devices.end() || found->second.open_error != 0) {
    ::SetLastError(found == devices.end() ? ERROR_FILE_NOT_FOUND : found->second.open_error);
    return INVALID_HANDLE_VALUE;
  }
  const HANDLE handle = reinterpret_cast<HANDLE>(next_);
  next_ += 4;
  handles_[handle] = Open{found->first, access};
  return handle;
}

HANDLE FakeDeviceIo::CreateFileA(const char* path, DWORD access, DWORD share,
                                 SECURITY_ATTRIBUTES* security, DWORD disposition,
                                 DWORD attributes, HANDLE template_file) {
  const std::string narrow = path ? path : "";
  const std::wstring wide(narrow.begin(), narrow.end());  // device paths are ASCII
  return CreateFileW(wide.c_str(), access, share, security, disposition, attributes,
                     template_file);
}

BOOL FakeDeviceIo::DeviceIoControl(HANDLE handle, DWORD code, void* in, DWORD in_size, void* out,
                                   DWORD out_size, DWORD* returned, OVERLAPPED*) {
  const Open* open = Lookup(handle);
  if (open == nullptr) return Fail(ERROR_INVALID_HANDLE);
  const auto* input = static_cast<const BYTE*>(in);
  last_input[code] = input ? std::vector<BYTE>(input, input + in_size) : std::vector<BYTE>{};
  const Device& device = devices.at(open->path);
  const auto found = device.ioctls.find(code);
  if (found == device.ioctls.end()) return Fail(ERROR_NOT_SUPPORTED);
  const Ioctl answer =
      found->second.by_input ? found->second.by_input(last_input[code]) : found->second;
  if (!answer.result) return Fail(answer.error);
  if (out_size < answer.out.size() && !answer.truncates) return Fail(ERROR_INSUFFICIENT_BUFFER);
  const DWORD copied = std::min(out_size, static_cast<DWORD>(answer.out.size()));
  if (copied != 0) std::memcpy(out, answer.out.data(), copied);
  if (returned != nullptr) *returned = answer.returned.value_or(copied);
  return answer.result;
}

BOOL FakeDeviceIo::CloseHandle(HANDLE handle) {
  if (handles_.erase(handle) == 0) {
    ++bad_closes;
    return Fail(ERROR_INVALID_HANDLE);
  }
  return TRUE;
}

DWORD FakeDeviceIo::SetFilePointer(HANDLE handle, LONG distance_low, LONG* distance_high,
                                   DWORD method) {
  Open* open = Lookup(handle);
  if (open == nullptr || method != FILE_BEGIN) {
    ::SetLastError(ERROR_INVALID_HANDLE);
    return INVALID_SET_FILE_POINTER;
  }
  const int64_t high = distance_high ? *distance_high : (distance_low < 0 ? -1 : 0);
  const int64_t position = (high << 32) | static_cast<uint32_t>(distance_low);
  if (position < 0) {
    ::SetLastError(ERROR_NEGATIVE_SEEK);
    return INVALID_SET_FILE_POINTER;
  }
  open->position = static_cast<uint64_t>(position);
  if (distance_high != nullptr) *distance_high = static_cast<LONG>(position >> 32);
  ::SetLastError(NO_ERROR);
  return static_cast<DWORD>(position & 0xFFFFFFFF);
}

BOOL FakeDeviceIo::ReadFile(HANDLE handle, void* buffer, DWORD length, DWORD* read, OVERLAPPED*) {
  Open* open = Lookup(handle);
  if (open == nullptr) return Fail(ERROR_INVALID_HANDLE);
  if ((open->access & GENERIC_READ) == 0) return Fail(ERROR_ACCESS_DENIED);
  const std::vector<BYTE>& data = devices.at(open->path).data;
  const uint64_t start = std::min<uint64_t>(open->position, data.size());
  const DWORD count = static_cast<DWORD>(std::min<uint64_t>(length, data.size() - start));
  std::memcpy(buffer, data.data() + start, count);
  open->position += count;
  *read = count;
  return TRUE;
}

BOOL FakeDeviceIo::WriteFile(HANDLE handle, const void* buffer, DWORD length, DWORD* written,
                             OVERLAPPED*) {
  Open* open = Lookup(handle);
  if (open == nullptr) return Fail(ERROR_INVALID_HANDLE);
  if ((open->access & GENERIC_WRITE) == 0) return Fail(ERROR_ACCESS_DENIED);
  std::vector<BYTE>& data = devices.at(open->path).data;
  if (length == 0) {
    *written = 0;
    return TRUE;
  }
  if (data.size() < open->position + length) data.resize(open->position + length);
  std::memcpy(data.data() + open->position, buffer, length);
  open->position += length;
  *written = length;
  return TRUE;
}

BOOL FakeDeviceIo::GetDiskFreeSpaceExA(const char* root, ULARGE_INTEGER* available_to_caller,
                                       ULARGE_INTEGER* total, ULARGE_INTEGER* total_free) {
  const auto found = free_bytes.find(root ? root : "");
  if (found == free_bytes.end()) return Fail(ERROR_PATH_NOT_FOUND);
  if (available_to_caller) available_to_caller->QuadPart = found->second;
  if (total) total->QuadPart = found->second * 2;
  if (total_free) total_free->QuadPart = found->second;
  return TRUE;
}

}  // namespace velhal::testing
