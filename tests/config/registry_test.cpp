#include "config/registry_support.h"

#include <algorithm>
#include <cstring>

#include "support/allocation_fault.h"
#include "support/known_differences.h"

namespace {

constexpr QXResult kNotFound = QX_E_NOTFOUND;

TEST_F(Registry, TellsEachFailureByItsCode) {
    ASSERT_EQ(SetText(u"key", u"value", u"text"), 0);
    ASSERT_EQ(SetText(u"key\\below", u"", u""), 0);
    constexpr int32_t kBadRoot = 5;
    QXHandle handle;
    char small[2];
    uint32_t length = sizeof small;
    uint32_t type = 99;
    const std::u16string longName(KeyNamesMayHave256Units() ? 257 : 256, u'n');
    EXPECT_EQ(Exists(QX_HKEY_USER, u"none", u""), kNotFound);
    EXPECT_EQ(Exists(QX_HKEY_USER, u"key", u"none"), kNotFound);
    EXPECT_EQ(Exists(QX_HKEY_CONFIG, u"key", u"value"), kNotFound) << "no store";
    EXPECT_EQ(Exists(kBadRoot, u"key", u"value"), QX_E_HANDLE);
    EXPECT_EQ(Exists(-1, u"key", u"value"), QX_E_HANDLE);
    EXPECT_EQ(QXRegistryGetValue(QX_HKEY_USER, u"key", u"value", &type, small, nullptr), QX_E_FAIL);
    EXPECT_EQ(QXRegistryGetValue(QX_HKEY_USER, u"key", u"value", &type, small, &length), QX_E_FAIL);
    EXPECT_EQ(length, 10u);
    EXPECT_EQ(type, 1u) << "the native number stays when the buffer is too small";
    EXPECT_EQ(SetText(u"k", u"v", u"", QX_HKEY_USER, QX_REG_QWORD), QX_E_INVALIDARG);
    EXPECT_EQ(SetText(u"k", u"v", u"", kBadRoot, 6), QX_E_INVALIDARG) << "the type comes first";
    EXPECT_EQ(SetText(u"k", u"v", u"", kBadRoot), QX_E_HANDLE);
    EXPECT_EQ(SetText(longName.c_str(), u"v", u""), QX_E_FAIL);
    EXPECT_EQ(QXRegistryDeleteKey(QX_HKEY_USER, u"none"), QX_E_FAIL);
    EXPECT_EQ(QXRegistryDeleteKey(kBadRoot, u"key"), QX_E_FAIL);
    EXPECT_EQ(QXRegistryDeleteValue(QX_HKEY_USER, u"none", u""), kNotFound);
    EXPECT_EQ(QXRegistryDeleteValue(QX_HKEY_USER, u"key", u"n"), kNotFound);
    EXPECT_EQ(QXRegistryDeleteValue(kBadRoot, u"key", u"n"), QX_E_HANDLE);
    EXPECT_EQ(QXRegistryOpenKeyEnum(QX_HKEY_USER, u"none", &handle), QX_E_FAIL);
    EXPECT_EQ(QXRegistryOpenKeyEnum(kBadRoot, u"key", &handle), QX_E_FAIL);
    EXPECT_EQ(QXRegistryOpenValueEnum(QX_HKEY_USER, u"no", &handle), kNotFound);
    EXPECT_EQ(QXRegistryOpenValueEnum(kBadRoot, u"key", &handle), QX_E_HANDLE);
    EXPECT_EQ(QXRegistryCloseEnum(nullptr), QX_S_OK);
    EXPECT_EQ(handle, QX_INVALID_HANDLE);
    EXPECT_EQ(SubkeysOf(u""), (std::vector<std::u16string>{u"key"}));
}

TEST_F(Registry, ReadsEachTypeByNameAndInAnEnumeration) {
    constexpr std::pair<uint32_t, uint32_t> kTypes[] = {{0, 0}, {1, 1}, {3, 3}, {4, 0}, {5, 5}};
    uint32_t type, length, units;
    for (const auto& [written, read] : kTypes) {
        const char16_t name[] = {static_cast<char16_t>(u'a' + written), 0};
        char data[8];
        ASSERT_EQ(QXRegistrySetValue(QX_HKEY_USER, u"k", name, written, u"ab\0", 8), 0);
        EXPECT_EQ(QXRegistryGetValue(QX_HKEY_USER, u"k", name, &type, data, &(length = 8)), 0);
        EXPECT_EQ(type, read);
        EXPECT_EQ(length, 8u);
    }
    QXHandle values;
    ASSERT_EQ(QXRegistryOpenValueEnum(QX_HKEY_USER, u"k", &values), 0);
    for (const auto& [written, read] : kTypes) {
        char16_t name[2];
        EXPECT_EQ(
            QXRegistryEnumNextValue(values, name, &(units = 2), &type, nullptr, &(length = 0)), 0);
        EXPECT_EQ(name[0], u'a' + written) << "in the order of setting";
        EXPECT_EQ(type, read);
        EXPECT_EQ(length, 8u);
    }
    QXRegistryCloseEnum(values);
}

TEST_F(Registry, ExpandsWhatTheEnvironmentKnows) {
    SetEnvironment("QX_T", "v\xC3\xA4\xF0\x9F\x98\x80");
    SetEnvironment("QX_\xC3\x84", "umlaut");
    const auto expanded = [](const char16_t* stored) {
        EXPECT_EQ(SetText(u"k", u"v", stored, QX_HKEY_USER, QX_REG_EXPAND_STRING), 0);
        return Text(u"k", u"v");
    };
    for (const char16_t* same : {u"", u"%QX_NONE%", u"%% 100%", u"%QX_\xD800%"}) {
        EXPECT_EQ(expanded(same), same);
    }
    EXPECT_EQ(expanded(u"a%QX_T%b%QX_T%"), u"av\u00E4\U0001F600bv\u00E4\U0001F600");
    EXPECT_EQ(expanded(u"%QX_\u00C4%"), u"umlaut");
    EXPECT_EQ(expanded(u"%QX_NONE%QX_T%"),
              UnknownVariableTakesItsEnd() ? u"%QX_NONE%QX_T%" : u"%QX_NONEv\u00E4\U0001F600");
}

TEST_F(Registry, ExpansionKeepsToTheBuffer) {
    // Without a terminator, and half a unit behind it: the text ends where it was stored.
    ASSERT_EQ(QXRegistrySetValue(QX_HKEY_USER, u"k", u"v", QX_REG_EXPAND_STRING, u"%QX_T%x", 13),
              0);
    uint32_t type = 99;
    uint32_t length;
    char16_t data[8];
    for (const uint32_t units : {7u, 8u}) {
        SetEnvironment("QX_T", "long");
        std::fill_n(data, 8, u'#');
        length = 2 * units;
        EXPECT_EQ(QXRegistryGetValue(QX_HKEY_USER, u"k", u"v", &type, data, &length), 0);
        EXPECT_EQ(std::u16string(data), u"long");
        EXPECT_EQ(length, 13u);
        SetEnvironment("QX_T", "too long");
        EXPECT_EQ(QXRegistryGetValue(QX_HKEY_USER, u"k", u"v", &type, data, &(length = 14)),
                  QX_E_FAIL);
        EXPECT_EQ(type, QX_REG_STRING);
        EXPECT_EQ(length, 13u);
        EXPECT_EQ(std::memcmp(data, u"%QX_T%", 12), 0) << "the raw text stays";
    }
    EXPECT_EQ(QXRegistryGetValue(QX_HKEY_USER, u"k", u"v", nullptr, data, &length), 0);
    // Without data there is nothing to expand, and nothing is allocated for it.
    const auto allocations = [](uint32_t* typeOrNull) {
        return ForEachFailingAllocation([typeOrNull] {
            uint32_t most = 0xFFFFFFFF;
            return QXRegistryGetValue(QX_HKEY_USER, u"k", u"v", typeOrNull, nullptr, &most) == 0 &&
                   most == 13;
        });
    };
    EXPECT_EQ(allocations(&type), allocations(nullptr));
}

TEST_F(Registry, NamesMayHoldAnyUnit) {
    const char16_t* const names[] = {u"a/b",    u"%_?",    u"\u00E4\u0436", u"\xD800", u"i",
                                     u"\u0131", u"\u03C3", u"\u03C2",       u"\xFFFF"};
    for (const char16_t* name : names) {
        ASSERT_EQ(SetText(name, name, name), 0);
    }
    for (const char16_t* name : names) {
        EXPECT_EQ(Text(name, name), name) << "none of them is another";
    }
    EXPECT_EQ(Text(u"A/B\\", u"A/B"), u"a/b");
    EXPECT_EQ(Text(u"\\\\A/B", u"A/B"), kKeyPathsMayBeginWithSeparator ? u"a/b" : u"<failed>");
    EXPECT_EQ(Text(u"\u00C4\u0416", u"\u00C4\u0416"), u"\u00E4\u0436");
}

TEST_F(Registry, EnumeratesKeysByFoldedNameAndStepsOverWhatDoesNotFit) {
    for (const char16_t* path : {u"k\\b", u"k\\Ab", u"k\\a", u"k\\\u00E4", u"k\\C", u"k\\_"}) {
        ASSERT_EQ(SetText(path, u"", u""), 0);
    }
    ASSERT_EQ(SetText(u"K\\AB", u"", u""), 0);
    std::vector<std::u16string> inOrder = {u"a", u"Ab", u"b", u"C", u"_", u"\u00E4"};
    if (KeysAreOrderedInLowerCase()) {
        std::rotate(inOrder.begin(), inOrder.begin() + 4, inOrder.begin() + 5);
    }
    EXPECT_EQ(SubkeysOf(u"k"), inOrder);
    QXHandle keys;
    ASSERT_EQ(QXRegistryOpenKeyEnum(QX_HKEY_USER, u"k", &keys), 0);
    char16_t name[2];
    if (KeysAreOrderedInLowerCase()) {
        uint32_t length = 2;
        EXPECT_EQ(QXRegistryEnumNextKey(keys, name, &length), QX_S_OK);
    }
    for (const QXResult expected : {QX_S_OK, QX_E_FAIL, QX_S_OK}) {
        uint32_t length = 2;
        EXPECT_EQ(QXRegistryEnumNextKey(keys, name, &length), expected);
    }
    EXPECT_EQ(name[0], u'b');
    EXPECT_EQ(Names(keys).size(), KeysAreOrderedInLowerCase() ? 2u : 3u);
    EXPECT_TRUE(Names(keys).empty()) << "the end goes on";
    QXRegistryCloseEnum(keys);
}

TEST_F(Registry, AnEnumerationOfADeletedKeyStaysDead) {
    ASSERT_EQ(SetText(u"k\\below", u"", u""), 0);
    QXHandle keys;
    ASSERT_EQ(QXRegistryOpenKeyEnum(QX_HKEY_USER, u"k", &keys), 0);
    ASSERT_EQ(QXRegistryDeleteKey(QX_HKEY_USER, u"k"), 0);
    ASSERT_EQ(SetText(u"k\\below", u"", u""), 0);
    EXPECT_TRUE(Names(keys).empty());
    QXRegistryCloseEnum(keys);
}

TEST_F(Registry, DeletesTreesAndMixesTheNumbersOfWhatFails) {
    const std::u16string longest(255, u'z');
    ASSERT_EQ(SetText(u"k\\a\\b\\c", u"v", u"text"), 0);
    ASSERT_EQ(SetText(u"k\\d", u"v", u"text"), 0);
    EXPECT_EQ(QXRegistryDeleteKey(QX_HKEY_USER, u"K"), 0);
    ASSERT_EQ(SetText(u"k\\a\\b\\c", u"w", u"text"), 0);
    EXPECT_EQ(Text(u"k\\a\\b\\c", u"v"), u"<not found>") << "values go with their key";
    ASSERT_EQ(SetText((u"k\\" + longest).c_str(), u"v", u"text"), 0);
    EXPECT_EQ(QXRegistryDeleteKey(QX_HKEY_USER, u"k"), 5);
    EXPECT_EQ(SubkeysOf(u"k"), (std::vector<std::u16string>{longest}));
    ASSERT_EQ(SetText(u"other\\below", u"v", u"text"), 0);
    if (kKeyPathsMayBeginWithSeparator) {
        EXPECT_EQ(QXRegistryDeleteKey(QX_HKEY_USER, u"\\"), 5) << "the root itself stays";
        EXPECT_EQ(SubkeysOf(u""), (std::vector<std::u16string>{u"k"}));
    } else {
        EXPECT_EQ(QXRegistryDeleteKey(QX_HKEY_USER, u"\\"), QX_E_FAIL);
        EXPECT_EQ(SubkeysOf(u""), (std::vector<std::u16string>{u"k", u"other"}));
    }
}

}  // namespace
