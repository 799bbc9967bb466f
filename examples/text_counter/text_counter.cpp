// A component library with one class, the text counter.
#include "text_counter.h"

#include <iterator>
#include <memory>
#include <new>

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

struct CloseConverter {
    void operator()(QXEncConverter* converter) const { QXEncToW_Close(converter); }
};
using Converter = std::unique_ptr<QXEncConverter, CloseConverter>;

// Counts wide text that comes in pieces.
class Tally {
  public:
    explicit Tally(size_t bytes) { m_counts.bytes = bytes; }

    void Add(const wchar* begin, const wchar* end) {
        for (; begin != end; ++begin) {
            const bool isSpace = QXIsSpaceW(*begin) != 0;
            const bool isTrail = (*begin & 0xFC00) == 0xDC00;
            m_counts.lines += *begin == u'\n';
            m_counts.words += !isSpace && !m_inWord;
            m_counts.codePoints += !isTrail;
            m_inWord = !isSpace;
        }
    }
    const TextCounts& Counts() const { return m_counts; }

  private:
    TextCounts m_counts = {};
    bool m_inWord = false;
};

// Repeats a step of a conversion, which writes wide text, until it has had room for all of it.
template <typename Step>
QXResult Drain(Step step, Tally* tally) {
    wchar piece[1024];
    QXResult result;
    do {
        wchar* end = piece;
        result = step(&end, std::end(piece));
        tally->Add(piece, end);
    } while (result == QX_E_BUFFERTOOSMALL);
    return result;
}

class TextCounter final : public Object<ITextCounter, kTextCounterInterface> {
  public:
    QXResult Count(const void* text, size_t size, const wchar* encoding,
                   TextCounts* counts) override try {
        const Converter converter(QXEncToW_Open(encoding));
        const auto* source = static_cast<const char*>(text);
        const char* const sourceEnd = source + size;
        Tally tally(size);
        QXResult result = Drain(
            [&](wchar** target, wchar* targetEnd) {
                return QXEncToW_Convert(converter.get(), &source, sourceEnd, target, targetEnd);
            },
            &tally);
        if (QX_SUCCEEDED(result)) {
            result = Drain(
                [&](wchar** target, wchar* targetEnd) {
                    return QXEncToW_Flush(converter.get(), target, targetEnd);
                },
                &tally);
        }
        if (QX_SUCCEEDED(result)) {
            *counts = tally.Counts();
        }
        return result;
    } catch (const std::bad_alloc&) {
        return QX_E_OUTOFMEMORY;
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
