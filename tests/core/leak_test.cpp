// What a thousand calls leave behind, also of calls that fail.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <functional>

#include "support/registered_classes.h"

namespace {

constexpr char16_t kPath[] = u"leak\\key";

void UseValues(uint32_t capacity) {
    uint32_t type = 0;
    char16_t text[20] = u"%NONE%";
    QXRegistrySetValue(QX_HKEY_USER, kPath, u"v", QX_REG_EXPAND_STRING, text, 14);
    QXRegistryGetValue(QX_HKEY_USER, kPath, u"v", &type, text, &capacity);
    QXRegistryDeleteValue(QX_HKEY_USER, kPath, u"none");
}

void Enumerate() {
    QXHandle list = nullptr;
    char16_t name[20];
    uint32_t length = 20;
    uint32_t type = 0;
    QXRegistryOpenKeyEnum(QX_HKEY_USER, u"leak", &list);
    QXRegistryEnumNextKey(list, name, &length);
    QXRegistryCloseEnum(list);
    QXRegistryOpenValueEnum(QX_HKEY_USER, kPath, &list);
    QXRegistryEnumNextValue(list, name, &length, &type, nullptr, nullptr);
    QXRegistryCloseEnum(list);
    QXRegistryOpenKeyEnum(QX_HKEY_USER, u"none", &list);
}

void OpenLibrary(const std::u16string& path) {
    QXHandle library = nullptr;
    void* symbol = nullptr;
    if (QX_SUCCEEDED(QXLibOpen(path.c_str(), &library))) {
        QXLibGetSymbol(library, u"none", &symbol);
        QXLibClose(library);
    }
}

void LookUp(WitnessBehaviour behaviour) {
    const GUID classID = WitnessClass(behaviour);
    void* object = nullptr;
    if (QX_SUCCEEDED(QXComCreateObject(&classID, nullptr, &QX_IID_UNKNOWN, &object))) {
        IQXUnknown_Release(object);
    }
}

TEST(Leak, AThousandCallsLeaveNothingBehind) {
    const RegisteredClasses classes;
    classes.Register(kPlain, classes.WitnessPath());
    const struct {
        const char* what;
        std::function<void()> call;
    } rows[] = {
        {"registry values", [] { UseValues(40); }},
        {"registry values that do not fit", [] { UseValues(2); }},
        {"enumerations", Enumerate},
        {"deleted keys",
         [] {
             UseValues(40);
             QXRegistryDeleteKey(QX_HKEY_USER, u"leak");
             QXRegistryDeleteKey(QX_HKEY_USER, u"leak");
         }},
        {"libraries", [] { OpenLibrary(RegisteredClasses::WitnessPath()); }},
        {"libraries that are none", [] { OpenLibrary(u"qxcore-nothing.so"); }},
        {"objects", [] { LookUp(kPlain); }},
        {"unknown classes", [] { LookUp(kSlow); }},
    };
    for (const auto& row : rows) {
        Footprint settled = {};
        for (int round = 0; round < 1100; ++round) {
            row.call();
            if (round == 99) {
                settled = MeasureFootprint();
            }
        }
        const Footprint end = MeasureFootprint();
        EXPECT_LE(end.handles, settled.handles) << row.what;
        EXPECT_LE(end.heap, settled.heap + 8000) << row.what;
    }
    QXComFlushFactoryCache();
    EXPECT_FALSE(LoadedModule::IsLoaded(RegisteredClasses::WitnessPath()));
}

}  // namespace
