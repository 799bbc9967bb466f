// What differs between the platforms.
#ifndef QXREG_PLATFORM_H
#define QXREG_PLATFORM_H

#include <filesystem>
#include <string>
#include <vector>

// Makes standard streams carry bytes as they are, and gives the command line as UTF-8.
std::vector<std::string> PrepareProgram(int count, char** arguments);

bool IsErrorTerminal();

// Brings what was written to a file to the disk. False if that failed.
bool FlushToDisk(const std::filesystem::path& file);

// A whole store: the user's own, or the machine's. Others may use it at the same time; what is
// saved is how it stood at one moment, and what is brought back is there for all at one moment.
// Both throw Failure.
enum class Store { kUser, kMachine };
void BackUpStore(Store store, const std::filesystem::path& file);
void RestoreStore(Store store, const std::filesystem::path& file);

#endif
