// It does not link to the library under test, so that it does not keep that loaded.
#include "support/witness.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "support/system.h"

namespace {

void Write(const char* word) {
    const char* const path = std::getenv(kWitnessLog);
    if (std::FILE* const file = path != nullptr ? std::fopen(path, "ab") : nullptr) {
        std::fprintf(file, "%s\n", word);
        std::fclose(file);
    }
}

[[gnu::constructor]] void OnLoad() {
    Write("loaded");
}

[[gnu::destructor]] void OnUnload() {
    Write("unloaded");
}

class Witness final : public IQXClassFactory {
  public:
    explicit Witness(bool throwsOnRelease = false) : m_throwsOnRelease(throwsOnRelease) {}
    virtual ~Witness() = default;

    QXResult QueryInterface(const GUID* wanted, void** result) override {
        const bool has = std::memcmp(wanted, &QX_IID_UNKNOWN, sizeof(GUID)) == 0 ||
                         std::memcmp(wanted, &QX_IID_CLASS_FACTORY, sizeof(GUID)) == 0;
        m_references += has ? 1 : 0;
        *result = has ? this : nullptr;
        return has ? QX_S_OK : kNoInterface;
    }
    uint32_t AddRef() override { return ++m_references; }

    uint32_t Release() override {
        const uint32_t left = --m_references;
        if (left == 0) {
            Write("released");
            const bool throws = m_throwsOnRelease;
            delete this;
            if (throws) {
                throw 1;
            }
        }
        return left;
    }

    QXResult CreateInstance(void*, const GUID*, void** result) override {
        Write("made");
        *result = new Witness;
        return QX_S_OK;
    }

  private:
    const bool m_throwsOnRelease;
    std::atomic<uint32_t> m_references{1};
};

void LookUpPlainClass() {
    const GUID plain = WitnessClass(kPlain);
    void* factory = nullptr;
    const auto lookUp =
        reinterpret_cast<QXGetClassObjectFunction>(FindInLibrary("QXComGetClassObject"));
    if (QX_SUCCEEDED(lookUp(&plain, &QX_IID_CLASS_FACTORY, &factory))) {
        static_cast<IQXUnknown*>(factory)->Release();
    }
}

}  // namespace

WITNESS_EXPORT QXResult DllGetClassObject(const GUID* classID, const GUID*, void** result) {
    Write("asked");
    switch (classID->Data2) {
        case kRefuses:
            *result = result;
            return kWitnessRefusal;
        case kThrows:
            *result = result;
            throw 1;
        case kNullFactory:
            *result = nullptr;
            return QX_S_OK;
        case kComesBack:
            LookUpPlainClass();
            break;
        case kSlow:
            for (int turn = 0; turn < 2000; ++turn) {
                std::this_thread::yield();
            }
            break;
    }
    *result = new Witness(classID->Data2 == kThrowsOnRelease);
    return classID->Data2 == kPositiveResult ? 7 : 0;
}
