// The names of the list are found in the library at run time too, each by itself.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <fstream>
#include <set>
#include <string>

namespace {

std::u16string Wide(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

TEST(Exports, EachNameIsFoundInTheLibraryAndIsOfItsOwn) {
    QXHandle library = nullptr;
    ASSERT_EQ(QXLibOpen(Wide(QXCORE_LIBRARY).c_str(), &library), QX_S_OK);
    std::ifstream list(QXCORE_EXPORTS);
    std::set<void*> addresses;
    size_t names = 0;
    for (std::string name; std::getline(list, name); ++names) {
        void* address = nullptr;
        EXPECT_EQ(QXLibGetSymbol(library, Wide(name).c_str(), &address), QX_S_OK) << name;
        EXPECT_TRUE(addresses.insert(address).second) << name;
    }
    EXPECT_GT(names, 0U);
    EXPECT_EQ(QXLibClose(library), QX_S_OK);
}

}  // namespace
