// Text helpers of halinfo: everything it prints is UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace halinfo {

std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view text);

// Writes UTF-8 bytes to standard output unchanged.
void Print(std::string_view text);
void PrintError(std::string_view text);

// The system's message for a Win32 error code, without the trailing line break.
std::string SystemMessage(unsigned long error);

}  // namespace halinfo
