// A component library with one class, the text counter.
#include "text_counter.h"

#include <algorithm>
#include <new>
#include <string>
#include <string_view>

namespace {

constexpr QXResult kNoInterface = static_cast<QXResult>(0x80004002);
constexpr QXResult kNoAggregation = static_cast<QXResult>(0x80040110);
constexpr QXResult kClassNotAvailable = static_cast<QXResult>(0x80040111);

// What every component object has: a count of references and a list of interfaces, here one beside
// the basic one.
template <typename Interface, const GUID& interfaceID>
class Object : public Interface {
  public:
    virtual ~Object() = default;

    QXResult QueryInterface(const GUID* wanted, void** result) override {
        if (!QXComIsEqualGUID(wanted, &QX_IID_UNKNOWN) && !QXComIsEqualGUID(wanted, &interfaceID)) {
            *result = nullptr;
            return kNoInterface;
        }
        AddRef();
        *result = static_cast<Interface*>(this);
        return QX_S_OK;
    }
    uint32_t AddRef() override { return QXAtomicIncrement(&m_references); }
    uint32_t Release() override {
        const uint32_t left = QXAtomicDecrement(&m_references);
        if (left == 0) {
            delete this;
        }
        return left;
    }

  private:
    uint32_t m_references = 1;
};

// Walks over text, one unit at a time, and counts.
template <typename Unit>
void CountUnits(std::basic_string_view<Unit> text, TextCounts* counts) {
    bool inWord = false;
    for (const Unit unit : text) {
        const bool isSpace = unit == ' ' || (unit >= '\t' && unit <= '\r');
        counts->lines += unit == '\n';
        counts->words += !isSpace && !inWord;
        inWord = !isSpace;
    }
}

class TextCounter final : public Object<ITextCounter, kTextCounterInterface> {
  public:
    QXResult Count(const void* text, size_t size, const wchar* encoding,
                   TextCounts* counts) override {
        const std::u16string_view name = encoding;
        TextCounts found = {0, 0, size};
        if (name == u"UTF-8") {
            CountUnits(std::string_view(static_cast<const char*>(text), size), &found);
        } else if (name == u"UTF-16LE") {
            std::u16string units(size / 2, u'\0');
            std::copy_n(static_cast<const char*>(text), units.size() * 2,
                        reinterpret_cast<char*>(units.data()));
            CountUnits(std::u16string_view(units), &found);
        } else {
            return QX_E_INVALIDARG;
        }
        *counts = found;
        return QX_S_OK;
    }
};

class Factory final : public Object<IQXClassFactory, QX_IID_CLASS_FACTORY> {
  public:
    QXResult CreateInstance(void* outer, const GUID* interfaceID, void** result) override {
        *result = nullptr;
        if (outer != nullptr) {
            return kNoAggregation;
        }
        auto* const counter = new (std::nothrow) TextCounter;
        if (counter == nullptr) {
            return QX_E_OUTOFMEMORY;
        }
        const QXResult outcome = counter->QueryInterface(interfaceID, result);
        counter->Release();
        return outcome;
    }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) QXResult DllGetClassObject(
    const GUID* classID, const GUID* interfaceID, void** result) {
    *result = nullptr;
    if (!QXComIsEqualGUID(classID, &kTextCounterClass)) {
        return kClassNotAvailable;
    }
    auto* const factory = new (std::nothrow) Factory;
    if (factory == nullptr) {
        return QX_E_OUTOFMEMORY;
    }
    const QXResult outcome = factory->QueryInterface(interfaceID, result);
    factory->Release();
    return outcome;
}
