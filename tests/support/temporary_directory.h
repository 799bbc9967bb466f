// A directory of a test's own, removed with all that is in it, and whole files.
#ifndef TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

class TemporaryDirectory {
  public:
    TemporaryDirectory() {
        do {
            m_path = std::filesystem::temp_directory_path() /
                     ("qxcore-test-" + std::to_string(std::random_device()()));
        } while (!std::filesystem::create_directory(m_path));  // throws if it cannot
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all);
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

// As bytes.
inline void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// With the platform's line ends as line feeds.
inline std::string ReadTextFile(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

#endif
