// The one-shot conversion and the stream beside ICU's converters called directly, pass by pass.
#include <qxcore/converter.h>
#include <unicode/ucnv.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "fuzz_input.h"

namespace {

constexpr const char* kNames[] = {"UTF-8",  "UTF-16",      "UTF-16LE",    "UTF-32BE",
                                  "UTF-7",  "CP1252",      "SJIS",        "CP932",
                                  "EUC-JP", "GB18030",     "Big5",        "HZ",
                                  "SCSU",   "ISO-2022-JP", "ISO-2022-KR", "ISO-8859-1"};

std::u16string Widened(const char* name) {
    return {name, name + std::strlen(name)};
}

struct IcuCloser {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using IcuConverter = std::unique_ptr<UConverter, IcuCloser>;

IcuConverter OpenIcu(const char* name, int32_t substitution, UErrorCode& status) {
    status = U_ZERO_ERROR;
    IcuConverter converter(ucnv_open(name, &status));
    status = U_ZERO_ERROR;
    if (substitution < 0) {
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                            &status);
        ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                              &status);
    } else {
        const auto unit = static_cast<UChar>(substitution);
        ucnv_setSubstString(converter.get(), &unit, 1, &status);
    }
    return converter;
}

struct Outcome {
    bool failed;
    size_t read;
    size_t written;
    std::vector<char> target;
};

// Passes through a pivot of 1024 units, and the flushes.
Outcome ConvertByIcu(UConverter* from, UConverter* to, const std::string& source, size_t capacity) {
    UChar pivot[1024];
    Outcome outcome{false, 0, 0, std::vector<char>(capacity, 0x55)};
    const char* read = source.data();
    const char* const limit = read + source.size();
    char* written = outcome.target.data();
    char* const room = written + capacity;
    UErrorCode status = U_ZERO_ERROR;
    const auto pass = [&](bool flush) {
        UChar* end = pivot;
        ucnv_toUnicode(from, &end, pivot + 1024, &read, limit, nullptr, flush, &status);
        const UErrorCode reading = status == U_BUFFER_OVERFLOW_ERROR ? U_ZERO_ERROR : status;
        if (flush && U_FAILURE(status)) {
            return;
        }
        status = U_ZERO_ERROR;
        const UChar* begin = pivot;
        ucnv_fromUnicode(to, &written, room, &begin, end, nullptr, false, &status);
        status = U_FAILURE(reading) ? reading : status;
    };
    do {
        pass(false);
    } while (U_SUCCESS(status) && read < limit);
    if (U_SUCCESS(status)) {
        pass(true);
    }
    if (U_SUCCESS(status)) {
        const UChar none = 0;
        const UChar* begin = &none;
        ucnv_fromUnicode(to, &written, room, &begin, begin, nullptr, true, &status);
    }
    outcome.failed = U_FAILURE(status);
    outcome.read = static_cast<size_t>(read - source.data());
    outcome.written = static_cast<size_t>(written - outcome.target.data());
    return outcome;
}

void CheckOneShot(const char* fromName, const char* toName, int32_t substitution, size_t capacity,
                  const std::string& source) {
    UErrorCode fromStatus;
    UErrorCode toStatus;
    const IcuConverter from = OpenIcu(fromName, substitution, fromStatus);
    const IcuConverter to = OpenIcu(toName, substitution, toStatus);
    std::vector<char> target(capacity, 0x55);
    size_t read = source.size();
    size_t written = capacity;
    const QXResult result =
        QXEncConvert(source.data(), &read, Widened(fromName).c_str(), target.data(), &written,
                     Widened(toName).c_str(), substitution);
    if (U_FAILURE(fromStatus) || U_FAILURE(toStatus)) {
        FUZZ_REQUIRE(QX_FAILED(result) && read == source.size() && written == capacity);
        return;
    }
    const Outcome expected = ConvertByIcu(from.get(), to.get(), source, capacity);
    FUZZ_REQUIRE(expected.failed == QX_FAILED(result));
    FUZZ_REQUIRE(expected.read == read && expected.written == written);
    const size_t visible = expected.failed ? written : capacity;
    FUZZ_REQUIRE(std::equal(target.data(), target.data() + visible, expected.target.data()));
}

// What a stream gives whose source comes in pieces and whose target has room for as much.
template <typename Step>
std::u16string Stream(const std::string& source, size_t piece, Step step, bool& failed) {
    std::u16string text;
    const char* read = source.data();
    const char* const limit = read + source.size();
    const auto drain = [&](const char* pieceLimit, bool flush) {
        for (QXResult result = QX_E_BUFFERTOOSMALL; result == QX_E_BUFFERTOOSMALL;) {
            const std::unique_ptr<char16_t[]> target(new char16_t[piece]);
            char16_t* written = target.get();
            result = step(&read, pieceLimit, &written, target.get() + piece, flush);
            text.append(target.get(), written);
            failed = QX_FAILED(result);
        }
    };
    failed = false;
    while (!failed && read < limit) {
        const size_t left = static_cast<size_t>(limit - read);
        drain(read + std::min(left, piece), false);
    }
    if (!failed) {
        drain(limit, true);
    }
    return text;
}

void CheckStream(const char* name, int32_t substitution, size_t piece, const std::string& source) {
    UErrorCode status;
    const IcuConverter icu = OpenIcu(name, substitution, status);
    QXEncConverter* const converter = QXEncToW_Open(Widened(name).c_str());
    QXEncToW_SetSubstitutionChar(converter, substitution);
    bool failed;
    bool icuFailed;
    const std::u16string text = Stream(
        source, piece,
        [&](const char** read, const char* limit, char16_t** written, char16_t* room, bool flush) {
            return flush ? QXEncToW_Flush(converter, written, room)
                         : QXEncToW_Convert(converter, read, limit, written, room);
        },
        failed);
    const std::u16string expected = Stream(
        source, piece,
        [&](const char** read, const char* limit, char16_t** written, char16_t* room, bool flush) {
            status = U_ZERO_ERROR;
            ucnv_toUnicode(icu.get(), written, room, read, limit, nullptr, flush, &status);
            return status == U_BUFFER_OVERFLOW_ERROR ? QX_E_BUFFERTOOSMALL
                   : U_FAILURE(status)               ? QX_E_FAIL
                                                     : QX_S_OK;
        },
        icuFailed);
    QXEncToW_Close(converter);
    FUZZ_REQUIRE(failed == icuFailed);
    FUZZ_REQUIRE(text == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    FuzzInput input(bytes, size);
    const char* const from = kNames[input.Take<uint8_t>() % std::size(kNames)];
    const char* const to = kNames[input.Take<uint8_t>() % std::size(kNames)];
    const int32_t substitution = input.Take<uint8_t>() % 2 != 0 ? -1 : '?';
    const uint16_t capacity = input.Take<uint16_t>() % 8192;
    const size_t piece = 1 + input.Take<uint8_t>() % 20;
    std::string source = input.Rest<char>();
    CheckStream(from, substitution, piece, source);
    // Long enough for several passes.
    while (!source.empty() && source.size() < 1500) {
        source += source;
    }
    CheckOneShot(from, to, substitution, capacity, source);
    CheckOneShot(from, to, substitution, 0x10000, input.Rest<char>());
    return 0;
}
