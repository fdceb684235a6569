// Installed memory modules, through device class 11, and the system's memory load. Members
// return 1 on success and 0 on failure, with their output zeroed or emptied first.
#pragma once

#include <cstdint>
#include <string>

#include "hal/velhal_export.h"

struct HalDeviceList;
struct HalDeviceEntry;

class VELHAL_API Memory {
 public:
  Memory();
  ~Memory();  // frees the class-11 list it opened
  Memory(const Memory&) = delete;
  Memory& operator=(const Memory&) = delete;

  int Init();
  int GetMemoryNums(uint32_t& count);
  // Sum of the capacities in bytes, from module 0 up to the first whose capacity is unknown.
  int GetTotalMemoryNums(uint64_t& totalBytes);
  int GetStringInfoByIndex(std::wstring& text, int index, unsigned long infoClass);
  int GetLocatorbyIndex(std::wstring& text, int index);
  int GetManufacturerbyIndex(std::wstring& text, int index);
  int GetSerialNumberbyIndex(std::wstring& text, int index);
  int GetPartNumberbyIndex(std::wstring& text, int index);
  int GetUintInfoByIndex(uint64_t& value, int index, unsigned long infoClass);
  int GetCapacitybyIndex(uint64_t& bytes, int index);
  int GetSpeedbyIndex(uint32_t& speed, int index);  // as WMI reports it (MHz or MT/s)
  unsigned long GetMemoryLoad();  // percent in use, 0 when unknown
  float GetMemoryLoadF();         // fraction in use, to 1/10000; 0.0 when unknown

 private:
  HalDeviceList* list_;  // class 11's list, opened by the first member that needs it
};
