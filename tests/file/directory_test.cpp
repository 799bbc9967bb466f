#include <gtest/gtest.h>
#include <qxcore/file.h>

#include <ctime>
#include <map>
#include <string>

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

TEST(Directory, ListsEachEntryWithItsRecord) {
    const TemporaryDirectory directory;
    const int64_t before = time(nullptr);
    std::filesystem::create_directory(directory.Path() / "inner");
    WriteFile(directory.Path() / "file", "12345");
    WriteFile(directory.Path() / u"\u00E9\U0001F600", "");
    WriteFile(directory.Path() / "locked", "");
    std::filesystem::permissions(directory.Path() / "locked", std::filesystem::perms::owner_read);
    for (const char16_t* end : {u"", u"/", u"//\\"}) {
        auto entries = List(directory.Path().u16string() + end);
        EXPECT_EQ(entries.size(), 6u);  // with "." and ".."
        EXPECT_EQ(entries[u"."].mode, 040666u);
        EXPECT_EQ(entries[u"inner"].mode, 040666u);
        EXPECT_EQ(entries[u"inner"].sizeLow, 0u);
        EXPECT_EQ(entries[u"locked"].mode, 0444u);
        EXPECT_EQ(entries.count(u"\u00E9\U0001F600"), 1u);
        const QXDirEntry& file = entries[u"file"];
        EXPECT_EQ(file.mode, 0666u);
        EXPECT_EQ(file.sizeLow, 5u);
        EXPECT_EQ(file.sizeHigh, 0u);
        EXPECT_EQ(file.shortName[0], 0u);
        for (const int64_t moment : {file.createTime, file.accessTime, file.writeTime}) {
            EXPECT_GE(moment, before - 1);
            EXPECT_LE(moment, time(nullptr) + 1);
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
    WriteFile(directory.Path() / "new" / "file", "");
    EXPECT_EQ(QXDirRemove(path.c_str()), QX_E_FAIL);
    EXPECT_EQ(QXDirRemove(file.c_str()), QX_E_FAIL);
    EXPECT_EQ(QXDirOpen(file.c_str(), &listing), QX_E_FAIL);
    EXPECT_EQ(QXDirOpen((path + u"/*.txt").c_str(), &listing),
              kWildCardsAreOrdinaryInNames ? QX_E_NOTFOUND : QX_E_FAIL);
    EXPECT_EQ(QXFileDelete(file.c_str()), QX_S_OK);
    EXPECT_EQ(QXDirRemove(path.c_str()), QX_S_OK);
    EXPECT_FALSE(std::filesystem::exists(directory.Path() / "new"));
    EXPECT_EQ(QXDirOpen(u"", &listing), QX_S_OK) << "the root";
    QXDirClose(listing);
}

TEST(Path, IsMadeWholeWithinItsBuffer) {
    const TemporaryDirectory directory;
    const std::u16string base = directory.Path().u16string();
    wchar buffer[600];
    ASSERT_EQ(QXPathExpand(base.c_str(), buffer, 600), QX_S_OK);
    const std::u16string whole = buffer;
    const auto length = static_cast<uint32_t>(whole.size());
    buffer[0] = u'?';
    EXPECT_EQ(QXPathExpand(base.c_str(), buffer, length), QX_S_OK);
    EXPECT_EQ(buffer[0], u'?');
    EXPECT_EQ(QXPathExpand((base + u"/a/.//../b\\..").c_str(), buffer, length + 1), QX_S_OK);
    EXPECT_EQ(std::u16string(buffer), whole);
    if (AnEmptyPathHasAnErrorOfItsOwn()) {
        EXPECT_EQ(QXPathExpand(u"", buffer, 600), QX_E_FAIL);
    }
}

}  // namespace
