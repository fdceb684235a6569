#include "tools/halinfo/input_file.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "tools/halinfo/output.h"

namespace halinfo {
namespace {

std::filesystem::path NativePath(const std::string& utf8) {
#ifdef _WIN32
  return std::filesystem::path(FromUtf8(utf8));
#else
  return std::filesystem::path(utf8);
#endif
}

}  // namespace

std::optional<std::vector<uint8_t>> ReadInputFile(const std::string& path) {
  const std::filesystem::path native = NativePath(path);
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(native, error);
  if (!std::filesystem::exists(status)) {
    ReportBadInput(path, "no such file");
    return std::nullopt;
  }
  if (std::filesystem::is_directory(status)) {
    ReportBadInput(path, "is a directory, not a file");
    return std::nullopt;
  }
  std::ifstream file(native, std::ios::binary);
  if (!file) {
    ReportBadInput(path, "cannot be read");
    return std::nullopt;
  }
  std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(file)), {});
  if (file.bad()) {
    ReportBadInput(path, "cannot be read whole");
    return std::nullopt;
  }
  return bytes;
}

void ReportBadInput(const std::string& path, const std::string& problem) {
  PrintError("halinfo: " + path + ": " + problem + "\n");
}

}  // namespace halinfo
