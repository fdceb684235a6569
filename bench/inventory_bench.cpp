// The full inventory's wall time against a peer program: `halinfo --json` (beside this program)
// and the baseline command given on the command line run alternately, each round's ratio is
// taken, and the median of the ratios is printed with each program's median time and the number
// of fields each reports (halinfo: JSON scalars; the peer: "label: value" lines; "filled"
// leaves out null, empty and unknown values).
//
//   inventory_bench [--rounds N] BASELINE.exe [ARGS...]    default 25 rounds
#include "platform/win32.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Run {
  double milliseconds = 0;
  std::string output;
};

// Runs a command line with its standard output captured, and times it from start to exit.
Run Execute(const std::wstring& command_line) {
  SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
  HANDLE read = nullptr, write = nullptr;
  ::CreatePipe(&read, &write, &inherit, 0);
  ::SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = write;
  startup.hStdError = ::CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_WRITE, &inherit,
                                    OPEN_EXISTING, 0, nullptr);
  startup.hStdInput = nullptr;
  PROCESS_INFORMATION process{};
  std::wstring mutable_line = command_line;
  Run run;
  const Clock::time_point start = Clock::now();
  if (!::CreateProcessW(nullptr, mutable_line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &process)) {
    std::fprintf(stderr, "inventory_bench: cannot start %ls (error %lu)\n", command_line.c_str(),
                 ::GetLastError());
    std::exit(1);
  }
  ::CloseHandle(write);
  char chunk[65536];
  DWORD got = 0;
  while (::ReadFile(read, chunk, sizeof(chunk), &got, nullptr) && got > 0) run.output.append(chunk, got);
  ::WaitForSingleObject(process.hProcess, INFINITE);
  run.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  ::CloseHandle(process.hProcess);
  ::CloseHandle(process.hThread);
  ::CloseHandle(read);
  ::CloseHandle(startup.hStdError);
  return run;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

struct Fields {
  int all = 0, filled = 0;
};

// JSON scalars: each string, number, true, false or null outside a key.
Fields CountJson(const std::string& json) {
  Fields fields;
  for (size_t i = 0; i < json.size(); ++i) {
    const char c = json[i];
    if (c == '"') {
      size_t end = i + 1;
      while (end < json.size() && json[end] != '"') end += json[end] == '\\' ? 2 : 1;
      size_t next = end + 1;
      while (next < json.size() && (json[next] == ' ' || json[next] == '\r' || json[next] == '\n')) ++next;
      if (next < json.size() && json[next] == ':') {  // a key
        i = end;
        continue;
      }
      ++fields.all;
      if (end > i + 1 && json.compare(i, end - i + 1, "\"?\"") != 0) ++fields.filled;
      i = end;
    } else if (std::strchr("-0123456789tfn", c) != nullptr && i > 0 &&
               std::strchr(":[, \n", json[i - 1]) != nullptr) {
      ++fields.all;
      if (c != 'n') ++fields.filled;
      while (i < json.size() && std::strchr(",]} \r\n", json[i]) == nullptr) ++i;
    }
  }
  return fields;
}

// "label: value" lines of a plain report.
Fields CountLines(const std::string& text) {
  Fields fields;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    const std::string line = text.substr(start, end - start);
    const size_t colon = line.find(':');
    if (colon != std::string::npos && colon > 0 && line.find("http") == std::string::npos) {
      std::string value = line.substr(colon + 1);
      value.erase(0, value.find_first_not_of(" \t"));
      while (!value.empty() && (value.back() == '\r' || value.back() == ' ')) value.pop_back();
      ++fields.all;
      if (!value.empty() && value != "<unknown>" && value != "None" && value != "?") ++fields.filled;
    }
    start = end + 1;
  }
  return fields;
}

std::wstring Widen(const char* text) {
  std::wstring wide;
  for (; *text; ++text) wide += static_cast<wchar_t>(static_cast<unsigned char>(*text));
  return wide;
}

}  // namespace

int main(int argc, char** argv) {
  int rounds = 25;
  int first = 1;
  if (argc > 2 && std::strcmp(argv[1], "--rounds") == 0) {
    rounds = std::atoi(argv[2]);
    first = 3;
  }
  if (first >= argc) {
    std::fprintf(stderr, "usage: inventory_bench [--rounds N] BASELINE.exe [ARGS...]\n");
    return 2;
  }
  std::wstring baseline;
  for (int i = first; i < argc; ++i) baseline += (i > first ? L" " : L"") + Widen(argv[i]);
  wchar_t self[MAX_PATH] = {};
  ::GetModuleFileNameW(nullptr, self, MAX_PATH);
  std::wstring halinfo = self;
  halinfo = L"\"" + halinfo.substr(0, halinfo.find_last_of(L"\\/") + 1) + L"halinfo.exe\" --json";

  std::vector<double> ours, theirs, ratios;
  Run last_ours, last_theirs;
  for (int round = 0; round < rounds; ++round) {
    // Alternate which goes first, so that warm caches favour neither.
    if (round % 2 == 0) {
      last_ours = Execute(halinfo);
      last_theirs = Execute(baseline);
    } else {
      last_theirs = Execute(baseline);
      last_ours = Execute(halinfo);
    }
    ours.push_back(last_ours.milliseconds);
    theirs.push_back(last_theirs.milliseconds);
    ratios.push_back(last_ours.milliseconds / last_theirs.milliseconds);
  }
  const Fields our_fields = CountJson(last_ours.output);
  const Fields their_fields = CountLines(last_theirs.output);
  std::printf("inventory_bench: %d rounds: halinfo %.0f ms, baseline %.0f ms (medians); "
              "median ratio %.2f\n",
              rounds, Median(ours), Median(theirs), Median(ratios));
  std::printf("inventory_bench: fields: halinfo %d (%d filled), baseline %d (%d filled)\n",
              our_fields.all, our_fields.filled, their_fields.all, their_fields.filled);
  return 0;
}
