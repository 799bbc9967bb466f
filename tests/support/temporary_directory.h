// A directory of a test's own, removed with all that is in it.
#ifndef TESTS_SUPPORT_TEMPORARY_DIRECTORY_H
#define TESTS_SUPPORT_TEMPORARY_DIRECTORY_H

#include <filesystem>
#include <stdexcept>
#include <string>

class TemporaryDirectory {
  public:
    TemporaryDirectory() {
        std::string pattern = std::filesystem::temp_directory_path() / "qxcore-test-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary directory");
        }
        m_path = pattern;
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
