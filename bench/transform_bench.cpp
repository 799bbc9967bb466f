// Texts of 1 KiB from one Unicode form to another, beside ICU called directly, and narrow text
// beside the C library.
#include <benchmark/benchmark.h>
#include <qxcore/transform.h>
#include <unicode/ustring.h>

#include <clocale>
#include <cstdlib>
#include <string>

namespace {

constexpr size_t kBytes = 1024;

struct Sample {
    const char* name;
    const char* words;
};

constexpr Sample kSamples[] = {
    {"ASCII", "The quick brown fox jumps over the lazy dog. "},
    {"mixed",
     "Gr\u00FC\u00DFe aus K\u00F6ln, \u0416\u0438\u0437\u043D\u044C \u65E5\u672C \U0001F600 plain "
     "words. "},
    {"Cyrillic", "\u0421\u044A\u0435\u0448\u044C \u0435\u0449\u0451 \u044D\u0442\u0438\u0445 "},
    {"Japanese", "\u8272\u306F\u5302\u3078\u3068\u6563\u308A\u306C\u308B\u3092"},
};

struct Texts {
    explicit Texts(const Sample& sample) {
        while (narrow.size() + std::string(sample.words).size() <= kBytes) {
            narrow += sample.words;
        }
        wide.resize(narrow.size());
        UErrorCode status = U_ZERO_ERROR;
        int32_t length = 0;
        u_strFromUTF8(wide.data(), static_cast<int32_t>(wide.size()), &length, narrow.data(),
                      static_cast<int32_t>(narrow.size()), &status);
        wide.resize(static_cast<size_t>(length));
    }
    std::string narrow;
    std::u16string wide;
};

// What is measured, with room for each text.
using Run = void (*)(const Texts& texts, char16_t* wide, char* narrow);

void QXToWide(const Texts& texts, char16_t* wide, char*) {
    size_t length;
    QXEncUTF8ToUTF16(wide, 4 * kBytes, &length, texts.narrow.data(),
                     static_cast<int32_t>(texts.narrow.size()), 0xFFFD);
}

void IcuToWide(const Texts& texts, char16_t* wide, char*) {
    int32_t length;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(wide, 4 * kBytes, &length, texts.narrow.data(),
                         static_cast<int32_t>(texts.narrow.size()), 0xFFFD, nullptr, &status);
}

void QXToNarrow(const Texts& texts, char16_t*, char* narrow) {
    size_t length;
    QXEncUTF16ToUTF8(narrow, 4 * kBytes, &length, texts.wide.data(),
                     static_cast<int32_t>(texts.wide.size()), 0xFFFD);
}

void IcuToNarrow(const Texts& texts, char16_t*, char* narrow) {
    int32_t length;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(narrow, 4 * kBytes, &length, texts.wide.data(),
                       static_cast<int32_t>(texts.wide.size()), 0xFFFD, nullptr, &status);
}

void QXTerminatedToWide(const Texts& texts, char16_t* wide, char*) {
    QXUTF8ToUTF16(wide, texts.narrow.c_str(), 4 * kBytes);
}

void IcuTerminatedToWide(const Texts& texts, char16_t* wide, char*) {
    int32_t length;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(wide, 4 * kBytes, &length, texts.narrow.c_str(), -1, &status);
}

void QXTerminatedToNarrow(const Texts& texts, char16_t*, char* narrow) {
    QXUTF16ToUTF8(narrow, texts.wide.c_str(), 4 * kBytes);
}

void IcuTerminatedToNarrow(const Texts& texts, char16_t*, char* narrow) {
    int32_t length;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8(narrow, 4 * kBytes, &length, texts.wide.c_str(), -1, &status);
}

void QXAnsi(const Texts& texts, char16_t* wide, char*) {
    QXAnsiToUnicode(wide, texts.narrow.c_str(), 4 * kBytes);
}

void QXAnsiBack(const Texts& texts, char16_t*, char* narrow) {
    QXUnicodeToAnsi(narrow, texts.wide.c_str(), 4 * kBytes);
}

// In the C library a wide character is a 32-bit one.
void LibraryMbstowcs(const Texts& texts, char16_t*, char*) {
    static wchar_t wide[4 * kBytes];
    benchmark::DoNotOptimize(std::mbstowcs(wide, texts.narrow.c_str(), 4 * kBytes));
}

// For ASCII alone.
void NaiveLoop(const Texts& texts, char16_t* wide, char*) {
    const char* source = texts.narrow.c_str();
    while ((*wide++ = static_cast<unsigned char>(*source++)) != 0) {
    }
}

void Measure(benchmark::State& state, Run run, const Sample& sample) {
    const Texts texts(sample);
    static char16_t wide[4 * kBytes];
    static char narrow[4 * kBytes];
    for (auto _ : state) {
        run(texts, wide, narrow);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(texts.narrow.size()));
}

void Add(const char* name, Run run, const Sample& sample) {
    benchmark::RegisterBenchmark((std::string(name) + ", " + sample.name).c_str(), Measure, run,
                                 sample);
}

const bool s_added = [] {
    std::setlocale(LC_ALL, "C.UTF-8");
    for (const Sample& sample : kSamples) {
        Add("QX UTF-8 to UTF-16", QXToWide, sample);
        Add("ICU UTF-8 to UTF-16", IcuToWide, sample);
        Add("QX UTF-16 to UTF-8", QXToNarrow, sample);
        Add("ICU UTF-16 to UTF-8", IcuToNarrow, sample);
        Add("QX terminated UTF-8", QXTerminatedToWide, sample);
        Add("ICU terminated UTF-8", IcuTerminatedToWide, sample);
        Add("QX terminated UTF-16", QXTerminatedToNarrow, sample);
        Add("ICU terminated UTF-16", IcuTerminatedToNarrow, sample);
        Add("QXAnsiToUnicode", QXAnsi, sample);
        Add("C library mbstowcs", LibraryMbstowcs, sample);
        Add("QXUnicodeToAnsi", QXAnsiBack, sample);
    }
    Add("loop over bytes", NaiveLoop, kSamples[0]);
    return true;
}();

}  // namespace
