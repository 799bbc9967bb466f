// A directory of a test's own, removed with all that is in it.
#ifndef TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <filesystem>
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

#endif
