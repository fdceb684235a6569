// Text helpers of halinfo: everything it prints is UTF-8. Portable: on Windows the conversions
// are the system's; elsewhere (the offline modes' native build) they are done here.
#pragma once

#include <string>
#include <string_view>

namespace halinfo {

std::string ToUtf8(std::wstring_view text);
// 8-bit text as firmware stores it: the ANSI code page on Windows; Windows-1252, the ANSI code
// page of Western Windows installations, where there is none.
std::wstring FromAnsi(std::string_view text);

// Writes UTF-8 bytes unchanged.
void Print(std::string_view text);
void PrintError(std::string_view text);

#ifdef _WIN32
std::wstring FromUtf8(std::string_view text);
// The system's message for a Win32 error code, without the trailing line break.
std::string SystemMessage(unsigned long error);
#endif

}  // namespace halinfo
