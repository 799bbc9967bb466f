#include <gtest/gtest.h>
#include <qxcore.h>

#include <thread>
#include <vector>

#include "support/failure.h"
#include "support/registered_classes.h"

namespace {

QXHandle OpenAs(QXModuleToken token, QXResult expected) {
    QXHandle library = nullptr;
    EXPECT_EQ(expected, QXModuleLibOpen(token, RegisteredClasses::WitnessPath().c_str(), &library));
    return library;
}

TEST(Module, TokensAreMarkedOnceAndAnyValueIsOne) {
    const int own = 0;
    for (const QXModuleToken token : {static_cast<QXModuleToken>(&own), QXModuleToken{nullptr},
                                      QXModuleToken{QX_INVALID_HANDLE}}) {
        EXPECT_EQ(QX_S_OK, QXModuleSetInitialized(token, 0));
        EXPECT_EQ(nullptr, OpenAs(token, QX_E_NOTINITIALIZED));
        EXPECT_EQ(QX_S_OK, QXModuleSetInitialized(token, 0x7F00));
        EXPECT_EQ(QX_S_OK, QXModuleSetInitialized(token, -1));
        const QXHandle library = OpenAs(token, QX_S_OK);
        EXPECT_EQ(QX_S_OK, QXModuleLibClose(token, library));
        EXPECT_EQ(QX_S_OK, QXModuleSetInitialized(token, 0));
        EXPECT_EQ(QX_E_NOTINITIALIZED, QXModuleLibClose(token, library));
    }
    // Of the flag 16 bits count.
    const auto setWide = reinterpret_cast<QXResult (*)(QXModuleToken, int32_t)>(
        reinterpret_cast<void*>(&QXModuleSetInitialized));
    EXPECT_EQ(QX_S_OK, setWide(&own, 0x10000));
    OpenAs(&own, QX_E_NOTINITIALIZED);
}

TEST(Module, RefusedCallsTouchNothing) {
    RegisteredClasses classes;
    classes.Register(kPlain, classes.WitnessPath());
    const GUID classID = WitnessClass(kPlain);
    const int own = 0;
    void* result = &result;
    EXPECT_EQ(QX_E_NOTINITIALIZED,
              QXModuleComGetClassObject(&own, &classID, &QX_IID_CLASS_FACTORY, &result));
    EXPECT_EQ(QX_E_NOTINITIALIZED,
              QXModuleComCreateObject(&own, &classID, nullptr, &QX_IID_UNKNOWN, &result));
    EXPECT_EQ(&result, result);
    QXModuleSetInitialized(&own, 1);
    ASSERT_EQ(QX_S_OK, QXModuleComGetClassObject(&own, &classID, &QX_IID_CLASS_FACTORY, &result));
    IQXUnknown_Release(result);
    ASSERT_EQ(QX_S_OK, QXModuleComCreateObject(&own, &classID, nullptr, &QX_IID_UNKNOWN, &result));
    IQXUnknown_Release(result);
    QXModuleSetInitialized(&own, 0);
}

TEST(Module, ThreadsMarkAtOnce) {
    constexpr uintptr_t kThreads = 4;
    constexpr uintptr_t kTokens = 100'000;
    std::vector<std::thread> threads;
    for (uintptr_t first = 1; first <= kThreads; ++first) {
        threads.emplace_back([first] {
            for (uintptr_t token = first; token < kTokens; token += kThreads) {
                QXModuleSetInitialized(reinterpret_cast<QXModuleToken>(token), 1);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (uintptr_t token = 1; token < kTokens; ++token) {
        ASSERT_EQ(QX_E_HANDLE, QXModuleLibClose(reinterpret_cast<QXModuleToken>(token), nullptr));
    }
}

TEST(Library, SymbolsAreTheLibrarysOwn) {
    QXHandle hollow = nullptr;
    ASSERT_EQ(QX_S_OK, QXLibOpen(RegisteredClasses::HollowPath().c_str(), &hollow));
    void* symbol = &symbol;
    for (const char16_t* name : {u"", u"DllGetClassObject", u"malloc"}) {
        const ErrnoStays errnoStays;
        EXPECT_EQ(QX_E_FAIL, QXLibGetSymbol(hollow, name, &symbol));
        EXPECT_EQ(nullptr, symbol);
    }
    EXPECT_EQ(QX_S_OK, QXLibGetSymbol(hollow, u"HollowUsesTheOther", &symbol));
    EXPECT_NE(nullptr, symbol);
    EXPECT_EQ(QX_S_OK, QXLibClose(hollow));
    for (const QXHandle none : {QXHandle{nullptr}, QX_INVALID_HANDLE}) {
        const ErrnoStays errnoStays;
        EXPECT_EQ(QX_E_FAIL, QXLibGetSymbol(none, u"malloc", &symbol));
        EXPECT_EQ(nullptr, symbol);
        EXPECT_EQ(none == nullptr ? QX_E_HANDLE : QX_E_FAIL, QXLibClose(none));
    }
}

}  // namespace
