// Runs the native halinfo (HALINFO_PATH) for the offline-mode tests: its standard output and
// exit code (-1 when it did not exit by itself).
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>
#include <utility>

namespace velhal::testing {

// Standard output, or with errors set standard error, and the exit code.
inline std::pair<std::string, int> Halinfo(const std::string& arguments, bool errors = false) {
  const std::string command = std::string(HALINFO_PATH) + " " + arguments +
                              (errors ? " 2>&1 >/dev/null" : " 2>/dev/null");
  FILE* pipe = ::popen(command.c_str(), "r");
  std::string out;
  char chunk[4096];
  size_t got = 0;
  while (pipe != nullptr && (got = std::fread(chunk, 1, sizeof(chunk), pipe)) > 0)
    out.append(chunk, got);
  const int status = pipe ? ::pclose(pipe) : -1;
  return {out, status != -1 && WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

inline std::pair<std::string, int> HalinfoErrors(const std::string& arguments) {
  return Halinfo(arguments, true);
}

}  // namespace velhal::testing
