// The real power backend's scheme calls, bound by name at run time: where the system exports a
// function the backend answers as the test's own call does; where it does not (Wine 8 has none
// of the value reads and writes), the call fails with ERROR_CALL_NOT_IMPLEMENTED instead of
// ending the process. Writes are made only where they cannot change anything: when missing.
#include "platform/os/power.h"

#include <gtest/gtest.h>

namespace {

constexpr GUID kVideoSubgroup{
    0x7516b95f, 0xf776, 0x4464, {0x8c, 0x53, 0x06, 0x16, 0x7f, 0x40, 0xcc, 0x99}};
constexpr GUID kBrightness{
    0xaded5e82, 0xb909, 0x4619, {0x99, 0x49, 0xf5, 0xd7, 0x1d, 0xac, 0x0b, 0xcb}};

using Read = DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, DWORD*);

template <class Function>
Function Exported(const char* name) {
  const HMODULE powrprof = ::LoadLibraryExW(L"powrprof.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(powrprof, name)));
}

TEST(PowerBackendTest, SchemeCallsAnswerAsTheSystemDoesOrFailWhereItLacksThem) {
  velhal::os::Power& power = velhal::os::Power::Real();
  velhal::UniquePowerScheme scheme;
  const DWORD active = power.PowerGetActiveScheme(nullptr, scheme.Put());
  if (!Exported<void*>("PowerGetActiveScheme")) {
    EXPECT_EQ(active, DWORD{ERROR_CALL_NOT_IMPLEMENTED});
  }
  for (const bool ac : {true, false}) {
    const char* name = ac ? "PowerReadACValueIndex" : "PowerReadDCValueIndex";
    SCOPED_TRACE(name);
    DWORD value = 0, own_value = 0;
    const DWORD result = (power.*(ac ? &velhal::os::Power::PowerReadACValueIndex
                                     : &velhal::os::Power::PowerReadDCValueIndex))(
        nullptr, scheme.Get(), &kVideoSubgroup, &kBrightness, &value);
    const Read own = Exported<Read>(name);
    EXPECT_EQ(result, own ? own(nullptr, scheme.Get(), &kVideoSubgroup, &kBrightness, &own_value)
                          : DWORD{ERROR_CALL_NOT_IMPLEMENTED});
    EXPECT_EQ(value, own_value);
  }
  if (Exported<void*>("PowerWriteACValueIndex") == nullptr) {
    EXPECT_EQ(power.PowerWriteACValueIndex(nullptr, nullptr, &kVideoSubgroup, &kBrightness, 50),
              DWORD{ERROR_CALL_NOT_IMPLEMENTED});
  }
  if (Exported<void*>("PowerWriteDCValueIndex") == nullptr) {
    EXPECT_EQ(power.PowerWriteDCValueIndex(nullptr, nullptr, &kVideoSubgroup, &kBrightness, 50),
              DWORD{ERROR_CALL_NOT_IMPLEMENTED});
  }
}

}  // namespace
