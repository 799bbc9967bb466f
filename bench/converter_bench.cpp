// A text of 64 KiB from one encoding to another, and the opening of a converter, beside ICU called
// directly.
#include <benchmark/benchmark.h>
#include <qxcore/converter.h>
#include <unicode/ucnv.h>

#include <string>

namespace {

constexpr size_t kBytes = 64 * 1024;

struct Pair {
    const char* from;
    const char* to;
    const char* words;  // in UTF-8
    int32_t substitution;
};

constexpr char kPlainWords[] = "The quick brown fox jumps over the lazy dog. ";
constexpr char kWesternWords[] = "Gr\u00FC\u00DFe aus K\u00F6ln, d\u00E9j\u00E0 vu. ";
constexpr char kJapaneseWords[] =
    "\u8272\u306F\u5302\u3078\u3068\u6563\u308A\u306C\u308B\u3092 ABC. ";

constexpr Pair kPairs[] = {
    {"UTF-8", "UTF-16LE", kPlainWords, 0xFFFD},       {"UTF-16LE", "UTF-8", kPlainWords, 0xFFFD},
    {"windows-1252", "UTF-8", kWesternWords, '?'},    {"UTF-8", "windows-1252", kWesternWords, '?'},
    {"windows-1252", "UTF-16LE", kWesternWords, '?'}, {"shift_jis", "UTF-8", kJapaneseWords, '?'},
    {"UTF-8", "shift_jis", kJapaneseWords, '?'},      {"shift_jis", "EUC-JP", kJapaneseWords, '?'},
};

constexpr const char* kNames[] = {"UTF-8", "windows-1252", "shift_jis", "CP1252"};

std::u16string Widened(const char* name) {
    return {name, name + std::char_traits<char>::length(name)};
}

std::string SourceText(const Pair& pair) {
    std::string utf8;
    while (utf8.size() < kBytes) {
        utf8 += pair.words;
    }
    std::string text(4 * utf8.size(), '\0');
    UErrorCode status = U_ZERO_ERROR;
    const int32_t size =
        ucnv_convert(pair.from, "UTF-8", text.data(), static_cast<int32_t>(text.size()),
                     utf8.data(), static_cast<int32_t>(utf8.size()), &status);
    text.resize(static_cast<size_t>(size));
    return text;
}

void QXOneShot(benchmark::State& state, const Pair& pair) {
    const std::string source = SourceText(pair);
    std::string target(4 * source.size(), '\0');
    const std::u16string from = Widened(pair.from);
    const std::u16string to = Widened(pair.to);
    for (auto _ : state) {
        size_t sourceSize = source.size();
        size_t targetSize = target.size();
        const QXResult result =
            QXEncConvert(source.data(), &sourceSize, from.c_str(), target.data(), &targetSize,
                         to.c_str(), pair.substitution);
        if (QX_FAILED(result)) {
            state.SkipWithError("failed");
        }
    }
}

void IcuOneShot(benchmark::State& state, const Pair& pair) {
    const std::string source = SourceText(pair);
    std::string target(4 * source.size(), '\0');
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_convert(pair.to, pair.from, target.data(), static_cast<int32_t>(target.size()),
                     source.data(), static_cast<int32_t>(source.size()), &status);
        if (U_FAILURE(status)) {
            state.SkipWithError("failed");
        }
    }
}

void QXOpen(benchmark::State& state, const char* name) {
    const std::u16string wide = Widened(name);
    for (auto _ : state) {
        QXEncToW_Close(QXEncToW_Open(wide.c_str()));
    }
}

void IcuOpen(benchmark::State& state, const char* name) {
    for (auto _ : state) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_close(ucnv_open(name, &status));
    }
}

const bool s_added = [] {
    for (const Pair& pair : kPairs) {
        const std::string what = std::string(", ") + pair.from + " to " + pair.to;
        benchmark::RegisterBenchmark(("QXEncConvert" + what).c_str(), QXOneShot, pair);
        benchmark::RegisterBenchmark(("ucnv_convert" + what).c_str(), IcuOneShot, pair);
    }
    for (const char* const name : kNames) {
        benchmark::RegisterBenchmark((std::string("QX open, ") + name).c_str(), QXOpen, name);
        benchmark::RegisterBenchmark((std::string("ICU open, ") + name).c_str(), IcuOpen, name);
    }
    return true;
}();

}  // namespace
