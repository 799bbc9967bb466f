#include <gtest/gtest.h>
#include <pthread.h>
#include <qxcore.h>

#include <thread>

#include "support/registered_classes.h"

namespace {

// The component opens a file when it is asked, released and unloaded, which cancels a thread.
TEST(Cancellation, WaitsWhileAComponentIsAskedAndReleased) {
    const RegisteredClasses classes;
    classes.Register(kPlain, classes.WitnessPath());
    const GUID classID = WitnessClass(kPlain);
    void* factory = nullptr;
    QXResult found = QX_E_FAIL;
    QXResult flushed = QX_E_FAIL;
    std::thread([&] {
        pthread_cancel(pthread_self());
        found = QXComGetClassObject(&classID, &QX_IID_CLASS_FACTORY, &factory);
        IQXUnknown_Release(factory);
        flushed = QXComFlushFactoryCache();
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    }).join();
    EXPECT_EQ(QX_S_OK, found);
    EXPECT_EQ(QX_S_OK, flushed);
}

}  // namespace
