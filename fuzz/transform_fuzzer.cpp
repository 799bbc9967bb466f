// The transforms beside ICU called directly: the same result, length and target, to the last unit.
#include <qxcore/transform.h>
#include <unicode/ustring.h>

#include <memory>

#include "fuzz_input.h"

namespace {

QXResult ResultOf(UErrorCode status) {
    if (status <= 0) {
        return QX_S_OK;
    }
    if (status >= U_INVALID_CHAR_FOUND && status <= U_ILLEGAL_CHAR_FOUND) {
        return QX_E_ILLEGALCHAR;
    }
    return status == U_BUFFER_OVERFLOW_ERROR ? QX_E_BUFFERTOOSMALL : QX_E_FAIL;
}

// A heap block of exactly this size, so that the sanitizer sees what is written behind it.
template <typename Unit>
struct Block {
    explicit Block(size_t size) : units(new Unit[size]), size(size) {
        std::memset(units.get(), 0x55, size * sizeof(Unit));
    }
    explicit Block(const std::basic_string<Unit>& text) : Block(text.size()) {
        std::memcpy(units.get(), text.data(), size * sizeof(Unit));
    }
    bool operator==(const Block& other) const {
        return std::memcmp(units.get(), other.units.get(), size * sizeof(Unit)) == 0;
    }
    Unit* Data() const { return units.get(); }

    std::unique_ptr<Unit[]> units;
    size_t size;
};

template <typename Source, typename Target, typename Full, typename Counted, typename Short,
          typename Icu>
void CheckDirection(FuzzInput input, Full full, Counted counted, Short terminated, Icu icu) {
    const int32_t substitution = input.Take<int32_t>();
    const bool isTerminated = (input.Take<uint8_t>() & 1) != 0;
    const uint16_t capacity = input.Take<uint16_t>() % 2048;
    std::basic_string<Source> text = input.Rest<Source>();
    int32_t length = static_cast<int32_t>(text.size());
    if (isTerminated) {
        text.push_back(0);
        length = -1;
    }
    const Block<Source> source(text);

    const auto callIcu = [&](const Block<Target>& target, int32_t replacement, int32_t& produced) {
        UErrorCode status = U_ZERO_ERROR;
        icu(target.Data(), capacity, &produced, source.Data(), length, replacement, nullptr,
            &status);
        return ResultOf(status);
    };

    const Block<Target> expected(capacity), got(capacity);
    int32_t expectedLength = 0;
    const QXResult expectedResult = callIcu(expected, substitution, expectedLength);
    size_t gotLength = 77;
    FUZZ_REQUIRE(expectedResult ==
                 full(got.Data(), capacity, &gotLength, source.Data(), length, substitution));
    FUZZ_REQUIRE(static_cast<size_t>(int64_t{expectedLength}) == gotLength);
    FUZZ_REQUIRE(expected == got);

    const Block<Target> plain(capacity), viaCounted(capacity), viaShort(capacity);
    int32_t plainLength = capacity;
    const QXResult plainResult = callIcu(plain, -1, plainLength);
    int32_t countedLength = capacity;
    const bool isNull =
        counted(viaCounted.Data(), capacity, &countedLength, source.Data(), length) == nullptr;
    FUZZ_REQUIRE(isNull == (plainResult == QX_E_ILLEGALCHAR || plainResult == QX_E_FAIL));
    FUZZ_REQUIRE(countedLength == plainLength && viaCounted == plain);
    if (isTerminated) {
        FUZZ_REQUIRE(terminated(viaShort.Data(), source.Data(), capacity) == plainLength);
        FUZZ_REQUIRE(viaShort == plain);
    }
}

// Well-formed narrow text becomes what ICU makes of it; anything else fails.
void CheckNarrow(FuzzInput input) {
    std::string text = input.Rest<char>();
    text.push_back('\0');
    const Block<char> source(text);
    const size_t length = std::strlen(text.c_str());
    std::u16string expected(length + 1, u'\0');
    int32_t units = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(expected.data(), static_cast<int32_t>(length) + 1, &units, text.c_str(), -1,
                  &status);
    const Block<char16_t> wide(length + 1);
    const size_t result = QXAnsiToUnicode(wide.Data(), source.Data(), length + 1);
    FUZZ_REQUIRE(result == QXAnsiToUnicode(nullptr, source.Data(), 0));
    if (U_FAILURE(status)) {
        size_t ascii = 0;
        while (static_cast<unsigned char>(text[ascii]) < 0x80) {
            ++ascii;
        }
        FUZZ_REQUIRE(result == ascii - 1);
        return;
    }
    FUZZ_REQUIRE(result == static_cast<size_t>(units));
    FUZZ_REQUIRE(std::memcmp(wide.Data(), expected.data(), (result + 1) * sizeof(char16_t)) == 0);
    const Block<char> back(length + 1);
    FUZZ_REQUIRE(QXUnicodeToAnsi(back.Data(), wide.Data(), length + 1) == length);
    FUZZ_REQUIRE(std::strcmp(back.Data(), text.c_str()) == 0);
}

// Through UTF-32 and back is the same as replacing what is bad.
void CheckUtf32(FuzzInput input) {
    const std::string text = input.Rest<char>();
    const auto length = static_cast<int64_t>(text.size());
    const Block<char32_t> wide(text.size());
    size_t units = 0;
    FUZZ_REQUIRE(QXEncUTF8ToUTF32(wide.Data(), wide.size, &units, text.data(), length, 0xFFFD) ==
                 QX_S_OK);
    const Block<char> back(3 * text.size() + 1), expected(3 * text.size() + 1);
    size_t size = 0;
    FUZZ_REQUIRE(QXEncUTF32ToUTF8(back.Data(), back.size, &size, wide.Data(),
                                  static_cast<int64_t>(units), -1) == QX_S_OK);
    std::u16string utf16(text.size() + 1, u'\0');
    int32_t utf16Length = 0;
    int32_t expectedSize = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(utf16.data(), static_cast<int32_t>(utf16.size()), &utf16Length,
                         text.data(), static_cast<int32_t>(length), 0xFFFD, nullptr, &status);
    u_strToUTF8(expected.Data(), static_cast<int32_t>(expected.size), &expectedSize, utf16.data(),
                utf16Length, &status);
    FUZZ_REQUIRE(size == static_cast<size_t>(expectedSize) && back == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    FuzzInput input(bytes, size);
    switch (input.Take<uint8_t>() % 4) {
        case 0:
            CheckDirection<char, char16_t>(input, QXEncUTF8ToUTF16, QXUTF8ToUTF16N, QXUTF8ToUTF16,
                                           u_strFromUTF8WithSub);
            break;
        case 1:
            CheckDirection<char16_t, char>(input, QXEncUTF16ToUTF8, QXUTF16ToUTF8N, QXUTF16ToUTF8,
                                           u_strToUTF8WithSub);
            break;
        case 2:
            CheckNarrow(input);
            break;
        default:
            CheckUtf32(input);
    }
    return 0;
}
