// The names of the list are found in the library at run time too, each by itself.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <fstream>
#include <set>
#include <string>

TEST(Exports, EachNameIsFoundInTheLibraryAndIsOfItsOwn) {
    const auto wide = [](const std::string& ascii) {
        return std::u16string(ascii.begin(), ascii.end());
    };
    QXHandle library = nullptr;
    ASSERT_EQ(QXLibOpen(wide(QXCORE_LIBRARY).c_str(), &library), QX_S_OK);
    std::ifstream list(QXCORE_EXPORTS);
    std::set<void*> addresses;
    for (std::string name; std::getline(list, name);) {
        void* address = nullptr;
        EXPECT_EQ(QXLibGetSymbol(library, wide(name).c_str(), &address), QX_S_OK) << name;
        EXPECT_TRUE(addresses.insert(address).second) << name;
    }
    EXPECT_FALSE(addresses.empty());
    EXPECT_EQ(QXLibClose(library), QX_S_OK);
}
