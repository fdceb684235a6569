// ReadReg against the raw registry calls it wraps: the same string and number read many times
// each way, alternating, on the machine's own processor key.
//
//   read_reg_bench [reads]     default 20000 per way; prints microseconds per read and the ratio
#include "platform/win32.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/read_reg.h"

namespace {

using Clock = std::chrono::steady_clock;

const wchar_t kKey[] = L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";

bool RawString(std::wstring& out) {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, KEY_READ | KEY_WOW64_64KEY, &key) != 0) {
    return false;
  }
  wchar_t buffer[261] = {};
  DWORD size = 520, type = REG_SZ;
  const bool ok = ::RegQueryValueExW(key, L"ProcessorNameString", nullptr, &type,
                                     reinterpret_cast<BYTE*>(buffer), &size) == 0;
  ::RegCloseKey(key);
  out = buffer;
  return ok;
}

bool RawNumber(unsigned long& out) {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, KEY_READ | KEY_WOW64_64KEY, &key) != 0) {
    return false;
  }
  DWORD size = 4, type = REG_DWORD, value = 0;
  const bool ok = ::RegQueryValueExW(key, L"~MHz", nullptr, &type,
                                     reinterpret_cast<BYTE*>(&value), &size) == 0;
  ::RegCloseKey(key);
  out = value;
  return ok;
}

template <class Read>
double MicrosecondsPerRead(int reads, Read&& read) {
  const Clock::time_point start = Clock::now();
  for (int i = 0; i < reads; ++i) read();
  return std::chrono::duration<double, std::micro>(Clock::now() - start).count() / reads;
}

}  // namespace

int main(int argc, char** argv) {
  const int reads = argc > 1 ? std::atoi(argv[1]) : 20000;
  std::wstring text;
  unsigned long number = 0;
  double library = 0, raw = 0;
  for (int round = 0; round < 10; ++round) {  // alternated, so drift hits both alike
    library += MicrosecondsPerRead(reads / 10, [&] {
      ReadReg::ReadLocalMachineRegRZ(kKey, L"ProcessorNameString", text);
      ReadReg::ReadLocalMachineRegDW(kKey, L"~MHz", number);
    });
    raw += MicrosecondsPerRead(reads / 10, [&] {
      RawString(text);
      RawNumber(number);
    });
  }
  std::printf("read_reg_bench: %d string+number reads per way: ReadReg %.2f us, raw %.2f us, "
              "ratio %.2f\n",
              reads, library / 10, raw / 10, library / raw);
  return 0;
}
