#include <gtest/gtest.h>
#include <qxcore/debug.h>

#include <atomic>
#include <thread>

#include "core/alert_message.h"

extern u32 s_alertContinue;

namespace {

TEST(Alert, WithoutAMethodNothingIsFormatted) {
    EXPECT_EQ(QX_S_OK, QXErrorAlertSetMethod(0));
    QXErrorAlert(0, u"title", nullptr);
    QXErrorAlert(0x7FFFFFF0, u"title", nullptr);
}

TEST(Alert, WaitsUntilItIsToldToGoOn) {
    std::atomic<bool> done = false;
    std::thread waiting([&] {
        QXErrorAlert(QX_ALERT_WAIT, nullptr, nullptr);
        done = true;
    });
    EXPECT_FALSE(done);
    std::atomic_ref(s_alertContinue).store(1, std::memory_order_relaxed);
    waiting.join();
    EXPECT_EQ(0u, s_alertContinue);
}

TEST(Alert, TraceTakesTextOfAnyLength) {
    const std::u16string text(2000, u'x');
    QXTrace(u"%ls %hs\n", text.c_str(), "narrow");
}

TEST(Alert, TheSessionIsTheCallersOwnOrTheConsoles) {
    constexpr auto kYes = []() noexcept { return true; };
    constexpr auto kNo = []() noexcept { return false; };
    constexpr auto kSeven = []() -> u32 { return 7; };
    constexpr auto kNobody = []() -> u32 { return platform::kNoSession; };
    EXPECT_EQ(3u, ChooseAlertSession(3, kSeven, kYes));
    EXPECT_EQ(7u, ChooseAlertSession(0, kSeven, kYes));
    EXPECT_EQ(1u, ChooseAlertSession(0, kNobody, kYes));
    EXPECT_EQ(0u, ChooseAlertSession(0, kNobody, kNo));
    EXPECT_EQ(0u, ChooseAlertSession(0, nullptr, kYes));
}

}  // namespace
