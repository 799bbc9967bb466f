// The string family beside ICU and the C library: 64 wide units against ICU's functions and against
// the C library's narrow ones over the same bytes. The table at the end holds the ratios.
#include <benchmark/benchmark.h>
#include <qxcore/string.h>
#include <strings.h>
#include <unicode/stringoptions.h>
#include <unicode/ustring.h>
#include <wchar.h>
#include <wctype.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr size_t kUnits = 64;
constexpr size_t kBytes = kUnits * sizeof(wchar);

// Two equal texts of each form, at different places in their cache lines, with their last unit
// found nowhere else. The pointers are variables so that no call has a known result.
template <typename Unit, size_t kLength>
struct Texts {
    alignas(64) Unit m_firstBuffer[kLength * 2 + 64];
    alignas(64) Unit m_secondBuffer[kLength * 2 + 64];
    Unit* m_first = m_firstBuffer;
    Unit* m_second = m_secondBuffer + 24 / sizeof(Unit);
    alignas(64) Unit m_otherCaseBuffer[kLength * 2 + 64];
    Unit* m_otherCase = m_otherCaseBuffer;
    alignas(64) Unit m_target[kLength * 2 + 64] = {};
    Unit m_sought[4] = {'a', 'b', 'z', 0};

    Texts() {
        for (size_t index = 0; index < kLength; ++index) {
            m_first[index] = static_cast<Unit>("Abcdefghijkl mnopqrstuvwxY"[index % 26]);
        }
        m_first[kLength - 3] = 'a';
        m_first[kLength - 2] = 'b';
        m_first[kLength - 1] = 'z';
        m_first[kLength] = 0;
        std::copy_n(m_first, kLength + 1, m_second);
        std::transform(m_first, m_first + kLength + 1, m_otherCase, [](Unit unit) {
            return static_cast<Unit>(unit > ' ' ? unit ^ 0x20 : unit);
        });
        benchmark::DoNotOptimize(m_first);
        benchmark::DoNotOptimize(m_second);
        benchmark::DoNotOptimize(m_otherCase);
    }
};

Texts<wchar, kUnits> s_wide;
Texts<char, kBytes> s_bytes;
Texts<char, kUnits> s_narrow;

// For the members that change a text: the others shall find theirs as they were.
Texts<wchar, kUnits> s_wideMapped;
Texts<char, kUnits> s_narrowMapped;

template <typename Call>
void Measure(const char* member, const char* who, Call call) {
    const std::string name = std::string(member) + "|" + who;
    benchmark::RegisterBenchmark(name.c_str(), [call](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(call());
            benchmark::ClobberMemory();
        }
    });
}

// Prints the time of a member over that of each peer.
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median") {
                m_times[run.run_name.function_name] = run.GetAdjustedRealTime();
            }
        }
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        for (const auto& [name, time] : m_times) {
            const std::string member = name.substr(0, name.find('|'));
            const auto own = m_times.find(member + "|QX");
            if (own != m_times.end() && name != own->first) {
                std::printf("%-20s %5.2f of %s\n", member.c_str(), own->second / time,
                            name.c_str() + member.size() + 1);
            }
        }
    }

  private:
    std::map<std::string, double> m_times;
};

void MeasureLengthAndCopy() {
    Measure("QXStrLenW", "QX", [] { return QXStrLenW(s_wide.m_first); });
    Measure("QXStrLenW", "u_strlen", [] { return u_strlen(s_wide.m_first); });
    Measure("QXStrLenW", "strlen, same bytes", [] { return strlen(s_bytes.m_first); });
    Measure("QXStrNLenW", "QX", [] { return QXStrNLenW(s_wide.m_first, 1000); });
    Measure("QXStrNLenW", "strnlen, same bytes", [] { return strnlen(s_bytes.m_first, 2000); });
    Measure("QXStrLenA", "QX", [] { return QXStrLenA(s_narrow.m_first); });
    Measure("QXStrLenA", "strlen", [] { return strlen(s_narrow.m_first); });
    Measure("QXStrCpyW", "QX", [] { return QXStrCpyW(s_wide.m_target, s_wide.m_second); });
    Measure("QXStrCpyW", "u_strcpy", [] { return u_strcpy(s_wide.m_target, s_wide.m_second); });
    Measure("QXStrCpyW", "strcpy, same bytes",
            [] { return strcpy(s_bytes.m_target, s_bytes.m_second); });
    Measure("QXStrCpyA", "QX", [] { return QXStrCpyA(s_narrow.m_target, s_narrow.m_second); });
    Measure("QXStrCpyA", "strcpy", [] { return strcpy(s_narrow.m_target, s_narrow.m_second); });
    Measure("QXStrNCpyA", "QX",
            [] { return QXStrNCpyA(s_narrow.m_target, s_narrow.m_second, 96); });
    Measure("QXStrNCpyA", "strncpy",
            [] { return strncpy(s_narrow.m_target, s_narrow.m_second, 96); });
    Measure("QXStrNZCpyW", "QX",
            [] { return QXStrNZCpyW(s_wide.m_target, 96, s_wide.m_second, 96); });
    Measure("QXStrNZCpyW", "u_strncpy",
            [] { return u_strncpy(s_wide.m_target, s_wide.m_second, 96); });
}

void MeasureCompare() {
    Measure("QXStrCmpW", "QX", [] { return QXStrCmpW(s_wide.m_first, s_wide.m_second); });
    Measure("QXStrCmpW", "u_strcmp", [] { return u_strcmp(s_wide.m_first, s_wide.m_second); });
    Measure("QXStrCmpW", "strcmp, same bytes",
            [] { return strcmp(s_bytes.m_first, s_bytes.m_second); });
    Measure("QXStrNCmpW", "QX", [] { return QXStrNCmpW(s_wide.m_first, s_wide.m_second, 99); });
    Measure("QXStrNCmpW", "u_strncmp",
            [] { return u_strncmp(s_wide.m_first, s_wide.m_second, 99); });
    Measure("QXStrNCmpW", "strncmp, same bytes",
            [] { return strncmp(s_bytes.m_first, s_bytes.m_second, 199); });
    Measure("QXStrCmpA", "QX", [] { return QXStrCmpA(s_narrow.m_first, s_narrow.m_second); });
    Measure("QXStrCmpA", "strcmp", [] { return strcmp(s_narrow.m_first, s_narrow.m_second); });
    Measure("QXStrICmpA", "QX", [] { return QXStrICmpA(s_narrow.m_first, s_narrow.m_second); });
    Measure("QXStrICmpA", "strcasecmp",
            [] { return strcasecmp(s_narrow.m_first, s_narrow.m_second); });
    Measure("QXStrICmpA, cases", "QX",
            [] { return QXStrICmpA(s_narrow.m_otherCase, s_narrow.m_second); });
    Measure("QXStrICmpA, cases", "strcasecmp",
            [] { return strcasecmp(s_narrow.m_otherCase, s_narrow.m_second); });
    Measure("QXStrICmpUCS2", "QX", [] { return QXStrICmpUCS2(s_wide.m_first, s_wide.m_second); });
    Measure("QXStrICmpUCS2", "u_strcasecmp",
            [] { return u_strcasecmp(s_wide.m_first, s_wide.m_second, 0); });
    Measure("QXStrICmpW", "QX", [] { return QXStrICmpW(s_wide.m_first, s_wide.m_second); });
    Measure("QXStrICmpW", "u_strcasecmp",
            [] { return u_strcasecmp(s_wide.m_first, s_wide.m_second, 0); });
    Measure("QXStrICmpUTF16", "QX", [] { return QXStrICmpUTF16(s_wide.m_first, s_wide.m_second); });
    Measure("QXStrICmpUTF16", "u_strcasecmp", [] {
        return u_strcasecmp(s_wide.m_first, s_wide.m_second, U_COMPARE_CODE_POINT_ORDER);
    });
}

void MeasureSearch() {
    Measure("QXStrChrW", "QX", [] { return QXStrChrW(s_wide.m_first, u'z'); });
    Measure("QXStrChrW", "u_strchr", [] { return u_strchr(s_wide.m_first, u'z'); });
    Measure("QXStrChrW", "strchr, same bytes", [] { return strchr(s_bytes.m_first, 'z'); });
    Measure("QXStrChrA", "QX", [] { return QXStrChrA(s_narrow.m_first, 'z'); });
    Measure("QXStrChrA", "strchr", [] { return strchr(s_narrow.m_first, 'z'); });
    Measure("QXStrRChrW", "QX", [] { return QXStrRChrW(s_wide.m_first, u'A'); });
    Measure("QXStrRChrW", "u_strrchr", [] { return u_strrchr(s_wide.m_first, u'A'); });
    Measure("QXStrRChrW", "strrchr, same bytes", [] { return strrchr(s_bytes.m_first, 'A'); });
    Measure("QXStrStrW", "QX", [] { return QXStrStrW(s_wide.m_first, s_wide.m_sought); });
    Measure("QXStrStrW", "u_strstr", [] { return u_strstr(s_wide.m_first, s_wide.m_sought); });
    Measure("QXStrStrW", "strstr, same bytes",
            [] { return strstr(s_bytes.m_first, s_bytes.m_sought); });
}

template <typename Unit, typename Map>
Unit* MapEach(Unit* text, Map map) {
    for (Unit* unit = text; *unit != 0; ++unit) {
        *unit = static_cast<Unit>(map(*unit));
    }
    return text;
}

void MeasureCaseAndNumbers() {
    Measure("QXStrToLowerA", "QX", [] { return QXStrToLowerA(s_narrowMapped.m_first); });
    Measure("QXStrToLowerA", "tolower loop", [] {
        return MapEach(s_narrowMapped.m_first, [](char unit) { return tolower(unit); });
    });
    Measure("QXStrToLowerW", "QX", [] { return QXStrToLowerW(s_wideMapped.m_first); });
    Measure("QXStrToLowerW", "towlower loop", [] {
        return MapEach(s_wideMapped.m_first, [](wchar unit) { return towlower(unit); });
    });
    Measure("QXStrToLowerW", "u_strToLower", [] {
        UErrorCode status = U_ZERO_ERROR;
        return u_strToLower(s_wideMapped.m_target, 100, s_wideMapped.m_first, kUnits, "", &status);
    });
    Measure("QXStrToLA", "QX", [] { return QXStrToLA("-1234567", nullptr, 10); });
    Measure("QXStrToLA", "strtol", [] { return strtol("-1234567", nullptr, 10); });
    Measure("QXStrToDW", "QX", [] { return QXStrToDW(u"3.14159265", nullptr); });
    Measure("QXStrToDW", "wcstod", [] { return wcstod(L"3.14159265", nullptr); });
    Measure("QXLToStrA", "QX", [] { return QXLToStrA(-1234567, s_narrow.m_target, 10); });
    Measure("QXLToStrA", "snprintf",
            [] { return snprintf(s_narrow.m_target, 32, "%d", -1234567); });
}

}  // namespace

int main(int argc, char** argv) {
    MeasureLengthAndCopy();
    MeasureCompare();
    MeasureSearch();
    MeasureCaseAndNumbers();
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
