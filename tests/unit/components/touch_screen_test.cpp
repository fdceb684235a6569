#include "platform/win32.h"

#include "components/touch_screen.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "platform/device_classes.h"
#include "tests/support/fake_system.h"

namespace {

using namespace velhal::testing;

constexpr wchar_t kTouch[] = L"HID_DEVICE_UP:000D_U:0004";
constexpr wchar_t kVirtual[] = L"HID\\VhidUm&Col01";
constexpr wchar_t kClass[] = L"TouchScreenDeviceInformation";
constexpr char kOpen[] = "(TouchScreenControlImp::Open)\n";

class TouchScreenTest : public ::testing::Test {
 protected:
  TouchScreenTest() {
    os_.devices.class_names[L"HIDCLASS"] = velhal::device_class::kHid;
    os_.com.AddNamespace(L"root\\WMI");
    os_.com.record_name_units = true;
  }
  void Instance(FakeValue application_install) {
    os_.com.AddClass(kClass, {S_OK, {{{L"ApplicationInstall", application_install}}}});
  }
  FakeValue Stored() const { return os_.com.Instance(kClass, 0).at(L"ApplicationInstall"); }
  static std::wstring Logged(const char* text) {
    return std::wstring(text, text + std::strlen(text)) +
           std::wstring(kOpen, kOpen + std::strlen(kOpen));
  }

  FakeSystem os_;
};

TEST_F(TouchScreenTest, TheVirtualCollectionIsSkippedBeforeTheUsageCounts) {
  const std::wstring many(300, L'X');  // a list longer than the first 8192-byte read
  struct Case {
    const char* rule;
    std::vector<std::vector<std::wstring>> devices;  // hardware IDs, in enumeration order
    bool touch;
  };
  const Case cases[] = {
      {"no HID device", {}, false},
      {"mouse and keyboard", {{L"HID\\VID_845E&PID_0001"}, {L"HID\\VID_845E&PID_0002"}}, false},
      {"a touch screen", {{L"HID\\VID_04F3&PID_2A1C&Col01", kTouch}}, true},
      {"case is ignored", {{L"hid_device_up:000d_u:0004"}}, true},
      {"the virtual collection never counts", {{kVirtual, kTouch}}, false},
      {"... in any case, and wherever in the list", {{kTouch, L"hid\\vhidum&col01"}}, false},
      {"a real one after it does", {{kVirtual, kTouch}, {L"HID\\X", kTouch}}, true},
      {"a pen is not a touch screen", {{L"HID_DEVICE_UP:000D_U:0002"}}, false},
      {"an ID must match whole", {{L"HID_DEVICE_UP:000D_U:00045"}}, false},
      {"a long list is read whole", {std::vector<std::wstring>(30, many), {}}, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.rule);
    os_.devices.devices.clear();
    for (const auto& ids : c.devices) os_.devices.Add(velhal::device_class::kHid).HardwareIds(ids);
    EXPECT_EQ(TouchScreen::IsTouchDeviceExist(), c.touch);
  }
  os_.devices.devices.clear();
  std::vector<std::wstring> long_list(30, many);
  long_list.push_back(kTouch);
  os_.devices.Add(velhal::device_class::kHid).HardwareIds(long_list);
  os_.devices.Add(velhal::device_class::kKeyboard).HardwareIds({kTouch});  // another class
  EXPECT_TRUE(TouchScreen::IsTouchDeviceExist());
  EXPECT_EQ(os_.devices.opens.back().flags, static_cast<DWORD>(DIGCF_PRESENT));
  EXPECT_EQ(os_.devices.class_names_asked.back(), L"HIDCLASS");

  os_.devices.devices.front().present = false;
  EXPECT_FALSE(TouchScreen::IsTouchDeviceExist());
  os_.devices.class_names.clear();  // no such class: nothing to scan
  EXPECT_FALSE(TouchScreen::IsTouchDeviceExist());
}

TEST_F(TouchScreenTest, OpenAndCloseWriteOneOrZeroIntoTheBoolean) {
  Instance(FakeValue::Bool(false));
  TouchScreen::OpenTrifingerDriver();
  EXPECT_EQ(Stored().integer, 1);
  ASSERT_EQ(os_.com.puts.size(), 1u);
  EXPECT_EQ(os_.com.puts[0].vt, VT_BOOL);
  EXPECT_EQ(os_.com.puts[0].raw, 1);  // not VARIANT_TRUE (-1)
  EXPECT_EQ(os_.com.puts[0].type, CIM_BOOLEAN);
  EXPECT_EQ(os_.com.puts[0].name_units, 19u);  // the NUL inside the count
  EXPECT_EQ(os_.com.get_name_units, std::vector<UINT>{19u});
  EXPECT_EQ(os_.com.instance_enum_flags, std::vector<LONG>{0x21});
  EXPECT_EQ(os_.com.put_instance_flags, std::vector<LONG>{WBEM_FLAG_UPDATE_ONLY});
  TouchScreen::CloseTrifingerDriver();
  EXPECT_EQ(Stored().integer, 0);
  EXPECT_TRUE(os_.console.printed.empty());
  EXPECT_TRUE(os_.debug.messages.empty());
  EXPECT_EQ(os_.com.blankets_set, 2);

  // Not a boolean: nothing is written, nothing said.
  os_.com.puts.clear();
  Instance(FakeValue::UInt32(0));
  TouchScreen::OpenTrifingerDriver();
  EXPECT_TRUE(os_.com.puts.empty());
  EXPECT_EQ(os_.com.put_instance_flags.size(), 2u);
  EXPECT_EQ(Stored().integer, 0);
  EXPECT_TRUE(os_.console.printed.empty());
  EXPECT_TRUE(os_.debug.messages.empty());
}

TEST_F(TouchScreenTest, EveryFailureIsReportedInItsOwnWords) {
  struct Case {
    const char* failure;
    bool connects;
    std::function<void(FakeSystem&)> arrange;
    std::wstring printed;  // empty: nothing on standard output
    std::vector<std::wstring> logged;
  };
  const Case cases[] = {
      {"no locator",
       true,
       [](FakeSystem& os) { os.com.create_result = REGDB_E_CLASSNOTREG; },
       L"Error 80040154: Could not create instance of IWbemLocator interface.\n",
       {Logged("Could not create instance of IWbemLocator interface."),
        Logged("Could not connect name.")}},
      {"no namespace",
       false,
       [](FakeSystem&) {},
       L"Error 8004100E: Failed to connect to namespace root\\WMI.\n",
       {Logged("Failed to connect to namespace root\\WMI"), Logged("Could not connect name.")}},
      {"no class",
       true,
       [](FakeSystem&) {},
       L"Error 80041010: Failed to get a reference to instance enumerator.\n",
       {Logged("Failed to get a reference to instance enumerator,error is 0x80041010"),
        Logged("Could not find the instance.")}},
      {"no instance",
       true,
       [](FakeSystem& os) { os.com.AddClass(kClass, {}); },
       L"",
       {Logged("Could not find the instance.")}},
      {"no property",
       true,
       [](FakeSystem& os) {
         os.com.AddClass(kClass, {S_OK, {{{L"Other", FakeValue::Bool(true)}}}});
       },
       L"Error 80041002: Failed to read property value of ApplicationInstall.\n",
       {}},
      {"read-only property",
       true,
       [](FakeSystem& os) {
         os.com.AddClass(kClass, {S_OK, {{{L"ApplicationInstall", FakeValue::Bool(true)}}}});
         os.com.put_result = WBEM_E_READ_ONLY;
       },
       L"Error 80041023: Failed to set property value of ApplicationInstall.\n",
       {}},
      {"instance not saved",
       true,
       [](FakeSystem& os) {
         os.com.AddClass(kClass, {S_OK, {{{L"ApplicationInstall", FakeValue::Bool(true)}}}});
         os.com.put_instance_result = WBEM_E_ACCESS_DENIED;
       },
       L"Failed to save the instance, ApplicationInstall will not be updated.\n",
       {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.failure);
    FakeSystem os;
    if (c.connects) os.com.AddNamespace(L"root\\WMI");
    c.arrange(os);
    TouchScreen::OpenTrifingerDriver();
    EXPECT_EQ(os.console.printed, c.printed.empty() ? std::vector<std::wstring>{}
                                                    : std::vector<std::wstring>{c.printed});
    EXPECT_EQ(os.debug.messages, c.logged);
  }
}

TEST_F(TouchScreenTest, ComIsBalancedWhateverTheCallersApartment) {
  Instance(FakeValue::Bool(false));
  // The host's MTA: joined (S_FALSE) and left again.
  TouchScreen::OpenTrifingerDriver();
  EXPECT_EQ(os_.com.initialize_calls, 1);
  EXPECT_EQ(os_.com.uninitialize_calls, 1);

  for (const auto apartment : {FakeCom::Apartment::kSta, FakeCom::Apartment::kNone}) {
    SCOPED_TRACE(apartment == FakeCom::Apartment::kSta ? "an STA caller" : "no apartment");
    FakeCom com(apartment);
    com.AddNamespace(L"root\\WMI");
    com.AddClass(kClass, {S_OK, {{{L"ApplicationInstall", FakeValue::Bool(false)}}}});
    {
      const velhal::os::ScopedBackend<velhal::os::Com> installed(com);
      TouchScreen::CloseTrifingerDriver();
      TouchScreenControlImp unopened;  // never opened: nothing to balance, nothing set
      EXPECT_EQ(unopened.SetApplicationInstall(1), 0);
    }
    EXPECT_EQ(com.put_instance_flags.size(), 1u);
    EXPECT_EQ(com.initialize_calls, 1);
    // RPC_E_CHANGED_MODE leaves the STA caller's COM alone; a thread without one is undone.
    EXPECT_EQ(com.uninitialize_calls, apartment == FakeCom::Apartment::kSta ? 0 : 1);
    EXPECT_EQ(com.live_objects, 0);
    EXPECT_TRUE(com.violations.empty()) << com.violations.front();
  }
}

}  // namespace
