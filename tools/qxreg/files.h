// Whole files.
#ifndef QXREG_FILES_H
#define QXREG_FILES_H

#include <filesystem>
#include <string>
#include <string_view>

// Text of a command line. Bytes that are no UTF-8 stay as they are.
std::filesystem::path PathOf(std::string_view argument);

// Both throw Failure. A file that was there stays as it is until the new one is whole. `isPrivate`
// keeps other users from reading it.
std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, std::string_view bytes, bool isPrivate);

// The file beside it under whose name a new one is made first.
std::filesystem::path DraftOf(const std::filesystem::path& path);

#endif
