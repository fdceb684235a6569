// File helpers a host of the library needs: the library's own folder, a file's existence, size
// and version resource, and reading a small text file whatever its encoding. Paths are taken
// as they are given (relative ones against the process's current folder).
#pragma once

#include <cstdint>
#include <string>

#include "hal/velhal_export.h"

class VELHAL_API FileProcess {
 public:
  // The folder VelHal.dll was loaded from, with its trailing backslash (GetModuleFileNameW of
  // the library's own module); empty when it cannot be had.
  std::wstring GetLibraryFolder();
  // Whether path names an existing file, not a folder (GetFileAttributesW).
  bool IsFileExist(const std::wstring& path);
  // The file's size in bytes (GetFileAttributesExW); 0 also when it is missing or a folder.
  uint64_t GetFileSize(const std::wstring& path);
  // The file and product versions of the file's version resource (its VS_FIXEDFILEINFO), as
  // "10.0.22621.2506"; empty without a resource, or with a truncated or malformed one.
  std::wstring GetFileVersion(const std::wstring& path);
  std::wstring GetProductVersion(const std::wstring& path);
  // Reads a text file of at most 1 MiB into text as UTF-16: UTF-16 LE or BE after its byte-order
  // mark, otherwise UTF-8 (a UTF-8 byte-order mark is dropped). Returns 0, or a Windows error
  // code with text empty: ERROR_FILE_NOT_FOUND or ERROR_PATH_NOT_FOUND for a missing file,
  // ERROR_SHARING_VIOLATION or ERROR_LOCK_VIOLATION for a file another program holds locked,
  // ERROR_FILE_TOO_LARGE for a larger one, ERROR_NO_UNICODE_TRANSLATION for bytes that are
  // not text in those encodings.
  unsigned long ReadTextFile(const std::wstring& path, std::wstring& text);
};
