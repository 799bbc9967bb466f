#include <gtest/gtest.h>
#include <qxcore/file.h>

#include <iostream>
#include <string>
#include <vector>

#include "support/child_role.h"
#include "support/known_differences.h"
#include "support/system.h"

namespace {

constexpr QXResult kCreated = 2;
constexpr uint32_t kReadWrite = QX_FILE_READ | QX_FILE_WRITE;

class FileTest : public testing::Test {
  protected:
    std::filesystem::path Place(const char* name) const { return m_directory.Path() / name; }
    std::u16string Path(const char* name) const { return Place(name).u16string(); }

    void Put(const char* name, const std::string& content) const {
        WriteFile(Place(name), content);
    }
    std::string Content(const char* name) const { return ReadFile(Place(name)); }
    QXHandle Open(const char* name, uint32_t flags, QXResult expected = QX_S_OK,
                  int32_t mode = 0666) const {
        QXHandle file = nullptr;
        EXPECT_EQ(QXFileOpen(Path(name).c_str(), flags, mode, &file), expected);
        EXPECT_EQ(file == QX_INVALID_HANDLE, expected < 0);
        return file;
    }

    const TemporaryDirectory m_directory;
};

TEST_F(FileTest, DispositionsTellWhatWasMade) {
    constexpr uint32_t kCreate = QX_FILE_CREATE, kTruncate = QX_FILE_TRUNCATE;
    constexpr uint32_t kExclusive = QX_FILE_EXCLUSIVE;
    const struct {
        uint32_t bits;
        QXResult missing;
        QXResult existing;
        const char* content;
    } cases[] = {
        {0, QX_E_NOTFOUND, QX_S_OK, "old"},
        {kCreate, kCreated, QX_S_OK, "old"},
        {kTruncate, QX_E_NOTFOUND, QX_S_OK, ""},
        {kCreate | kTruncate, kCreated, QX_S_OK, ""},
        {kExclusive, QX_E_FAIL, QX_E_FAIL, "old"},
        {kCreate | kExclusive, QX_S_OK, QX_E_FAIL, "old"},
        {kTruncate | kExclusive, QX_E_FAIL, QX_E_FAIL, "old"},
        {kCreate | kTruncate | kExclusive, QX_S_OK, QX_E_FAIL, "old"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.bits);
        std::filesystem::remove(Place("missing"));
        Put("existing", "old");
        QXFileClose(Open("missing", kReadWrite | each.bits, each.missing));
        QXFileClose(Open("existing", kReadWrite | each.bits, each.existing));
        EXPECT_EQ(std::filesystem::exists(Place("missing")), each.missing >= 0);
        EXPECT_EQ(Content("existing"), each.content);
    }
}

TEST_F(FileTest, ReadsAndWritesAtItsPosition) {
    const QXHandle file = Open("file", kReadWrite | QX_FILE_CREATE, kCreated);
    uint32_t done = 99;
    char buffer[8] = {};
    EXPECT_EQ(QXFileWrite(file, "0123456789", 10, &done), QX_S_OK);
    EXPECT_EQ(done, 10u);
    EXPECT_EQ(QXFileRead(file, buffer, 8, &done), QX_E_EOF);
    EXPECT_EQ(done, 0u);
    uint32_t position = 99;
    EXPECT_EQ(QXFileSeek(file, -4, 2, &position), QX_S_OK);
    EXPECT_EQ(position, 6u);
    EXPECT_EQ(QXFileRead(file, buffer, 8, &done), QX_S_OK);
    EXPECT_EQ(std::string(buffer, done), "6789");
    EXPECT_EQ(QXFileSeek(file, -8, 1, &position), QX_S_OK);
    EXPECT_EQ(position, 2u);
    EXPECT_EQ(QXFileRead(file, buffer, 0, &done), QX_E_EOF);
    uint64_t size = 0;
    EXPECT_EQ(QXFileGetSize(file, &size), QX_S_OK);
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(QXFileFlush(file), QX_S_OK);
    EXPECT_EQ(QXFileClose(file), QX_S_OK);

    const QXHandle appending = Open("file", QX_FILE_WRITE | QX_FILE_APPEND);
    EXPECT_EQ(QXFileWrite(appending, "AB", 2, &done), QX_S_OK);
    EXPECT_EQ(QXFileSeek(appending, 0, 0, &position), QX_S_OK);
    EXPECT_EQ(QXFileWrite(appending, "x", 1, &done), QX_S_OK);
    QXFileClose(appending);
    EXPECT_EQ(Content("file"), "x123456789AB");
}

TEST_F(FileTest, SeeksBehindFourGigabytes) {
    if (!NarrowSeeksEndAtFourGigabytes()) {
        GTEST_SKIP() << "Wine's narrow seeks go on behind 4 GiB";
    }
    const QXHandle file = Open("large", kReadWrite | QX_FILE_CREATE, kCreated);
    uint64_t wide = 0;
    uint32_t narrow = 0;
    EXPECT_EQ(QXFileSeek64(file, 0xFFFFFFFF, 0, &wide), QX_S_OK);
    EXPECT_EQ(QXFileDelete(Path("missing").c_str()), QX_E_NOTFOUND);  // leaves its error behind
    EXPECT_EQ(QXFileSeek(file, 0, 1, &narrow), QX_S_OK);
    EXPECT_EQ(narrow, 0xFFFFFFFF);
    EXPECT_EQ(QXFileSeek(file, 1, 1, &narrow), QX_E_FAIL);
    EXPECT_EQ(QXFileSeek64(file, 0, 1, &wide), QX_S_OK);
    EXPECT_EQ(wide, 0xFFFFFFFFu);
    EXPECT_EQ(QXFileSeek64(file, 0x1'0000'0005, 0, &wide), QX_S_OK);
    EXPECT_EQ(QXFileWrite(file, "!", 1, &narrow), QX_S_OK);
    EXPECT_EQ(QXFileGetSize(file, &wide), QX_S_OK);
    EXPECT_EQ(wide, 0x1'0000'0006u);
    EXPECT_EQ(QXFileSeek(file, 7, 0, &narrow), QX_S_OK);
    EXPECT_EQ(QXFileSeek(file, 0, 2, &narrow), QX_E_FAIL);
    EXPECT_EQ(QXFileSeek(file, 0, 1, &narrow), QX_S_OK);
    EXPECT_EQ(narrow, 7u);
    for (const auto& [offset, origin] : {std::pair{-8, 1u}, {-1, 0u}, {0, 3u}}) {
        EXPECT_EQ(QXFileSeek(file, offset, origin, &narrow), QX_E_FAIL);
        EXPECT_EQ(narrow, 0xFFFFFFFF);
        EXPECT_EQ(QXFileSeek64(file, offset, origin, &wide), QX_E_FAIL);
    }
    QXFileClose(file);
}

TEST_F(FileTest, RefusesWhatItsOpeningDoesNotAllow) {
    uint32_t done = 0;
    char buffer[4];
    Put("file", "abc");
    const QXHandle reading = Open("file", QX_FILE_READ);
    EXPECT_EQ(QXFileWrite(reading, "x", 1, &done), QX_E_ACCESSDENIED);
    EXPECT_EQ(QXFileFlush(reading), QX_E_ACCESSDENIED);
    QXFileClose(reading);
    const QXHandle writing = Open("file", QX_FILE_WRITE);
    EXPECT_EQ(QXFileRead(writing, buffer, 4, &done), QX_E_ACCESSDENIED);
    QXFileClose(writing);
    const QXHandle neither = Open("file", 0);
    EXPECT_EQ(QXFileRead(neither, buffer, 4, &done), QX_E_ACCESSDENIED);
    QXFileClose(neither);
    EXPECT_EQ(QXFileRead(neither, buffer, 4, &done), QX_E_HANDLE);
    EXPECT_EQ(QXFileClose(nullptr), QX_E_HANDLE);
    std::filesystem::create_directory(Place("directory"));
    Open("directory", QX_FILE_READ, QX_E_ACCESSDENIED);
    Open("directory", kReadWrite | QX_FILE_CREATE, QX_E_ACCESSDENIED);
    if (TruncationNeedsWriteAccess()) {
        Open("file", QX_FILE_READ | QX_FILE_TRUNCATE, QX_E_FAIL);
    }
    EXPECT_EQ(Content("file"), "abc");
    EXPECT_EQ(QXFileDelete(Path("directory").c_str()), QX_E_ACCESSDENIED);
}

TEST_F(FileTest, ReadOnlyAttributeRefusesWritingAndDeleting) {
    if (!ReadOnlyAttributeBindsTheAdministrator()) {
        GTEST_SKIP() << "Wine asks the system, which lets its administrator do everything";
    }
    uint32_t done = 0;
    const QXHandle file = Open("file", QX_FILE_WRITE | QX_FILE_CREATE, kCreated, 0444);
    EXPECT_EQ(QXFileWrite(file, "abc", 3, &done), QX_S_OK);
    QXFileClose(file);
    Open("file", QX_FILE_WRITE, QX_E_ACCESSDENIED);
    Open("file", kReadWrite | QX_FILE_CREATE | QX_FILE_TRUNCATE, QX_E_ACCESSDENIED);
    EXPECT_EQ(Content("file"), "abc");
    EXPECT_EQ(QXFileDelete(Path("file").c_str()), QX_E_ACCESSDENIED);
    std::filesystem::permissions(Place("file"), std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    EXPECT_EQ(QXFileDelete(Path("file").c_str()), QX_S_OK);
    EXPECT_EQ(QXFileDelete(Path("file").c_str()), QX_E_NOTFOUND);
}

void SetTemporaryDirectory(const std::string& directory) {
    for (const char* name : {"TMPDIR", "TMP", "TEMP"}) {
        SetEnvironment(name, directory);
    }
}

TEST_F(FileTest, TemporaryFilesGoWhenTheyAreClosed) {
    const std::string usual = std::filesystem::temp_directory_path().string();
    SetTemporaryDirectory(m_directory.Path().string());
    const std::u16string named = Path("named");
    for (const wchar* name : {named.c_str(), static_cast<const wchar*>(nullptr), u""}) {
        const bool isNamed = name == named.c_str();
        QXHandle file;
        uint32_t done = 0;
        EXPECT_EQ(QXFileOpen(name, kReadWrite | QX_FILE_TEMPORARY, 0, &file), isNamed ? 2 : 0);
        EXPECT_EQ(QXFileWrite(file, "abc", 3, &done), QX_S_OK);
        const std::filesystem::directory_iterator entry(m_directory.Path());
        ASSERT_NE(entry, std::filesystem::directory_iterator());
        EXPECT_EQ(entry->path().filename().string().substr(0, 3), isNamed ? "nam" : "tmp");
        EXPECT_EQ(QXFileClose(file), QX_S_OK);
        EXPECT_TRUE(std::filesystem::is_empty(m_directory.Path()));
    }
    SetTemporaryDirectory(usual);
}

CHILD_ROLE(HoldLock) {
    const std::u16string path = std::filesystem::path(arguments[0]).u16string();
    const auto flags = static_cast<uint32_t>(std::stoul(arguments[1]));
    QXHandle file;
    EXPECT_EQ(QXFileOpen(path.c_str(), kReadWrite, 0, &file), QX_S_OK);
    std::cout << (QXFileLock(file, 10, 10, flags) == QX_S_OK ? "locked" : "refused") << std::endl;
    std::string line;
    std::getline(std::cin, line);
    return 0;
}

TEST_F(FileTest, LocksBindOtherProcessesUntilTheirHolderEnds) {
    Put("file", "");
    const QXHandle file = Open("file", kReadWrite);
    for (const auto& [held, wanted, expected] : {std::tuple{0u, 0u, QX_E_FAIL},
                                                 {0u, 1u, QX_E_FAIL},
                                                 {1u, 0u, QX_E_FAIL},
                                                 {1u, 1u, QX_S_OK}}) {
        ChildProcess holder("HoldLock", {Place("file").string(), std::to_string(held)});
        ASSERT_EQ(holder.ReadLine(), "locked");
        EXPECT_EQ(QXFileLock(file, 15, 1, wanted), expected);
        EXPECT_EQ(QXFileUnlock(file, 15, 1), expected);
        EXPECT_EQ(QXFileLock(file, 20, 1, 0), QX_S_OK);
        EXPECT_EQ(QXFileUnlock(file, 20, 1), QX_S_OK);
        holder.Kill();
        EXPECT_EQ(QXFileLock(file, 10, 10, 2), QX_S_OK);  // waits, if it has to, for the end
        EXPECT_EQ(QXFileUnlock(file, 10, 10), QX_S_OK);
    }
    EXPECT_EQ(QXFileLock(file, 5, 10, 0), QX_S_OK);
    EXPECT_EQ(QXFileLock(file, 14, 1, 0), QX_E_FAIL);
    EXPECT_EQ(QXFileUnlock(file, 5, 9), QX_E_FAIL);
    for (const char* const outcome : {"refused", "locked"}) {
        ChildProcess other("HoldLock", {Place("file").string(), "0"});
        EXPECT_EQ(other.ReadLine(), outcome);
        EXPECT_EQ(other.Wait(), 0);
        QXFileClose(file);
    }
}

TEST_F(FileTest, CopiesWholeFiles) {
    const auto copy = [&](const char* from, const char* to, uint32_t flags, QXHandle* file) {
        return QXFileCopy(Path(from).c_str(), Path(to).c_str(), flags, 0666, file);
    };
    for (const size_t size : {0, 16384, 100'003}) {
        const std::string content(size, 'x');
        Put("source", content);
        Put("destination", "longer than nothing");
        EXPECT_EQ(copy("source", "destination", QX_FILE_TRUNCATE, nullptr), QX_S_OK);
        EXPECT_EQ(Content("destination"), content);
    }
    QXHandle file = nullptr;
    uint32_t done = 0;
    EXPECT_EQ(copy("source", "fresh", QX_FILE_CREATE, &file), QX_S_OK);
    EXPECT_EQ(QXFileWrite(file, "!", 1, &done), QX_S_OK);
    EXPECT_EQ(QXFileClose(file), QX_S_OK);
    EXPECT_EQ(Content("fresh"), std::string(100'003, 'x') + "!");
    EXPECT_EQ(copy("none", "fresh", 0, nullptr), QX_E_NOTFOUND);
    EXPECT_EQ(copy("source", "none", 0, &file), QX_E_NOTFOUND);
    EXPECT_EQ(file, QX_INVALID_HANDLE);
}

}  // namespace
