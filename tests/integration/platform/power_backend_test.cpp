// The real power backend's scheme calls, bound by name at run time. Where the system exports a
// function, the backend answers what the test's own direct call answers; where it does not
// (Wine 8 has none of the value reads and writes), the call fails with
// ERROR_CALL_NOT_IMPLEMENTED instead of ending the process. Writes run only where they cannot
// change anything: when the function is missing.
#include "platform/os/power.h"

#include <gtest/gtest.h>

namespace {

constexpr GUID kVideoSubgroup{
    0x7516b95f, 0xf776, 0x4464, {0x8c, 0x53, 0x06, 0x16, 0x7f, 0x40, 0xcc, 0x99}};
constexpr GUID kBrightness{
    0xaded5e82, 0xb909, 0x4619, {0x99, 0x49, 0xf5, 0xd7, 0x1d, 0xac, 0x0b, 0xcb}};

FARPROC Exported(const char* name) {
  const HMODULE powrprof = ::LoadLibraryExW(L"powrprof.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return powrprof ? ::GetProcAddress(powrprof, name) : nullptr;
}

TEST(PowerBackendTest, SchemeReadsAnswerAsTheSystemDoesOrFailWhenItLacksThem) {
  velhal::os::Power& power = velhal::os::Power::Real();
  velhal::UniquePowerScheme scheme;
  const DWORD active = power.PowerGetActiveScheme(nullptr, scheme.Put());
  using GetActive = DWORD(WINAPI*)(HKEY, GUID**);
  if (const auto own =
          reinterpret_cast<GetActive>(reinterpret_cast<void*>(Exported("PowerGetActiveScheme")))) {
    GUID* own_scheme = nullptr;
    EXPECT_EQ(active, own(nullptr, &own_scheme));
    if (own_scheme != nullptr) {
      EXPECT_TRUE(scheme.IsValid() && *scheme.Get() == *own_scheme);
      ::LocalFree(own_scheme);
    }
  } else {
    EXPECT_EQ(active, static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
  }

  using Read = DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, DWORD*);
  for (const bool ac : {true, false}) {
    const char* name = ac ? "PowerReadACValueIndex" : "PowerReadDCValueIndex";
    SCOPED_TRACE(name);
    DWORD value = 0;
    const DWORD result = ac ? power.PowerReadACValueIndex(nullptr, scheme.Get(), &kVideoSubgroup,
                                                          &kBrightness, &value)
                            : power.PowerReadDCValueIndex(nullptr, scheme.Get(), &kVideoSubgroup,
                                                          &kBrightness, &value);
    if (const auto own = reinterpret_cast<Read>(reinterpret_cast<void*>(Exported(name)))) {
      DWORD own_value = 0;
      EXPECT_EQ(result, own(nullptr, scheme.Get(), &kVideoSubgroup, &kBrightness, &own_value));
      EXPECT_EQ(value, own_value);
    } else {
      EXPECT_EQ(result, static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
    }
  }
}

TEST(PowerBackendTest, MissingSchemeWritesFailWithoutEndingTheProcess) {
  velhal::os::Power& power = velhal::os::Power::Real();
  bool any_missing = false;
  if (Exported("PowerWriteACValueIndex") == nullptr) {
    any_missing = true;
    EXPECT_EQ(power.PowerWriteACValueIndex(nullptr, nullptr, &kVideoSubgroup, &kBrightness, 50),
              static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
  }
  if (Exported("PowerWriteDCValueIndex") == nullptr) {
    any_missing = true;
    EXPECT_EQ(power.PowerWriteDCValueIndex(nullptr, nullptr, &kVideoSubgroup, &kBrightness, 50),
              static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
  }
  if (!any_missing) GTEST_SKIP() << "this system has both writes; the test changes no setting";
}

}  // namespace
