// The library is opened and closed here: this program is not linked to it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <qxcore.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>

#include "support/temporary_directory.h"
#include "support/witness.h"

namespace {

// The library by its file. Functions of it are called through this.
class LoadedLibrary {
  public:
    LoadedLibrary() : m_library(dlopen(QXCORE_LIBRARY, RTLD_NOW)) {
        if (m_library == nullptr) {
            std::fprintf(stderr, "%s\n", dlerror());
            std::abort();
        }
    }
    void Close() { EXPECT_EQ(0, dlclose(m_library)); }

    template <typename... Arguments>
    QXResult Call(const char* name, Arguments... arguments) const {
        return reinterpret_cast<QXResult (*)(Arguments...)>(dlsym(m_library, name))(arguments...);
    }

  private:
    void* m_library;
};

struct Footprint {
    size_t descriptors;
    size_t mappings;
    size_t heap;
};

Footprint Measure() {
    Footprint now = {};
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++now.descriptors;
    }
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        ++now.mappings;
    }
    now.heap = mallinfo2().uordblks;
    return now;
}

bool IsLoaded() {
    return dlopen(QXCORE_LIBRARY, RTLD_NOW | RTLD_NOLOAD) != nullptr;
}

QXResult SetNumber(const LoadedLibrary& library, const char16_t* name) {
    const uint32_t number = 1;
    return library.Call("QXRegistrySetValue", int32_t{QX_HKEY_USER}, u"Load", name,
                        uint32_t{QX_REG_DWORD}, static_cast<const void*>(&number),
                        uint32_t{sizeof number});
}

void UseEverything(const LoadedLibrary& library) {
    QXHandle mutex;
    EXPECT_EQ(QX_S_OK, library.Call("QXMutexCreate", "load", 0u, &mutex));
    library.Call("QXMutexAcquire", mutex);
    library.Call("QXMutexRelease", mutex);
    library.Call("QXMutexDestroy", mutex);
    library.Call("QXLibOpen", u"qxcore-nothing.so", &mutex);
    EXPECT_EQ(QX_S_OK, SetNumber(library, u"number"));
}

TEST(LoadUnload, LeavesNothingBehindInAThousandRounds) {
    const TemporaryDirectory directory;
    setenv("W64QXCORE6_REGISTRY", directory.Path().c_str(), 1);
    Footprint settled = {};
    for (int round = 0; round < 1000; ++round) {
        LoadedLibrary library;
        if (round % 5 == 0) {
            UseEverything(library);
        }
        library.Close();
        ASSERT_FALSE(IsLoaded());
        if (round == 100) {
            settled = Measure();
        }
    }
    const Footprint end = Measure();
    EXPECT_EQ(settled.descriptors, end.descriptors);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // these map and keep their own
    EXPECT_LE(end.mappings, settled.mappings + 1);
    // The heap counts what it keeps for reuse as used.
    EXPECT_LE(end.heap, settled.heap + 32 * 1024);
#endif
}

// Runs the body in a child and gives the words of the witness's log, with "status N" in front if
// the child did not end well.
std::string LogOfChild(const std::function<void(LoadedLibrary&)>& body) {
    const TemporaryDirectory directory;
    const std::string log = directory.Path() / "log";
    const pid_t child = fork();
    if (child == 0) {
        setenv("W64QXCORE6_REGISTRY", directory.Path().c_str(), 1);
        setenv(kWitnessLog, log.c_str(), 1);
        LoadedLibrary library;
        body(library);
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    std::string words = status != 0 ? "status " + std::to_string(status) + " " : "";
    std::ifstream file(log);
    for (std::string word; file >> word;) {
        words += word + ' ';
    }
    return words;
}

// Registers the witness and leaves its factory in the cache.
QXResult CacheWitness(const LoadedLibrary& library) {
    const GUID classID = WitnessClass(kPlain);
    char16_t classText[QX_GUID_TEXT_SIZE];
    library.Call("QXComStringFromGUID", &classID, &classText[0], int32_t{QX_GUID_TEXT_SIZE});
    const std::u16string key = u"CLSID\\" + std::u16string(classText) + u"\\InprocServer32";
    const std::u16string path = std::filesystem::path(QXCORE_WITNESS).u16string();
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

TEST(LoadUnload, ReleasesCachedFactoriesAndUnloadsNoneOfTheirLibraries) {
    struct Row {
        const char* what;
        std::function<void(LoadedLibrary&)> body;
        const char* log;
    };
    // Unloading the library leaves the witness in memory until the process ends.
    const Row rows[] = {
        {"flush",
         [](LoadedLibrary& library) {
             EXPECT_EQ(QX_S_OK, CacheWitness(library));
             library.Call("QXComFlushFactoryCache");
         },
         "loaded asked released unloaded "},
        {"dlclose",
         [](LoadedLibrary& library) {
             EXPECT_EQ(QX_S_OK, CacheWitness(library));
             library.Close();
             EXPECT_FALSE(IsLoaded());
         },
         "loaded asked released unloaded "},
        {"process end", [](LoadedLibrary& library) { EXPECT_EQ(QX_S_OK, CacheWitness(library)); },
         "loaded asked released unloaded "},
        {"process end while a thread waits",
         [](LoadedLibrary& library) {
             EXPECT_EQ(QX_S_OK, CacheWitness(library));
             LeaveThreadWaiting(library);
         },
         "loaded asked released unloaded "},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.log, LogOfChild(row.body)) << row.what;
    }
}

TEST(LoadUnload, ProcessEndPullsNothingFromUnderABusyThread) {
    for (int round = 0; round < 20; ++round) {
        const std::string log = LogOfChild(LeaveThreadBusy);
        EXPECT_EQ(0u, log.find("loaded asked")) << log;
    }
}

}  // namespace
