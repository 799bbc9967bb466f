// The library is opened and closed here: this program is not linked to it.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>

#include "support/child_role.h"
#include "support/known_differences.h"
#include "support/witness.h"

namespace {

std::filesystem::path LibraryPath() {
    return ModulePath(QXCORE_LIBRARY);
}

// The library by its file. Functions of it are called through this.
class LoadedLibrary {
  public:
    void Close() { EXPECT_TRUE(m_module.Close()); }

    template <typename... Arguments>
    QXResult Call(const char* name, Arguments... arguments) const {
        return reinterpret_cast<QXResult (*)(Arguments...)>(m_module.Symbol(name))(arguments...);
    }

  private:
    LoadedModule m_module{LibraryPath()};
};

bool IsLoaded() {
    return LoadedModule::IsLoaded(LibraryPath());
}

QXResult SetNumber(const LoadedLibrary& library, const char16_t* name) {
    const uint32_t number = 1;
    return library.Call("QXRegistrySetValue", int32_t{QX_HKEY_USER}, u"Load", name,
                        uint32_t{QX_REG_DWORD}, static_cast<const void*>(&number),
                        uint32_t{sizeof number});
}

TEST(LoadUnload, LeavesNothingBehindInAThousandRounds) {
    const OwnRegistry registry;
    Footprint settled = {};
    for (int round = 0; round < 1000; ++round) {
        LoadedLibrary library;
        if (round % 5 == 0) {
            EXPECT_EQ(QX_S_OK, SetNumber(library, u"number"));
        }
        library.Close();
        ASSERT_FALSE(IsLoaded());
        if (round == 100) {
            settled = MeasureFootprint();
        }
    }
    const Footprint end = MeasureFootprint();
    EXPECT_EQ(settled.handles, end.handles);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // these map and keep their own
    if (!LoaderKeepsMemoryOfARound()) {
        EXPECT_LE(end.mappings, settled.mappings + 1);
        // The heap counts what it keeps for reuse as used.
        EXPECT_LE(end.heap, settled.heap + 32 * 1024);
    }
#endif
}

// Registers the witness and leaves its factory in the cache.
QXResult CacheWitness(const LoadedLibrary& library) {
    const GUID classID = WitnessClass(kPlain);
    char16_t classText[QX_GUID_TEXT_SIZE];
    library.Call("QXComStringFromGUID", &classID, &classText[0], int32_t{QX_GUID_TEXT_SIZE});
    const std::u16string key = u"CLSID\\" + std::u16string(classText) + u"\\InprocServer32";
    const std::u16string path = ModulePath(QXCORE_WITNESS).u16string();
    library.Call("QXRegistrySetValue", int32_t{QX_HKEY_CLASSES_64}, key.c_str(), u"",
                 uint32_t{QX_REG_STRING}, static_cast<const void*>(path.c_str()),
                 static_cast<uint32_t>(path.size() * 2));
    void* factory = nullptr;
    const QXResult result =
        library.Call("QXComGetClassObject", &classID, &QX_IID_CLASS_FACTORY, &factory);
    if (QX_SUCCEEDED(result)) {
        library.Call("IQXUnknown_Release", factory);
    }
    return result;
}

// A thread that waits inside the library for a mutex until the process is gone.
void LeaveThreadWaiting(const LoadedLibrary& library) {
    static QXHandle s_mutex;
    library.Call("QXMutexCreate", "end", 0u, &s_mutex);
    library.Call("QXMutexAcquire", s_mutex);
    static std::atomic<bool> s_waits{false};
    std::thread([&library] {
        s_waits = true;
        library.Call("QXMutexAcquire", s_mutex);
    }).detach();
    while (!s_waits) {
        std::this_thread::yield();
    }
}

// A thread that is busy inside the library until the process is gone. Near the end its lookups are
// refused.
void LeaveThreadBusy(const LoadedLibrary& library) {
    static std::atomic<int> s_rounds{0};
    std::thread([&library] {
        for (;;) {
            CacheWitness(library);
            SetNumber(library, u"busy");
            void* block = nullptr;
            library.Call("QXComMalloc", 8u, &block);
            library.Call("QXComFree", block);
            ++s_rounds;
        }
    }).detach();
    while (s_rounds < 3) {
        std::this_thread::yield();
    }
}

CHILD_ROLE(UseLibrary) {
    static LoadedLibrary s_library;  // threads that stay behind still call it
    const std::string& what = arguments[0];
    if (what == "busy") {
        LeaveThreadBusy(s_library);
        return 0;
    }
    EXPECT_EQ(QX_S_OK, CacheWitness(s_library));
    if (what == "flush") {
        s_library.Call("QXComFlushFactoryCache");
    } else if (what == "unload") {
        s_library.Close();
        EXPECT_FALSE(IsLoaded());
    } else if (what == "waiting") {
        LeaveThreadWaiting(s_library);
    }
    return 0;
}

// The words that the witness writes when a child uses the library, with its code in front if the
// child does not end well.
std::string LogOfUse(const std::string& what) {
    const OwnRegistry registry;
    const std::string log = (registry.Folder() / "log").string();
    SetEnvironment(kWitnessLog, log);
    const int code = ChildProcess("UseLibrary", {what}).Wait();
    std::string words = code != 0 ? "code " + std::to_string(code) + " " : "";
    std::ifstream file(log);
    for (std::string word; file >> word;) {
        words += word + ' ';
    }
    return words;
}

// Unloading the library leaves the witness in memory until the process ends.
TEST(LoadUnload, ReleasesCachedFactoriesAndUnloadsNoneOfTheirLibraries) {
    for (const char* what : {"flush", "unload"}) {
        EXPECT_EQ("loaded asked released unloaded ", LogOfUse(what)) << what;
    }
    for (const char* what : {"process end", "waiting"}) {
        EXPECT_EQ(kEndDetachesLastLoadedFirst ? "loaded asked unloaded released "
                                              : "loaded asked released unloaded ",
                  LogOfUse(what))
            << what;
    }
}

TEST(LoadUnload, ProcessEndPullsNothingFromUnderABusyThread) {
    for (int round = 0; round < 20; ++round) {
        const std::string log = LogOfUse("busy");
        EXPECT_EQ(0u, log.find("loaded asked")) << log;
    }
}

}  // namespace
