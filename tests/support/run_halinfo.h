// Runs the native halinfo (HALINFO_PATH) for the offline-mode tests: its standard output and
// exit status.
#pragma once

#include <cstdio>
#include <string>
#include <utility>

namespace velhal::testing {

inline std::pair<std::string, int> Halinfo(const std::string& arguments) {
  const std::string command = std::string(HALINFO_PATH) + " " + arguments + " 2>/dev/null";
  FILE* pipe = ::popen(command.c_str(), "r");
  std::string out;
  char chunk[4096];
  size_t got = 0;
  while (pipe != nullptr && (got = std::fread(chunk, 1, sizeof(chunk), pipe)) > 0)
    out.append(chunk, got);
  const int status = pipe ? ::pclose(pipe) : -1;
  return {out, status};
}

}  // namespace velhal::testing
