#include "platform/wmi_engine.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/batch.h"
#include "platform/wmi_variant.h"
#include "tests/fakes/fake_com.h"

namespace {

using velhal::testing::FakeCom;
using velhal::testing::FakeValue;
using velhal::wmi::RunQuery;
using Clock = std::chrono::steady_clock;

const std::wstring kCimV2 = L"ROOT\\CIMV2";
const std::wstring kProcessors = L"SELECT Name FROM Win32_Processor";

FakeCom::Row NameRow(const std::wstring& name) { return {{L"Name", FakeValue::Text(name)}}; }

// Collects each handed-over value as text.
struct Collector {
  std::vector<std::wstring> values;
  velhal::os::Wmi::ValueCallback callback() {
    return [this](VARIANT& value) { velhal::wmi::AppendText(value, values); };
  }
};

class WmiEngineTest : public ::testing::Test {
 protected:
  void Install(FakeCom& com) { backend_.emplace(com); }
  void TearDown() override {
    backend_.reset();
  }
  std::optional<velhal::os::ScopedBackend<velhal::os::Com>> backend_;
};

void ExpectClean(const FakeCom& com) {
  EXPECT_EQ(com.live_objects, 0) << "a COM object leaked";
  EXPECT_TRUE(com.violations.empty()) << com.violations.front();
}

TEST_F(WmiEngineTest, UsesTheThreadsApartmentAndInitialisesOnlyWhereThereIsNone) {
  struct Case {
    const char* name;
    FakeCom::Apartment apartment;
    bool apartment_query_fails;
    HRESULT init_failure;
    int expected_inits, expected_uninits;
    HRESULT expected_result;
  };
  const Case cases[] = {
      {"no apartment", FakeCom::Apartment::kNone, false, S_OK, 1, 1, S_OK},
      {"host's MTA", FakeCom::Apartment::kMta, false, S_OK, 0, 0, S_OK},
      {"host's STA", FakeCom::Apartment::kSta, false, S_OK, 0, 0, S_OK},
      // An STA the apartment query cannot report: CoInitializeEx says RPC_E_CHANGED_MODE,
      // the STA serves, and nothing is uninitialised.
      {"STA, query fails", FakeCom::Apartment::kSta, true, S_OK, 1, 0, S_OK},
      {"MTA, query fails", FakeCom::Apartment::kMta, true, S_OK, 1, 1, S_OK},
      {"init fails", FakeCom::Apartment::kNone, false, E_OUTOFMEMORY, 1, 0, E_OUTOFMEMORY},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    FakeCom com(c.apartment);
    com.AddNamespace(kCimV2);
    com.AddQuery(kProcessors, {S_OK, {NameRow(L"CPU")}});
    if (c.init_failure != S_OK) com.FailInitialize(c.init_failure);
    if (c.apartment_query_fails) com.FailApartmentQuery();
    Install(com);
    Collector out;
    EXPECT_EQ(RunQuery(kCimV2, kProcessors, L"Name", false, out.callback()), c.expected_result);
    backend_.reset();
    EXPECT_EQ(com.initialize_calls, c.expected_inits);
    EXPECT_EQ(com.uninitialize_calls, c.expected_uninits);
    if (SUCCEEDED(c.expected_result)) {
      EXPECT_EQ(out.values, std::vector<std::wstring>{L"CPU"});
    } else {
      EXPECT_EQ(com.locators_created, 0);
    }
    ExpectClean(com);
  }
}

TEST_F(WmiEngineTest, HandsOverEveryRowInOrderOrOnlyTheFirst) {
  FakeCom com(FakeCom::Apartment::kMta);
  com.AddNamespace(kCimV2);
  com.AddQuery(kProcessors, {S_OK, {NameRow(L"a"), NameRow(L"b"), NameRow(L"c")}});
  com.AddQuery(L"SELECT Size FROM Win32_DiskDrive",
               {S_OK, {{{L"Size", FakeValue::UInt32(0xFFFFFFF0)}}, {{L"Other", FakeValue::Text(L"x")}}}});
  Install(com);

  Collector all;
  EXPECT_EQ(RunQuery(kCimV2, kProcessors, L"name", false, all.callback()), S_OK);
  EXPECT_EQ(all.values, (std::vector<std::wstring>{L"a", L"b", L"c"}));

  Collector first;
  EXPECT_EQ(RunQuery(kCimV2, kProcessors, L"Name", true, first.callback()), S_OK);
  EXPECT_EQ(first.values, std::vector<std::wstring>{L"a"});

  // uint32 arrives as VT_I4 and is handed over unsigned; a row without the property yields no
  // value and the walk goes on.
  Collector sizes;
  EXPECT_EQ(RunQuery(kCimV2, L"SELECT Size FROM Win32_DiskDrive", L"Size", false,
                     sizes.callback()),
            S_OK);
  EXPECT_EQ(sizes.values, std::vector<std::wstring>{L"4294967280"});

  // Forward-only, semi-synchronous WQL; the connection attempt is bounded too.
  for (LONG flags : com.exec_flags) {
    EXPECT_EQ(flags, WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY);
  }
  for (const std::wstring& language : com.languages) EXPECT_EQ(language, L"WQL");
  for (LONG flags : com.connect_flags) EXPECT_EQ(flags, WBEM_FLAG_CONNECT_USE_MAX_WAIT);
  backend_.reset();
  ExpectClean(com);
}

// A WMI that never answers: the query ends at its bound, each wait within it, and a thread
// waiting for its turn behind a stalled one waits no longer than the bound either.
TEST_F(WmiEngineTest, ReportsFailuresAndEndsEveryWaitAtItsBound) {
  using std::chrono::milliseconds;
  constexpr milliseconds kBound{400};
  constexpr milliseconds kLate = kBound * 3 / 2;  // a second wait of the bound would pass it
  const velhal::wmi::ScopedQueryTimeoutForTesting bound(kBound);
  FakeCom com(FakeCom::Apartment::kMta);
  com.AddNamespace(kCimV2);
  com.AddQuery(L"SELECT Name FROM Win32_Stalled", {S_OK, {NameRow(L"early")}, true});
  com.AddQuery(L"SELECT Name FROM Win32_Broken", {static_cast<HRESULT>(WBEM_E_INVALID_CLASS), {}});
  com.AddQuery(kProcessors, {S_OK, {NameRow(L"CPU")}});
  Install(com);
  const auto elapsed_since = [](Clock::time_point start) {
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
  };

  Collector stalled;
  Clock::time_point start = Clock::now();
  EXPECT_EQ(RunQuery(kCimV2, L"SELECT Name FROM Win32_Stalled", L"Name", false,
                     stalled.callback()),
            static_cast<HRESULT>(WBEM_E_TIMED_OUT));
  EXPECT_GE(elapsed_since(start), kBound - milliseconds(50));
  EXPECT_LT(elapsed_since(start), kLate);
  EXPECT_EQ(stalled.values, std::vector<std::wstring>{L"early"});
  ASSERT_FALSE(com.next_timeouts.empty());
  for (LONG timeout : com.next_timeouts) {
    EXPECT_GT(timeout, 0);
    EXPECT_LE(timeout, kBound.count());
  }
  // The real bound is the one documented, whatever a test sets.
  EXPECT_EQ(velhal::wmi::kQueryTimeout, milliseconds(10'000));

  // Another thread holds the turn longer than the bound (a query stalled in WMI itself): where
  // queries are serialized this one gives up at the bound; elsewhere it does not wait at all.
  std::atomic<bool> holding{false}, release{false};
  std::thread holder([&] {
    const velhal::wmi::Turn turn;
    holding = true;
    while (!release) std::this_thread::sleep_for(milliseconds(5));
  });
  while (!holding) std::this_thread::sleep_for(milliseconds(1));
  Collector waiting;
  start = Clock::now();
  const HRESULT behind = RunQuery(kCimV2, kProcessors, L"Name", false, waiting.callback());
  const milliseconds waited = elapsed_since(start);
  release = true;
  holder.join();
  if (velhal::wmi::SerializesQueries()) {
    EXPECT_EQ(behind, static_cast<HRESULT>(WBEM_E_TIMED_OUT));
    EXPECT_GE(waited, kBound - milliseconds(50));
    EXPECT_LT(waited, kLate) << "the turn was waited for twice";
    EXPECT_TRUE(waiting.values.empty());
  } else {
    EXPECT_EQ(behind, S_OK);
    EXPECT_LT(waited, kBound);
  }

  Collector none;
  EXPECT_EQ(RunQuery(kCimV2, L"SELECT Name FROM Win32_Broken", L"Name", false, none.callback()),
            static_cast<HRESULT>(WBEM_E_INVALID_CLASS));
  EXPECT_EQ(RunQuery(L"ROOT\\Nowhere", kProcessors, L"Name", false, none.callback()),
            static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE));
  EXPECT_TRUE(none.values.empty());
  backend_.reset();
  ExpectClean(com);
}

TEST_F(WmiEngineTest, ASessionSharesItsConnectionsAndAnswersRepeatsFromItsRows) {
  FakeCom com(FakeCom::Apartment::kNone);
  com.AddNamespace(kCimV2);
  com.AddNamespace(L"ROOT\\WMI");
  com.AddQuery(kProcessors, {S_OK, {NameRow(L"CPU"), NameRow(L"CPU 2")}});
  Install(com);

  Collector out;
  for (int i = 0; i < 3; ++i) RunQuery(kCimV2, kProcessors, L"Name", false, out.callback());
  EXPECT_EQ(com.connections, 3);  // no session: each query connects and asks for itself
  EXPECT_EQ(com.exec_flags.size(), 3u);
  EXPECT_EQ(com.initialize_calls, 3);

  {
    const velhal::wmi::SessionScope scope;
    const velhal::wmi::SessionScope nested;  // an inner scope changes nothing
    // A first-object question is asked once; the whole list then needs WMI once more, and
    // every later repeat (any case of the namespace) is replayed, in order.
    RunQuery(kCimV2, kProcessors, L"Name", true, out.callback());
    RunQuery(kCimV2, kProcessors, L"Name", true, out.callback());
    EXPECT_EQ(com.exec_flags.size(), 3u + 1);
    for (int i = 0; i < 3; ++i) RunQuery(kCimV2, kProcessors, L"Name", false, out.callback());
    RunQuery(L"root\\cimv2", kProcessors, L"name", false, out.callback());
    EXPECT_EQ(com.exec_flags.size(), 3u + 2);
    RunQuery(L"ROOT\\WMI", kProcessors, L"Name", false, out.callback());
    EXPECT_EQ(com.exec_flags.size(), 3u + 3);
    EXPECT_EQ(com.connections, 3 + 2);
    EXPECT_EQ(com.locators_created, 3 + 1);
    EXPECT_EQ(com.initialize_calls, 3 + 1);  // COM stays up for the whole scope
    EXPECT_GT(com.live_objects, 0);
  }
  // Everything is released when the scope ends, before COM is uninitialised.
  EXPECT_EQ(out.values.size(), 3u * 2 + 2 + 4 * 2 + 2);
  EXPECT_EQ(std::vector<std::wstring>(out.values.end() - 4, out.values.end()),
            (std::vector<std::wstring>{L"CPU", L"CPU 2", L"CPU", L"CPU 2"}));
  EXPECT_EQ(com.blankets_set, com.connections);
  EXPECT_EQ(com.initialize_calls, com.uninitialize_calls);
  EXPECT_EQ(com.live_objects, 0);
  backend_.reset();
  ExpectClean(com);
}

TEST_F(WmiEngineTest, ABatchSpansCallsOnItsThreadUntilItsOutermostEnd) {
  FakeCom com(FakeCom::Apartment::kNone);
  com.AddNamespace(kCimV2);
  // In a batch, the properties of one object are read from one query for the whole object.
  com.AddQuery(L"SELECT * FROM Win32_Processor",
               {S_OK, {{{L"Name", FakeValue::Text(L"CPU")}, {L"Cores", FakeValue::UInt32(8)}}}});
  com.AddQuery(L"SELECT * FROM Win32_Broken", {static_cast<HRESULT>(WBEM_E_INVALID_CLASS), {}});
  com.AddQuery(kProcessors, {S_OK, {NameRow(L"CPU")}});
  com.AddQuery(L"SELECT * FROM Win32_DiskDrive WHERE Index='0'", {S_OK, {NameRow(L"disk")}});
  com.AddQuery(L"SELECT * FROM Win32_Volume WHERE Label = 'a = b'", {S_OK, {NameRow(L"spaced")}});
  com.AddQuery(L"SELECT * FROM Win32_Volume WHERE Label='a=b'", {S_OK, {NameRow(L"tight")}});
  Install(com);

  EXPECT_FALSE(velhal::wmi::EndBatch());  // no batch open
  velhal::wmi::BeginBatch();
  velhal::wmi::BeginBatch();  // nested: counted
  Collector out;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(RunQuery(kCimV2, kProcessors, L"Name", false, out.callback()), S_OK);
    EXPECT_EQ(RunQuery(kCimV2, L"select Cores from Win32_Processor", L"Cores", true,
                       out.callback()),
              S_OK);
    // A failed query is answered from the batch too, with its own code.
    EXPECT_EQ(RunQuery(kCimV2, L"SELECT Name FROM Win32_Broken", L"Name", false, out.callback()),
              static_cast<HRESULT>(WBEM_E_INVALID_CLASS));
  }
  EXPECT_EQ(out.values, (std::vector<std::wstring>{L"CPU", L"8", L"CPU", L"8", L"CPU", L"8"}));
  EXPECT_EQ(com.connections, 1);
  EXPECT_EQ(com.exec_flags.size(), 2u);
  // Blanks beside a comparison do not make another query; inside a literal they do.
  out.values.clear();
  RunQuery(kCimV2, L"SELECT Name FROM Win32_DiskDrive WHERE Index='0'", L"Name", true,
           out.callback());
  RunQuery(kCimV2, L"SELECT Name FROM  Win32_DiskDrive WHERE Index = '0'", L"Name", true,
           out.callback());
  RunQuery(kCimV2, L"SELECT Name FROM Win32_Volume WHERE Label = 'a = b'", L"Name", true,
           out.callback());
  RunQuery(kCimV2, L"SELECT Name FROM Win32_Volume WHERE Label='a=b'", L"Name", true,
           out.callback());
  EXPECT_EQ(out.values, (std::vector<std::wstring>{L"disk", L"disk", L"spaced", L"tight"}));
  EXPECT_EQ(com.exec_flags.size(), 5u);
  EXPECT_TRUE(velhal::wmi::EndBatch());
  EXPECT_GT(com.live_objects, 0);  // the inner end keeps the batch
  EXPECT_EQ(com.uninitialize_calls, 0);
  EXPECT_TRUE(velhal::wmi::EndBatch());
  EXPECT_EQ(com.live_objects, 0);
  EXPECT_EQ(com.initialize_calls, 1);
  EXPECT_EQ(com.uninitialize_calls, 1);
  EXPECT_FALSE(velhal::wmi::EndBatch());

  // After the batch, each query asks WMI again, as it is written.
  RunQuery(kCimV2, kProcessors, L"Name", false, out.callback());
  EXPECT_EQ(com.exec_flags.size(), 6u);
  backend_.reset();
  ExpectClean(com);
}

// The inventories several calls read: taken once per batch on its thread, afresh outside one
// and on other threads, released at the outermost end; a take that throws keeps nothing.
std::atomic<int> g_taken{0};
int TakeCount() { return ++g_taken; }
int TakeOrThrow() {
  if (++g_taken % 2 == 1) throw std::runtime_error("device busy");
  return g_taken;
}

// In a batch, a row picked by a whole number ("WHERE Index='1'") comes from the class's rows the
// batch holds; WMI is asked where it alone can decide.
TEST_F(WmiEngineTest, ABatchPicksRowsByNumberFromTheClassRowsItHolds) {
  using velhal::testing::FakeValue;
  FakeCom com(FakeCom::Apartment::kNone);
  com.AddNamespace(kCimV2);
  const auto disk = [](uint32_t index, const wchar_t* caption, FakeValue size) {
    return FakeCom::Row{{L"Index", FakeValue::UInt32(index)},
                        {L"Caption", FakeValue::Text(caption)},
                        {L"Size", std::move(size)}};
  };
  com.AddQuery(L"SELECT * FROM Win32_DiskDrive",
               {S_OK, {disk(0, L"first", FakeValue::UInt64(512)),
                       disk(0xFFFFFFFF, L"last", FakeValue::UInt64(1024)),
                       disk(1, L"second", FakeValue::Null(CIM_UINT64))}});
  com.AddQuery(L"SELECT * FROM Win32_DiskDrive WHERE Size='512'",
               {S_OK, {disk(0, L"by size", FakeValue::UInt64(512))}});
  com.AddQuery(L"SELECT * FROM Win32_DiskDrive WHERE Caption='first'",
               {S_OK, {disk(0, L"by caption", FakeValue::UInt64(512))}});
  com.AddQuery(L"SELECT * FROM Win32_DiskDrive WHERE Index='2'", {S_OK, {}});
  Install(com);

  velhal::wmi::BeginBatch();
  Collector out;
  // Before the class's rows are held, WMI is asked.
  EXPECT_EQ(RunQuery(kCimV2, L"SELECT Caption FROM Win32_DiskDrive WHERE Index='2'", L"Caption",
                     true, out.callback()),
            S_OK);
  EXPECT_EQ(com.exec_flags.size(), 1u);
  RunQuery(kCimV2, L"SELECT Index FROM Win32_DiskDrive", L"Index", false, out.callback());
  out.values.clear();
  for (const wchar_t* where : {L"Index='1'", L"Index = '4294967295'", L"Index='0'",
                               L"Index='7'"}) {
    EXPECT_EQ(RunQuery(kCimV2, std::wstring(L"SELECT Caption FROM Win32_DiskDrive WHERE ") + where,
                       L"Caption", false, out.callback()),
              S_OK);
  }
  EXPECT_EQ(out.values, (std::vector<std::wstring>{L"second", L"last", L"first"}));
  EXPECT_EQ(com.exec_flags.size(), 2u);
  // Text, a uint64 (WMI's text) or a null in some row: WMI decides.
  RunQuery(kCimV2, L"SELECT Caption FROM Win32_DiskDrive WHERE Size='512'", L"Caption", true,
           out.callback());
  RunQuery(kCimV2, L"SELECT Caption FROM Win32_DiskDrive WHERE Caption='first'", L"Caption",
           true, out.callback());
  EXPECT_EQ(std::vector<std::wstring>(out.values.end() - 2, out.values.end()),
            (std::vector<std::wstring>{L"by size", L"by caption"}));
  EXPECT_EQ(com.exec_flags.size(), 4u);
  EXPECT_TRUE(velhal::wmi::EndBatch());
  backend_.reset();
  ExpectClean(com);
}

TEST_F(WmiEngineTest, AKeptInventoryIsTakenOncePerBatchOnItsThread) {
  using velhal::batch::Kept;
  FakeCom com(FakeCom::Apartment::kNone);
  Install(com);
  g_taken = 0;
  EXPECT_EQ(Kept(&TakeCount), 1);
  EXPECT_EQ(Kept(&TakeCount), 2);  // no batch: afresh

  EXPECT_FALSE(velhal::batch::Active());
  velhal::batch::Begin();
  EXPECT_TRUE(velhal::batch::Active());
  EXPECT_EQ(Kept(&TakeCount), 3);
  velhal::batch::Begin();
  EXPECT_EQ(Kept(&TakeCount), 3);
  int other_thread = 0;
  std::thread([&] { other_thread = Kept(&TakeCount); }).join();
  EXPECT_EQ(other_thread, 4);
  EXPECT_TRUE(velhal::batch::End());
  EXPECT_EQ(Kept(&TakeCount), 3);  // the inner end keeps it

  EXPECT_THROW(Kept(&TakeOrThrow), std::runtime_error);  // g_taken 5: odd, throws
  EXPECT_EQ(Kept(&TakeOrThrow), 6);
  EXPECT_EQ(Kept(&TakeOrThrow), 6);
  EXPECT_EQ(Kept(&TakeCount), 3);  // each take its own entry

  EXPECT_TRUE(velhal::batch::End());
  EXPECT_FALSE(velhal::batch::Active());
  EXPECT_FALSE(velhal::batch::End());
  EXPECT_EQ(Kept(&TakeCount), 7);  // released: afresh again
}

}  // namespace
