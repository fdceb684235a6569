// halinfo's exit codes (the README lists them).
#pragma once

namespace halinfo {

inline constexpr int kExitSuccess = 0;
inline constexpr int kExitSectionFailed = 1;   // a section of the report could not be made
inline constexpr int kExitUsage = 2;           // unknown option, missing value, wrong mode
inline constexpr int kExitLibraryMissing = 3;  // VelHal.dll cannot be loaded
inline constexpr int kExitBadInput = 4;        // an input file unreadable, empty or undecodable

}  // namespace halinfo
