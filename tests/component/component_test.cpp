#include <gtest/gtest.h>
#include <qxcore.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "support/allocation_fault.h"
#include "support/child_role.h"
#include "support/failure.h"
#include "support/registered_classes.h"
#include "support/witness.h"

namespace {

class Component : public testing::Test {
  protected:
    QXResult Lookup(WitnessBehaviour behaviour, void** result,
                    const GUID& interfaceID = QX_IID_CLASS_FACTORY) {
        const GUID classID = WitnessClass(behaviour);
        return QXComGetClassObject(&classID, &interfaceID, result);
    }

    // Looks a class up and lets the result go.
    QXResult Touch(WitnessBehaviour behaviour) {
        void* factory = nullptr;
        const QXResult result = Lookup(behaviour, &factory);
        if (factory != nullptr) {
            IQXUnknown_Release(factory);
        }
        return result;
    }

    RegisteredClasses m_classes;
};

TEST_F(Component, SecondLookupComesFromTheCacheUntilTheFlush) {
    m_classes.Register(kPlain, m_classes.WitnessPath());
    void* first = nullptr;
    void* second = nullptr;
    ASSERT_EQ(QX_S_OK, Lookup(kPlain, &first));
    m_classes.Unregister(kPlain);
    ASSERT_EQ(QX_S_OK, Lookup(kPlain, &second));
    EXPECT_EQ(first, second);
    IQXUnknown_Release(second);
    EXPECT_EQ(1u, IQXUnknown_Release(first));
    EXPECT_EQ("loaded asked ", m_classes.TakeLog());
    EXPECT_EQ(QX_S_OK, QXComFlushFactoryCache());
    EXPECT_EQ("released unloaded ", m_classes.TakeLog());
    EXPECT_EQ(QX_E_NOTREGISTERED, Touch(kPlain));

    m_classes.Register(kPlain, m_classes.WitnessPath());
    EXPECT_EQ(QX_S_OK, Touch(kPlain));
    EXPECT_EQ("loaded asked ", m_classes.TakeLog());
}

TEST_F(Component, ObjectsAreMadeByClassIdAndByProgramId) {
    m_classes.Register(kPlain, m_classes.WitnessPath());
    m_classes.RegisterProgram(u"Witness.Plain", m_classes.ClassText(kPlain));
    const GUID classID = WitnessClass(kPlain);
    void* objects[2] = {};
    EXPECT_EQ(QX_S_OK, QXComCreateObject(&classID, nullptr, &QX_IID_UNKNOWN, &objects[0]));
    EXPECT_EQ(QX_S_OK,
              QXComCreateObjectByProgID(u"Witness.Plain", nullptr, &QX_IID_UNKNOWN, &objects[1]));
    EXPECT_EQ("loaded asked made made ", m_classes.TakeLog());
    for (void* object : objects) {
        EXPECT_EQ(0u, IQXUnknown_Release(object));
    }
}

TEST_F(Component, FailedLookupsLeaveNullAndAnUntouchedObjectPointer) {
    const std::u16string folder = m_classes.Folder();
    struct Row {
        const char* what;
        std::u16string library;
        QXResult result = QX_E_FAIL;
    };
    WriteFile(folder + u"/text.so", "this is not a library");
    SetEnvironment("QXCORE_LONG_VALUE", std::string(300, 'x'));
    for (const Row& row :
         {Row{"no library of that name", folder + u"/nothing.so"},
          {"a bare name that the search does not find", u"qxcore-nothing.so"},
          {"not a library", folder + u"/text.so"},
          {"the export is another library's", m_classes.HollowPath()},
          {"an empty path", u""},
          {"a reference that does not fit", u"%QXCORE_LONG_VALUE%", QX_E_NOTREGISTERED},
          {"a path that does not fit", std::u16string(261, u'x'), QX_E_NOTREGISTERED}}) {
        m_classes.Register(kPlain, row.library, QX_REG_EXPAND_STRING);
        void* factory = &factory;
        void* object = &object;
        const GUID classID = WitnessClass(kPlain);
        const ErrnoStays errnoStays;
        EXPECT_EQ(row.result, Lookup(kPlain, &factory)) << row.what;
        EXPECT_EQ(nullptr, factory) << row.what;
        EXPECT_EQ(row.result, QXComCreateObject(&classID, nullptr, &QX_IID_UNKNOWN, &object));
        EXPECT_EQ(&object, object) << row.what;
    }
    m_classes.Unregister(kPlain);
    m_classes.RegisterWithoutPath(kPlain);
    EXPECT_EQ(QX_E_NOTREGISTERED, Touch(kPlain));
}

TEST_F(Component, PathMayLackItsTerminatorAndReferToTheEnvironment) {
    SetEnvironment("QXCORE_WITNESS_PATH", std::filesystem::path(m_classes.WitnessPath()).string());
    m_classes.Register(kPlain, u"%QXCORE_WITNESS_PATH%", QX_REG_EXPAND_STRING);
    EXPECT_EQ(QX_S_OK, Touch(kPlain));
    m_classes.Register(kPositiveResult, m_classes.WitnessPath(), QX_REG_STRING, false);
    EXPECT_EQ(QX_S_OK, Touch(kPositiveResult));
    std::u16string backslashes = m_classes.WitnessPath();
    std::replace(backslashes.begin(), backslashes.end(), u'/', u'\\');
    m_classes.Register(kSlow, backslashes);
    EXPECT_EQ(QX_S_OK, Touch(kSlow));
}

TEST_F(Component, ProgramIdsFailAsTheirKindOfFault) {
    struct Row {
        const char16_t* text;
        QXResult result;
    };
    GUID classID;
    EXPECT_EQ(QX_E_NOTREGISTERED, QXComClassIDFromProgID(u"Witness.Unknown", &classID));
    for (const Row& row :
         {Row{u"{57495453-0001-4E45-8001-020304050607", QX_E_INVALIDARG},
          {u"", QX_E_INVALIDARG},
          {u"{57495453-0001-4E45-8001-020304050607}", QX_S_OK},
          {u"{57495453-0001-4E45-8001-020304050607} and more", QX_E_FAIL}}) {  // does not fit
        m_classes.RegisterProgram(u"Witness.Odd", row.text);
        EXPECT_EQ(row.result, QXComClassIDFromProgID(u"Witness.Odd", &classID));
    }
    const GUID plain = WitnessClass(kPlain);
    EXPECT_TRUE(QXComIsEqualGUID(&plain, &classID));
    m_classes.RegisterProgram(u"Witness.Unended", m_classes.ClassText(kSlow), false);
    EXPECT_EQ(QX_S_OK, QXComClassIDFromProgID(u"Witness.Unended", &classID));
}

TEST_F(Component, CachesWhatALibraryGaveAndNoRefusals) {
    struct Row {
        const char* what;
        WitnessBehaviour behaviour;
        QXResult result;
        const GUID& interfaceID;
        const char* log;
        bool flushes = false;
    };
    const GUID odd = WitnessClass(kPlain);
    for (const Row& row :
         {Row{"first lookup", kPlain, QX_S_OK, QX_IID_CLASS_FACTORY, "loaded asked "},
          {"refused interface", kPlain, kNoInterface, odd, ""},
          {"which leaves the class", kPlain, QX_S_OK, QX_IID_CLASS_FACTORY, ""},
          {"null factory", kNullFactory, QX_S_OK, QX_IID_CLASS_FACTORY, "asked released unloaded ",
           true},
          {"a library that comes back", kComesBack, QX_S_OK, QX_IID_CLASS_FACTORY,
           "loaded asked asked "},
          {"for the class that it asked for", kPlain, QX_S_OK, QX_IID_CLASS_FACTORY,
           "released released unloaded ", true},
          {"refusing library", kRefuses, kWitnessRefusal, QX_IID_CLASS_FACTORY, "loaded asked "},
          {"which stays open", kRefuses, kWitnessRefusal, QX_IID_CLASS_FACTORY, "asked ", true}}) {
        m_classes.Register(row.behaviour, m_classes.WitnessPath());
        void* factory = &factory;
        EXPECT_EQ(row.result, Lookup(row.behaviour, &factory, row.interfaceID)) << row.what;
        EXPECT_EQ(QX_FAILED(row.result) || row.behaviour == kNullFactory, factory == nullptr);
        if (factory != nullptr) {
            IQXUnknown_Release(factory);
        }
        EXPECT_EQ(QX_S_OK, row.flushes ? QXComFlushFactoryCache() : QX_S_OK);
        EXPECT_EQ(row.log, m_classes.TakeLog()) << row.what;
    }
}

TEST_F(Component, ExceptionOfAComponentIsAResult) {
    for (const WitnessBehaviour behaviour : {kPlain, kThrows, kThrowsOnRelease}) {
        m_classes.Register(behaviour, m_classes.WitnessPath());
    }
    void* factory = &factory;
    EXPECT_EQ(QX_E_FAIL, Lookup(kThrows, &factory));
    EXPECT_EQ(nullptr, factory);
    EXPECT_EQ(QX_S_OK, Touch(kThrowsOnRelease));
    EXPECT_EQ(QX_S_OK, Touch(kPlain));
    m_classes.TakeLog();
    EXPECT_EQ(QX_E_FAIL, QXComFlushFactoryCache());
    EXPECT_EQ("released released ", m_classes.TakeLog());
    EXPECT_EQ(QX_S_OK, QXComFlushFactoryCache());
}

TEST_F(Component, ThreadsThatAskAtOnceLoadTheLibraryOnce) {
    m_classes.Register(kSlow, m_classes.WitnessPath());
    std::vector<std::thread> threads;
    while (threads.size() < 4) {
        threads.emplace_back([&] { EXPECT_EQ(QX_S_OK, Touch(kSlow)); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ("loaded asked ", m_classes.TakeLog());
}

// Codes that no runtime gives to a process that it ends itself.
enum Outcome { kSucceeds, kFails = 40, kGoesWrong };

CHILD_ROLE(LookUpWithFault) {
    const GUID classID = WitnessClass(kPlain);
    void* factory = &factory;
    FailAllocation(std::stoi(arguments[0]));
    const QXResult result = QXComGetClassObject(&classID, &QX_IID_CLASS_FACTORY, &factory);
    const bool struck = AllocationHasFailed();
    FailAllocation(0);
    if (QX_SUCCEEDED(result)) {
        IQXUnknown_Release(factory);
        return struck ? kGoesWrong : kSucceeds;
    }
    const bool told = result == QX_E_OUTOFMEMORY || result == QX_E_NOTREGISTERED;
    return struck && told && factory == nullptr ? kFails : kGoesWrong;
}

// Each allocation fails in a child of its own, so that the library is loaded there for the first
// time and closed again by the failure.
TEST_F(Component, AllocationFailureIsAResultAndLeavesNull) {
    m_classes.Register(kPlain, m_classes.WitnessPath());
    int failing = 1;
    int outcome = kFails;
    while (outcome == kFails) {
        outcome = ChildProcess("LookUpWithFault", {std::to_string(failing)}).Wait();
        ++failing;
    }
    EXPECT_EQ(kSucceeds, outcome) << failing;
    EXPECT_GE(failing, 5);
}

}  // namespace
