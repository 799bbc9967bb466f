#include <gtest/gtest.h>
#include <qxcore/file.h>

#include <chrono>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "support/known_differences.h"
#include "support/system.h"

namespace {

std::map<std::u16string, QXDirEntry> List(const std::u16string& path) {
    std::map<std::u16string, QXDirEntry> entries;
    QXHandle directory = nullptr;
    EXPECT_EQ(QXDirOpen(path.c_str(), &directory), QX_S_OK);
    QXDirEntry entry;
    while (QXDirRead(directory, &entry, 0) == QX_S_OK) {
        EXPECT_TRUE(entries.emplace(entry.name, entry).second);
    }
    EXPECT_EQ(QXDirRead(directory, &entry, 0), QX_E_FAIL);
    EXPECT_EQ(QXDirClose(directory), QX_S_OK);
    return entries;
}

int64_t Now() {
    using namespace std::chrono;
    return duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
}

TEST(Directory, ListsEachEntryWithItsRecord) {
    const TemporaryDirectory directory;
    const int64_t before = Now();
    std::filesystem::create_directory(directory.Path() / "inner");
    std::ofstream(directory.Path() / "file") << "12345";
    std::ofstream(directory.Path() / u"\u00E9\U0001F600") << "";
    std::ofstream(directory.Path() / "locked") << "";
    std::filesystem::permissions(directory.Path() / "locked", std::filesystem::perms::owner_read);
    for (const char16_t* end : {u"", u"/", u"\\", u"//\\"}) {
        auto entries = List(directory.Path().u16string() + end);
        EXPECT_EQ(entries.size(), 6u);  // with "." and ".."
        EXPECT_EQ(entries[u"."].mode, 040666u);
        EXPECT_EQ(entries[u"inner"].mode, 040666u);
        EXPECT_EQ(entries[u"inner"].sizeLow, 0u);
        EXPECT_EQ(entries[u"file"].mode, 0666u);
        EXPECT_EQ(entries[u"file"].sizeLow, 5u);
        EXPECT_EQ(entries[u"file"].sizeHigh, 0u);
        EXPECT_EQ(entries[u"file"].shortName[0], 0u);
        EXPECT_EQ(entries[u"locked"].mode, 0444u);
        EXPECT_EQ(entries.count(u"\u00E9\U0001F600"), 1u);
        for (const int64_t time : {entries[u"file"].createTime, entries[u"file"].accessTime,
                                   entries[u"file"].writeTime}) {
            EXPECT_GE(time, before - 1);
            EXPECT_LE(time, Now() + 1);
        }
    }
    std::filesystem::permissions(directory.Path() / "locked", std::filesystem::perms::owner_all);
}

TEST(Directory, IsMadeAndRemovedWhenEmpty) {
    const TemporaryDirectory directory;
    const std::u16string path = (directory.Path() / "new").u16string();
    const std::u16string file = (directory.Path() / "new" / "file").u16string();
    QXHandle listing = nullptr;
    EXPECT_EQ(QXDirOpen(path.c_str(), &listing), QX_E_NOTFOUND);
    EXPECT_EQ(listing, QX_INVALID_HANDLE);
    EXPECT_EQ(QXDirCreate(file.c_str(), 0), QX_E_NOTFOUND);
    EXPECT_EQ(QXDirRemove(path.c_str()), QX_E_NOTFOUND);
    EXPECT_EQ(QXDirCreate(path.c_str(), 0), QX_S_OK);
    EXPECT_EQ(QXDirCreate(path.c_str(), 0), QX_E_ALREADYEXISTS);
    std::ofstream(directory.Path() / "new" / "file") << "";
    EXPECT_EQ(QXDirRemove(path.c_str()), QX_E_FAIL);
    EXPECT_EQ(QXDirRemove(file.c_str()), QX_E_FAIL);
    EXPECT_EQ(QXDirOpen(file.c_str(), &listing), QX_E_FAIL);
    EXPECT_EQ(QXDirOpen((path + u"/*.txt").c_str(), &listing),
              kWildCardsAreOrdinaryInNames ? QX_E_NOTFOUND : QX_E_FAIL);
    EXPECT_EQ(QXFileDelete(file.c_str()), QX_S_OK);
    EXPECT_EQ(QXDirRemove(path.c_str()), QX_S_OK);
    EXPECT_FALSE(std::filesystem::exists(directory.Path() / "new"));
}

TEST(Directory, TheEmptyPathIsTheRoot) {
    QXHandle listing = nullptr;
    for (const char16_t* path : {u"", u"/", u"\\"}) {
        EXPECT_EQ(QXDirOpen(path, &listing), QX_S_OK);
        QXDirClose(listing);
    }
}

TEST(Path, IsMadeWholeWithinItsBuffer) {
    const TemporaryDirectory directory;
    const std::u16string base = directory.Path().u16string();
    wchar buffer[600];
    ASSERT_EQ(QXPathExpand(base.c_str(), buffer, 600), QX_S_OK);
    const std::u16string whole = buffer;
    ASSERT_EQ(QXPathExpand((base + u"/a/.//../b\\..").c_str(), buffer, 600), QX_S_OK);
    EXPECT_EQ(std::u16string(buffer), whole);
    const uint32_t length = static_cast<uint32_t>(whole.size());
    for (const uint32_t capacity : {1u, length}) {
        std::fill(std::begin(buffer), std::end(buffer), u'?');
        EXPECT_EQ(QXPathExpand(base.c_str(), buffer, capacity), QX_S_OK);
        EXPECT_EQ(buffer[0], u'?');
    }
    EXPECT_EQ(QXPathExpand(base.c_str(), buffer, length + 1), QX_S_OK);
    EXPECT_EQ(std::u16string(buffer), whole);
    if (AnEmptyPathHasAnErrorOfItsOwn()) {
        EXPECT_EQ(QXPathExpand(u"", buffer, 600), QX_E_FAIL);
    }
}

}  // namespace
