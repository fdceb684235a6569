// The input files of the offline modes, read whole: a missing file, a folder or an unreadable
// one is said on standard error in one line, as the exit code kExitBadInput goes with it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace halinfo {

std::optional<std::vector<uint8_t>> ReadInputFile(const std::string& path);

// Says on standard error what is wrong with a file that was read but does not decode whole.
void ReportBadInput(const std::string& path, const std::string& problem);

}  // namespace halinfo
