#include "platform/wmi_variant.h"

#include <gtest/gtest.h>

#include <oleauto.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/fakes/fake_variant.h"

namespace {

using velhal::wmi::AppendBytes;
using velhal::wmi::AppendText;
using velhal::wmi::AppendUInt32;

// A hand-built VARIANT that clears itself.
struct Variant {
  VARIANT v;
  explicit Variant(VARTYPE type) {
    ::VariantInit(&v);
    V_VT(&v) = type;
  }
  Variant(Variant&& other) noexcept : v(other.v) { V_VT(&other.v) = VT_EMPTY; }
  Variant(const Variant&) = delete;
  ~Variant() { ::VariantClear(&v); }
};

Variant Text(const wchar_t* text) {
  Variant value(VT_BSTR);
  V_BSTR(&value.v) = text ? ::SysAllocString(text) : nullptr;
  return value;
}

template <class Setter>
Variant Make(VARTYPE type, Setter set) {
  Variant value(type);
  set(value.v);
  return value;
}

struct Row {
  const char* name;
  Variant value;
  std::vector<std::wstring> text;
  std::vector<unsigned int> number;
};

TEST(WmiVariantTest, ConvertsEachTypeByOneTable) {
  Row rows[] = {
      {"BSTR", Text(L"Example"), {L"Example"}, {}},
      {"null BSTR", Text(nullptr), {L""}, {}},
      {"decimal BSTR", Text(L"4294967295"), {L"4294967295"}, {4294967295u}},
      {"uint64 BSTR", Text(L"25276497920"), {L"25276497920"}, {}},
      {"signed BSTR", Text(L"-1"), {L"-1"}, {}},
      {"blank BSTR", Text(L" 7"), {L" 7"}, {}},
      {"VT_I4 negative", Make(VT_I4, [](VARIANT& v) { V_I4(&v) = -2; }), {L"-2"}, {0xFFFFFFFEu}},
      {"VT_UI4", Make(VT_UI4, [](VARIANT& v) { V_UI4(&v) = 0xFFFFFFF0u; }), {L"4294967280"},
       {0xFFFFFFF0u}},
      {"VT_I2", Make(VT_I2, [](VARIANT& v) { V_I2(&v) = 300; }), {L"300"}, {300u}},
      {"VT_UI1", Make(VT_UI1, [](VARIANT& v) { V_UI1(&v) = 200; }), {L"200"}, {200u}},
      {"VT_I8 small", Make(VT_I8, [](VARIANT& v) { V_I8(&v) = 42; }), {L"42"}, {42u}},
      {"VT_I8 large", Make(VT_I8, [](VARIANT& v) { V_I8(&v) = INT64_C(1) << 40; }),
       {L"1099511627776"}, {}},
      {"VT_UI8 large", Make(VT_UI8, [](VARIANT& v) { V_UI8(&v) = UINT64_MAX; }),
       {L"18446744073709551615"}, {}},
      {"VT_BOOL", Make(VT_BOOL, [](VARIANT& v) { V_BOOL(&v) = VARIANT_TRUE; }), {L"TRUE"}, {1u}},
      {"VT_NULL", Variant(VT_NULL), {}, {}},
      {"VT_EMPTY", Variant(VT_EMPTY), {}, {}},
      {"VT_R8", Make(VT_R8, [](VARIANT& v) { V_R8(&v) = 1.5; }), {}, {}},
  };
  for (Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::vector<std::wstring> text;
    std::vector<unsigned int> number;
    std::vector<unsigned char> bytes;
    AppendText(row.value.v, text);
    AppendUInt32(row.value.v, number);
    AppendBytes(row.value.v, bytes);
    EXPECT_EQ(text, row.text);
    EXPECT_EQ(number, row.number);
    if (V_VT(&row.value.v) != VT_UI1) {
      EXPECT_TRUE(bytes.empty());
    }
  }
}

TEST(WmiVariantTest, ReadsByteArraysWhole) {
  velhal::testing::FakeValue table = velhal::testing::FakeValue::Bytes({0x00, 0x02, 0xFF, 0x7F});
  VARIANT array;
  table.ToVariant(&array);
  std::vector<unsigned char> bytes{0xAA};  // appended to, not replaced
  AppendBytes(array, bytes);
  EXPECT_EQ(bytes, (std::vector<unsigned char>{0xAA, 0x00, 0x02, 0xFF, 0x7F}));
  std::vector<std::wstring> text;
  AppendText(array, text);
  EXPECT_TRUE(text.empty());
  ::VariantClear(&array);

  velhal::testing::FakeValue empty = velhal::testing::FakeValue::Bytes({});
  empty.ToVariant(&array);
  bytes.clear();
  AppendBytes(array, bytes);
  EXPECT_TRUE(bytes.empty());
  ::VariantClear(&array);

  Variant single(VT_UI1);
  V_UI1(&single.v) = 0x5A;
  AppendBytes(single.v, bytes);
  EXPECT_EQ(bytes, std::vector<unsigned char>{0x5A});
}

}  // namespace
