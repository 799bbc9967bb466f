#include <qxcore/transform.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <memory>
#include <new>

#include "text/icu_status.h"
#include "text/transform.h"

namespace {

// The stored lengths are signed, and widened as such.
size_t Widened(i32 length) {
    return static_cast<size_t>(i64{length});
}

template <typename Target, typename Source, typename Call>
QXResult Transform(Call call, Target* target, size_t capacity, size_t* outLength,
                   const Source* source, i32 length, i32 substitution) {
    UErrorCode status = U_ZERO_ERROR;
    i32 produced = 0;
    call(target, static_cast<i32>(capacity), &produced, source, length, substitution, &status);
    if (outLength != nullptr) {
        *outLength = Widened(produced);
    }
    return ResultFromIcu(status);
}

// What was preset stays where ICU stores no length: bad input gives the capacity.
template <typename Target, typename Source, typename Call>
i64 TransformTerminated(Call call, Target* target, const Source* source, i32 capacity) {
    UErrorCode status = U_ZERO_ERROR;
    i32 produced = capacity;
    call(target, capacity, &produced, source, -1, kNoSubstitution, &status);
    return produced;
}

// UTF-16 text on its way between the two other forms: in this object, or on the heap from the
// size of the place here.
class Scratch {
  public:
    explicit Scratch(u64 capacity)
        : m_heap(capacity >= kPlace ? std::make_unique_for_overwrite<char16_t[]>(capacity)
                                    : nullptr),
          m_capacity(m_heap != nullptr ? capacity : kPlace) {}

    char16_t* Text() noexcept { return m_heap != nullptr ? m_heap.get() : m_place; }
    i32 Capacity() const noexcept { return static_cast<i32>(m_capacity); }

  private:
    static constexpr u64 kPlace = 512;

    const std::unique_ptr<char16_t[]> m_heap;
    const u64 m_capacity;
    char16_t m_place[kPlace];
};

// `first(scratch, &length, &status)` fills the scratch; `second(text, textLength, &length,
// &status)` empties it into the target.
template <typename First, typename Second>
QXResult ThroughScratch(u64 capacity, size_t* outLength, First first, Second second) {
    try {
        Scratch scratch(capacity);
        UErrorCode status = U_ZERO_ERROR;
        i32 wideLength = 0;
        i32 produced = 0;
        first(scratch, &wideLength, &status);
        if (U_SUCCESS(status)) {
            status = U_ZERO_ERROR;
            second(scratch.Text(), wideLength, &produced, &status);
        }
        *outLength = Widened(produced);
        return ResultFromIcu(status);
    } catch (const std::bad_alloc&) {
        return QX_E_FAIL;
    }
}

// A negative length stands for text up to its zero unit.
template <typename Unit>
u64 LengthOf(const Unit* text, i64 length) {
    return length >= 0 ? static_cast<u64>(length) : std::char_traits<Unit>::length(text);
}

}  // namespace

const char* QXUtf8BomStr = "\xEF\xBB\xBF";

QXResult QXEncUTF8ToUTF16(wchar* target, size_t capacity, size_t* outLength, const char* source,
                          int32_t length, int32_t substitution) {
    return Transform(Utf16FromUtf8, target, capacity, outLength, source, length, substitution);
}

QXResult QXEncUTF16ToUTF8(char* target, size_t capacity, size_t* outLength, const wchar* source,
                          int32_t length, int32_t substitution) {
    return Transform(Utf8FromUtf16, target, capacity, outLength, source, length, substitution);
}

QXResult QXUTF8ToW(wchar* target, size_t capacity, size_t* outLength, const char* source,
                   int32_t length, int32_t substitution) {
    return QXEncUTF8ToUTF16(target, capacity, outLength, source, length, substitution);
}

QXResult QXWToUTF8(char* target, size_t capacity, size_t* outLength, const wchar* source,
                   int32_t length, int32_t substitution) {
    return QXEncUTF16ToUTF8(target, capacity, outLength, source, length, substitution);
}

QXResult QXEncUTF8ToUTF32(char32_t* target, size_t capacity, size_t* outLength, const char* source,
                          int64_t length, int32_t substitution) {
    const u64 sourceLength = LengthOf(source, length);
    return ThroughScratch(
        sourceLength, outLength,
        [&](Scratch& scratch, i32* wideLength, UErrorCode* status) {
            Utf16FromUtf8(scratch.Text(), scratch.Capacity(), wideLength, source,
                          static_cast<i32>(sourceLength), substitution, status);
        },
        [&](const char16_t* text, i32 textLength, i32* produced, UErrorCode* status) {
            u_strToUTF32(reinterpret_cast<UChar32*>(target), static_cast<i32>(capacity), produced,
                         text, textLength, status);
        });
}

QXResult QXEncUTF32ToUTF8(char* target, size_t capacity, size_t* outLength, const char32_t* source,
                          int64_t length, int32_t substitution) {
    const u64 sourceLength = LengthOf(source, length);
    return ThroughScratch(
        2 * sourceLength, outLength,
        [&](Scratch& scratch, i32* wideLength, UErrorCode* status) {
            u_strFromUTF32WithSub(scratch.Text(), scratch.Capacity(), wideLength,
                                  reinterpret_cast<const UChar32*>(source),
                                  static_cast<i32>(sourceLength), substitution, nullptr, status);
        },
        [&](const char16_t* text, i32 textLength, i32* produced, UErrorCode* status) {
            Utf8FromUtf16(target, static_cast<i32>(capacity), produced, text, textLength,
                          kNoSubstitution, status);
        });
}

int64_t QXUTF8ToUTF16(wchar* target, const char* source, int32_t capacity) {
    return TransformTerminated(Utf16FromUtf8, target, source, capacity);
}

int64_t QXUTF16ToUTF8(char* target, const wchar* source, int32_t capacity) {
    return TransformTerminated(Utf8FromUtf16, target, source, capacity);
}

wchar* QXUTF8ToUTF16N(wchar* target, int32_t capacity, int32_t* outLength, const char* source,
                      int32_t length) {
    UErrorCode status = U_ZERO_ERROR;
    return Utf16FromUtf8(target, capacity, outLength, source, length, kNoSubstitution, &status);
}

char* QXUTF16ToUTF8N(char* target, int32_t capacity, int32_t* outLength, const wchar* source,
                     int32_t length) {
    UErrorCode status = U_ZERO_ERROR;
    return Utf8FromUtf16(target, capacity, outLength, source, length, kNoSubstitution, &status);
}

int32_t QXCountCharUTF16(const wchar* text) {
    return u_countChar32(text, -1);
}

uint32_t QXNextCharUTF16(const wchar** cursor, uint32_t unitsLeft) {
    // All ones is the one "negative" number that means there is enough.
    const i32 left = unitsLeft != 0xFFFFFFFF ? static_cast<i32>(unitsLeft) : 2;
    if (left <= 0) {
        return 0;
    }
    const wchar* const text = *cursor;
    const bool isPair = U16_IS_LEAD(text[0]) && left >= 2 && U16_IS_TRAIL(text[1]);
    *cursor += isPair ? 2 : 1;
    return isPair ? static_cast<u32>(U16_GET_SUPPLEMENTARY(text[0], text[1])) : text[0];
}

int32_t QXIsUtf8BomStr(const char* text) {
    for (int index = 0; index < 3; ++index) {
        if (text[index] != QXUtf8BomStr[index]) {
            return 0;
        }
    }
    return 1;
}
