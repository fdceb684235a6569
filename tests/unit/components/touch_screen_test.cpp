#include "platform/win32.h"

#include "components/touch_screen.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/device_classes.h"
#include "tests/support/fake_system.h"

namespace {

using namespace velhal::testing;

constexpr wchar_t kTouch[] = L"HID_DEVICE_UP:000D_U:0004";
constexpr wchar_t kVirtual[] = L"HID\\VhidUm&Col01";
constexpr wchar_t kClass[] = L"TouchScreenDeviceInformation";

// The vendor class with one instance whose ApplicationInstall is the value given.
void VendorClass(FakeCom& com, FakeValue application_install) {
  com.AddNamespace(L"root\\WMI");
  com.AddClass(kClass, {S_OK, {{{L"ApplicationInstall", application_install}}}});
}

class TouchScreenTest : public ::testing::Test {
 protected:
  FakeValue Stored() const { return os_.com.Instance(kClass, 0).at(L"ApplicationInstall"); }

  FakeSystem os_;
};

TEST_F(TouchScreenTest, TheVirtualCollectionIsSkippedBeforeTheUsageCounts) {
  os_.devices.class_names[L"HIDCLASS"] = velhal::device_class::kHid;
  const std::vector<std::wstring> long_list(30, std::wstring(300, L'X'));  // > 8192 bytes
  std::vector<std::wstring> long_touch = long_list;
  long_touch.push_back(kTouch);
  struct Case {
    const char* rule;
    std::vector<std::vector<std::wstring>> devices;  // hardware IDs, in enumeration order
    bool touch;
  };
  const Case cases[] = {
      {"mouse and keyboard", {{L"HID\\VID_845E&PID_0001"}, {L"HID\\VID_845E&PID_0002"}}, false},
      {"a touch screen", {{L"HID\\VID_04F3&PID_2A1C&Col01", kTouch}}, true},
      {"case is ignored", {{L"hid_device_up:000d_u:0004"}}, true},
      {"the virtual collection never counts", {{kTouch, L"hid\\vhidum&col01"}}, false},
      {"a real one after it does", {{kVirtual, kTouch}, {L"HID\\X", kTouch}}, true},
      {"a pen is not a touch screen", {{L"HID_DEVICE_UP:000D_U:0002"}}, false},
      {"an ID must match whole", {{L"HID_DEVICE_UP:000D_U:00045"}}, false},
      {"a long list is read whole", {long_list, long_touch}, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.rule);
    os_.devices.devices.clear();
    for (const auto& ids : c.devices) os_.devices.Add(velhal::device_class::kHid).HardwareIds(ids);
    EXPECT_EQ(TouchScreen::IsTouchDeviceExist(), c.touch);
  }
  EXPECT_EQ(os_.devices.opens.back().flags, static_cast<DWORD>(DIGCF_PRESENT));
  os_.devices.devices.back().class_guid = velhal::device_class::kKeyboard;  // another class
  EXPECT_FALSE(TouchScreen::IsTouchDeviceExist());
}

TEST_F(TouchScreenTest, OpenAndCloseWriteOneOrZeroIntoTheBoolean) {
  VendorClass(os_.com, FakeValue::Bool(false));
  os_.com.record_name_units = true;
  TouchScreen::OpenTrifingerDriver();
  EXPECT_EQ(Stored().integer, 1);
  ASSERT_EQ(os_.com.puts.size(), 1u);
  EXPECT_EQ(os_.com.puts[0].raw, 1);  // not VARIANT_TRUE (-1)
  EXPECT_EQ(os_.com.puts[0].type, CIM_BOOLEAN);
  EXPECT_EQ(os_.com.puts[0].name_units, 19u);  // the NUL inside the count
  EXPECT_EQ(os_.com.instance_enum_flags, std::vector<LONG>{0x21});
  EXPECT_EQ(os_.com.put_instance_flags, std::vector<LONG>{WBEM_FLAG_UPDATE_ONLY});
  TouchScreen::CloseTrifingerDriver();
  EXPECT_EQ(Stored().integer, 0);

  // Not a boolean: nothing is written.
  VendorClass(os_.com, FakeValue::UInt32(1));
  TouchScreen::CloseTrifingerDriver();
  EXPECT_EQ(os_.com.puts.size(), 2u);
  EXPECT_EQ(Stored().integer, 1);
  // And none of it says anything.
  EXPECT_TRUE(os_.console.printed.empty());
  EXPECT_TRUE(os_.debug.messages.empty());
}

TEST_F(TouchScreenTest, EveryFailureIsReportedInItsOwnWords) {
  struct Case {
    const char* failure;
    bool connects;
    const wchar_t* property;  // of the one instance; null: no class, "": no instance
    HRESULT create, put, save;
    const wchar_t* printed;  // null: nothing on standard output
    std::vector<const char*> logged;
  };
  const HRESULT kReadOnly = static_cast<HRESULT>(WBEM_E_READ_ONLY);
  const HRESULT kDenied = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
  // clang-format off
  const Case cases[] = {
      {"no locator", true, L"ApplicationInstall", REGDB_E_CLASSNOTREG, S_OK, S_OK,
       L"Error 80040154: Could not create instance of IWbemLocator interface.\n",
       {"Could not create instance of IWbemLocator interface.", "Could not connect name."}},
      {"no namespace", false, L"ApplicationInstall", S_OK, S_OK, S_OK,
       L"Error 8004100E: Failed to connect to namespace root\\WMI.\n",
       {"Failed to connect to namespace root\\WMI", "Could not connect name."}},
      {"no class", true, nullptr, S_OK, S_OK, S_OK,
       L"Error 80041010: Failed to get a reference to instance enumerator.\n",
       {"Failed to get a reference to instance enumerator,error is 0x80041010",
        "Could not find the instance."}},
      {"no instance", true, L"", S_OK, S_OK, S_OK, nullptr, {"Could not find the instance."}},
      {"no property", true, L"Other", S_OK, S_OK, S_OK,
       L"Error 80041002: Failed to read property value of ApplicationInstall.\n", {}},
      {"read-only property", true, L"ApplicationInstall", S_OK, kReadOnly, S_OK,
       L"Error 80041023: Failed to set property value of ApplicationInstall.\n", {}},
      {"instance not saved", true, L"ApplicationInstall", S_OK, S_OK, kDenied,
       L"Failed to save the instance, ApplicationInstall will not be updated.\n", {}},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.failure);
    FakeSystem os;
    if (c.connects) os.com.AddNamespace(L"root\\WMI");
    if (c.property != nullptr) {
      FakeCom::Query instances;
      if (*c.property) instances.rows = {{{c.property, FakeValue::Bool(true)}}};
      os.com.AddClass(kClass, instances);
    }
    os.com.create_result = c.create;
    os.com.put_result = c.put;
    os.com.put_instance_result = c.save;
    TouchScreen::OpenTrifingerDriver();
    std::vector<std::wstring> printed, logged;
    if (c.printed != nullptr) printed.emplace_back(c.printed);
    for (const std::string text : c.logged) {
      logged.push_back(std::wstring(text.begin(), text.end()) + L"(TouchScreenControlImp::Open)\n");
    }
    EXPECT_EQ(os.console.printed, printed);
    EXPECT_EQ(os.debug.messages, logged);
  }
}

TEST_F(TouchScreenTest, ComIsBalancedWhateverTheCallersApartment) {
  VendorClass(os_.com, FakeValue::Bool(false));
  TouchScreen::OpenTrifingerDriver();  // the host's MTA: joined (S_FALSE) and left again
  EXPECT_EQ(os_.com.uninitialize_calls, 1);
  for (const auto apartment : {FakeCom::Apartment::kSta, FakeCom::Apartment::kNone}) {
    SCOPED_TRACE(apartment == FakeCom::Apartment::kSta ? "an STA caller" : "no apartment");
    FakeCom com(apartment);
    VendorClass(com, FakeValue::Bool(false));
    {
      const velhal::os::ScopedBackend<velhal::os::Com> installed(com);
      TouchScreen::CloseTrifingerDriver();
    }
    EXPECT_EQ(com.put_instance_flags.size(), 1u);
    // RPC_E_CHANGED_MODE leaves the STA caller's COM alone; a thread without one is undone.
    EXPECT_EQ(com.uninitialize_calls, apartment == FakeCom::Apartment::kSta ? 0 : 1);
    EXPECT_EQ(com.live_objects, 0);
    EXPECT_TRUE(com.violations.empty()) << com.violations.front();
  }
}

}  // namespace
