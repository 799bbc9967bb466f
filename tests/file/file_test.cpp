#include <gtest/gtest.h>
#include <qxcore/file.h>

#include <cstring>
#include <fstream>
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
        std::ofstream(Place(name), std::ios::binary) << content;
    }
    std::string Content(const char* name) const {
        std::ifstream file(Place(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
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
    const struct {
        uint32_t bits;
        QXResult missing;
        QXResult existing;
        const char* content;
    } cases[] = {
        {0, QX_E_NOTFOUND, QX_S_OK, "old"},
        {QX_FILE_CREATE, kCreated, QX_S_OK, "old"},
        {QX_FILE_TRUNCATE, QX_E_NOTFOUND, QX_S_OK, ""},
        {QX_FILE_CREATE | QX_FILE_TRUNCATE, kCreated, QX_S_OK, ""},
        {QX_FILE_EXCLUSIVE, QX_E_FAIL, QX_E_FAIL, "old"},
        {QX_FILE_CREATE | QX_FILE_EXCLUSIVE, QX_S_OK, QX_E_FAIL, "old"},
        {QX_FILE_TRUNCATE | QX_FILE_EXCLUSIVE, QX_E_FAIL, QX_E_FAIL, "old"},
        {QX_FILE_CREATE | QX_FILE_TRUNCATE | QX_FILE_EXCLUSIVE, QX_S_OK, QX_E_FAIL, "old"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.bits);
        std::filesystem::remove(Place("missing"));
        Put("existing", "old");
        for (const auto& [name, expected] :
             {std::pair{"missing", each.missing}, {"existing", each.existing}}) {
            const QXHandle file = Open(name, kReadWrite | each.bits, expected);
            if (file != QX_INVALID_HANDLE) {
                EXPECT_EQ(QXFileClose(file), QX_S_OK);
            }
            EXPECT_EQ(std::filesystem::exists(Place(name)), name[0] == 'e' || each.missing >= 0);
        }
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
    constexpr uint64_t kEnd = 0x1'0000'0005;
    uint64_t wide = 0;
    uint32_t narrow = 0;
    uint32_t done = 0;
    EXPECT_EQ(QXFileSeek64(file, 0xFFFFFFFF, 0, &wide), QX_S_OK);
    EXPECT_EQ(QXFileDelete(Path("missing").c_str()), QX_E_NOTFOUND);  // leaves its error behind
    EXPECT_EQ(QXFileSeek(file, 0, 1, &narrow), QX_S_OK);
    EXPECT_EQ(narrow, 0xFFFFFFFF);
    EXPECT_EQ(QXFileSeek(file, 1, 1, &narrow), QX_E_FAIL);
    EXPECT_EQ(QXFileSeek64(file, 0, 1, &wide), QX_S_OK);
    EXPECT_EQ(wide, 0xFFFFFFFFu);
    EXPECT_EQ(QXFileSeek64(file, kEnd, 0, &wide), QX_S_OK);
    EXPECT_EQ(QXFileWrite(file, "!", 1, &done), QX_S_OK);
    EXPECT_EQ(QXFileGetSize(file, &wide), QX_S_OK);
    EXPECT_EQ(wide, kEnd + 1);
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
    for (const QXHandle none : {neither, QXHandle{nullptr}}) {
        EXPECT_EQ(QXFileRead(none, buffer, 4, &done), QX_E_HANDLE);
        EXPECT_EQ(QXFileClose(none), QX_E_HANDLE);
    }
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
    uint32_t done = 0;
    QXHandle file = Open("temporary", kReadWrite | QX_FILE_TEMPORARY, kCreated);
    EXPECT_EQ(QXFileWrite(file, "abc", 3, &done), QX_S_OK);
    EXPECT_TRUE(std::filesystem::exists(Place("temporary")));
    EXPECT_EQ(QXFileClose(file), QX_S_OK);
    EXPECT_FALSE(std::filesystem::exists(Place("temporary")));

    const std::string usual = std::filesystem::temp_directory_path().string();
    SetTemporaryDirectory(m_directory.Path().string());
    for (const wchar* none : {static_cast<const wchar*>(nullptr), u""}) {
        EXPECT_EQ(QXFileOpen(none, kReadWrite | QX_FILE_TEMPORARY, 0, &file), QX_S_OK);
        EXPECT_EQ(QXFileWrite(file, "abc", 3, &done), QX_S_OK);
        const std::filesystem::directory_iterator entry(m_directory.Path());
        ASSERT_NE(entry, std::filesystem::directory_iterator());
        EXPECT_TRUE(entry->path().filename().string().starts_with("tmp"));
        EXPECT_EQ(QXFileClose(file), QX_S_OK);
        EXPECT_TRUE(std::filesystem::is_empty(m_directory.Path()));
    }
    SetTemporaryDirectory(usual);
}

CHILD_ROLE(HoldLock) {
    QXHandle file;
    const bool opened = QX_SUCCEEDED(
        QXFileOpen(std::filesystem::path(arguments[0]).u16string().c_str(), kReadWrite, 0, &file));
    const bool locked =
        opened &&
        QXFileLock(file, 10, 10, static_cast<uint32_t>(std::stoul(arguments[1]))) == QX_S_OK;
    std::cout << (locked ? "locked" : "refused") << std::endl;
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
    ChildProcess other("HoldLock", {Place("file").string(), "0"});
    EXPECT_EQ(other.ReadLine(), "refused");
    EXPECT_EQ(other.Wait(), 0);
    EXPECT_EQ(QXFileClose(file), QX_S_OK);
    ChildProcess next("HoldLock", {Place("file").string(), "0"});
    EXPECT_EQ(next.ReadLine(), "locked");
    EXPECT_EQ(next.Wait(), 0);
}

TEST_F(FileTest, CopiesWholeFiles) {
    const std::string large(100'003, 'x');
    for (const std::string& content : {std::string(), std::string(16384, 'y'), large}) {
        Put("source", content);
        Put("destination", "longer than nothing");
        EXPECT_EQ(QXFileCopy(Path("source").c_str(), Path("destination").c_str(),
                             QX_FILE_CREATE | QX_FILE_TRUNCATE, 0666, nullptr),
                  QX_S_OK);
        EXPECT_EQ(Content("destination"), content);
    }
    QXHandle file = nullptr;
    uint32_t done = 0;
    EXPECT_EQ(
        QXFileCopy(Path("source").c_str(), Path("fresh").c_str(), QX_FILE_CREATE, 0666, &file),
        QX_S_OK);
    EXPECT_EQ(QXFileWrite(file, "!", 1, &done), QX_S_OK);
    EXPECT_EQ(QXFileClose(file), QX_S_OK);
    EXPECT_EQ(Content("fresh"), large + "!");
    EXPECT_EQ(QXFileCopy(Path("none").c_str(), Path("fresh").c_str(), 0, 0, &file), QX_E_NOTFOUND);
    EXPECT_EQ(QXFileCopy(Path("source").c_str(), Path("none").c_str(), 0, 0, &file), QX_E_NOTFOUND);
    EXPECT_EQ(file, QX_INVALID_HANDLE);
}

}  // namespace
