#include "text/converter.h"

#include <unicode/putil.h>
#include <unicode/uclean.h>
#include <unicode/utf16.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>

#include "text/icu_status.h"

namespace {

constexpr char kLastResort[] = "ISO-8859-1";

// Bytes up to which the passes are faster than a way that has to be set up.
constexpr std::ptrdiff_t kShortText = 256;

// Negative until InitConverters has run.
constinit i32 s_availableConverters = -1;

struct Alias {
    const char* askedFor;
    const char* opened;
};

// Consulted only for a name that ICU does not know.
constexpr Alias kAliases[] = {
    {"UTF-8", "UTF-8"},
    {"CP1252", "windows-1252"},
    {"CP932", "shift_jis"},
    {"SJIS", "shift_jis"},
};

UConverter* Open(const char* name) noexcept {
    UErrorCode status = U_ZERO_ERROR;
    return ucnv_open(name, &status);
}

UConverter* OpenAlias(const char* name) noexcept {
    for (const Alias& alias : kAliases) {
        if (std::strcmp(alias.askedFor, name) == 0) {
            return Open(alias.opened);
        }
    }
    return nullptr;
}

void TellNotOpened(const char* name) noexcept {
    std::printf("%s: Could not open converter\n", name);
}

UConverter* OpenLastResort() noexcept {
    UConverter* const converter = Open(kLastResort);
    if (converter == nullptr) {
        std::printf("No converter for %s\n", kLastResort);
        TellNotOpened(kLastResort);
    }
    return converter;
}

UConverter* OpenDefault() noexcept {
    if (s_availableConverters < 0) {
        return nullptr;
    }
    UConverter* const converter = Open(nullptr);
    if (converter == nullptr) {
        TellNotOpened("default");
    }
    return converter;
}

// Characters outside ASCII are cut to their low byte; one whose low byte is zero ends the name.
UConverter* OpenNamed(const wchar* name) noexcept {
    char narrowed[128] = {};
    for (size_t index = 0; index < sizeof narrowed - 1 && name[index] != 0; ++index) {
        narrowed[index] = static_cast<char>(name[index]);
    }
    for (const auto attempt : {Open, OpenAlias}) {
        if (UConverter* const converter = attempt(narrowed)) {
            return converter;
        }
    }
    return OpenLastResort();
}

// From UTF-8 to an older encoding that carries nothing from one character to the next, ICU has a
// way without wide text. Others gain nothing, and what some of them write depends on the passes.
bool HasDirectWay(const UConverter* from, const UConverter* to) noexcept {
    return from != nullptr && to != nullptr && ucnv_getType(from) == UCNV_UTF8 &&
           ucnv_getType(to) <= UCNV_LATIN_1;
}

bool Overlap(const char* first, const char* firstLimit, const char* second,
             const char* secondLimit) noexcept {
    const std::less<> isBelow;
    return isBelow(first, secondLimit) && isBelow(second, firstLimit);
}

// Bad input stops both converters for the length of a scope.
class StopMeanwhile {
  public:
    StopMeanwhile(UConverter* from, UConverter* to) noexcept : m_from(from), m_to(to) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setToUCallBack(from, UCNV_TO_U_CALLBACK_STOP, nullptr, &m_fromAction, &m_fromContext,
                            &status);
        ucnv_setFromUCallBack(to, UCNV_FROM_U_CALLBACK_STOP, nullptr, &m_toAction, &m_toContext,
                              &status);
    }
    ~StopMeanwhile() {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setToUCallBack(m_from, m_fromAction, m_fromContext, nullptr, nullptr, &status);
        ucnv_setFromUCallBack(m_to, m_toAction, m_toContext, nullptr, nullptr, &status);
    }
    StopMeanwhile(const StopMeanwhile&) = delete;
    StopMeanwhile& operator=(const StopMeanwhile&) = delete;

  private:
    UConverter* m_from;
    UConverter* m_to;
    UConverterToUCallback m_fromAction = nullptr;
    UConverterFromUCallback m_toAction = nullptr;
    const void* m_fromContext = nullptr;
    const void* m_toContext = nullptr;
};

QXResult SetStopCallbacks(UConverter* converter) noexcept {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(converter, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    return U_SUCCESS(status) ? QX_S_OK : QX_E_ABORT;
}

}  // namespace

QXEncConverter::QXEncConverter(const wchar* encodingName)
    : m_name(encodingName != nullptr ? encodingName : u""),
      m_converter(encodingName != nullptr ? OpenNamed(encodingName) : OpenDefault()) {}

QXEncConverter::~QXEncConverter() {
    for (UConverter* const converter : {m_converter, m_secondConverter}) {
        if (converter != nullptr) {
            ucnv_close(converter);
        }
    }
}

QXResult QXEncConverter::StopAtBadInput() noexcept {
    QXResult result = QX_S_OK;
    for (UConverter* const converter : {m_converter, m_secondConverter}) {
        if (converter != nullptr && result == QX_S_OK) {
            result = SetStopCallbacks(converter);
        }
    }
    return result;
}

QXResult QXEncConverter::SetSubstitution(i32 codePoint) noexcept {
    if (codePoint < 0) {
        return StopAtBadInput();
    }
    // The last code point of all is refused too.
    if (codePoint >= 0x10FFFF) {
        return QX_E_ILLEGALCHAR;
    }
    const UChar32 substitute = codePoint != 0 ? codePoint : 0xFFFD;
    UChar units[U16_MAX_LENGTH];
    i32 length = 0;
    U16_APPEND_UNSAFE(units, length, substitute);
    UErrorCode status = U_ZERO_ERROR;
    for (UConverter* const converter : {m_converter, m_secondConverter}) {
        if (converter != nullptr && status == U_ZERO_ERROR) {
            ucnv_setSubstString(converter, units, length, &status);
        }
    }
    return ResultFromIcu(status);
}

QXResult QXEncConverter::ToWide(const char** source, const char* sourceLimit, wchar** target,
                                wchar* targetLimit, bool flush) noexcept {
    if (m_converter == nullptr) {
        return QX_E_NOCONVERTER;
    }
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(m_converter, target, targetLimit, source, sourceLimit, nullptr, flush ? 1 : 0,
                   &status);
    return ResultFromIcu(status);
}

QXResult QXEncConverter::FromWide(const wchar** source, const wchar* sourceLimit, char** target,
                                  char* targetLimit, bool flush) noexcept {
    if (m_converter == nullptr) {
        std::terminate();
    }
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(m_converter, target, targetLimit, source, sourceLimit, nullptr, flush ? 1 : 0,
                     &status);
    return ResultFromIcu(status);
}

// Bad input, for which ICU's ways do not all put the same number of substitutes, is left to the
// passes. Without the flush, which would write a terminator.
bool QXEncConverter::ConvertDirectly(QXEncConverter& to, const char** source,
                                     const char* sourceLimit, char** target, char* targetLimit,
                                     wchar* pivot, wchar* pivotLimit) noexcept {
    if (sourceLimit - *source <= kShortText || !HasDirectWay(m_converter, to.m_converter) ||
        Overlap(*source, sourceLimit, *target, targetLimit)) {
        return false;
    }
    const StopMeanwhile stop(m_converter, to.m_converter);
    const char* read = *source;
    char* written = *target;
    wchar* pivotSource = pivot;
    wchar* pivotTarget = pivot;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_convertEx(to.m_converter, m_converter, &written, targetLimit, &read, sourceLimit, pivot,
                   &pivotSource, &pivotTarget, pivotLimit, false, false, &status);
    if (U_FAILURE(status)) {
        ucnv_reset(m_converter);
        ucnv_reset(to.m_converter);
        return false;
    }
    *source = read;
    *target = written;
    return true;
}

// ICU wants an address for the empty source, and an aligned one.
QXResult QXEncConverter::FlushToWide(wchar** target, wchar* targetLimit) noexcept {
    const char none = 0;
    const char* cursor = &none;
    return ToWide(&cursor, cursor, target, targetLimit, true);
}

QXResult QXEncConverter::FlushFromWide(char** target, char* targetLimit) noexcept {
    const wchar none = 0;
    const wchar* cursor = &none;
    return FromWide(&cursor, cursor, target, targetLimit, true);
}

i32 InitConverters(const char* dataDirectory) noexcept {
    u_setDataDirectory(dataDirectory);
    UErrorCode status = U_ZERO_ERROR;
    u_init(&status);
    s_availableConverters = ucnv_countAvailable();
    return s_availableConverters;
}
