#include <gtest/gtest.h>
#include <qxcore/option.h>

#include <sstream>
#include <string>
#include <vector>

#include "options/option_scan.h"
#include "support/system.h"

namespace {

// The words of a text as a program gets its arguments, each in a block of its own size.
class Arguments {
  public:
    explicit Arguments(const std::string& text) {
        std::istringstream stream(text);
        m_elements.assign(std::istream_iterator<std::string>(stream), {});
        for (std::string& element : m_elements) {
            element.shrink_to_fit();
            m_vector.push_back(element.data());
        }
        m_vector.push_back(nullptr);
    }

    int32_t Count() const { return static_cast<int32_t>(m_elements.size()); }
    char** Vector() { return m_vector.data(); }
    std::string Text() const {
        std::string text = m_vector[0];
        for (size_t index = 1; index < m_elements.size(); ++index) {
            text += std::string(" ") + m_vector[index];
        }
        return text;
    }

  private:
    std::vector<std::string> m_elements;
    std::vector<char*> m_vector;
};

const QXOptionRecord kRecords[] = {{"verbose", 0, 1}, {"version", 0, 2},   {"file", 1, 3},
                                   {"name", 2, 4},    {"verbosity", 0, 1}, {"flag", 0, 5},
                                   {nullptr, 0, 0}};

struct Case {
    std::string vector;
    // What each call gives until the end: its result, behind "!" what was wrong, the argument in
    // brackets; then the index.
    std::string trace;
    std::string permuted = "";
    std::string complaint = "";
};

template <typename Scan>
void ExpectScan(const Case& each, Scan scan) {
    SCOPED_TRACE(each.vector);
    Arguments arguments(each.vector);
    QXGetOptionIndex = 1;
    QXGetOptionReset = 1;
    QXGetOptionOption = '?';
    testing::internal::CaptureStderr();
    std::string trace;
    for (int32_t result; (result = scan(arguments.Count(), arguments.Vector())) != -1;) {
        trace += std::to_string(result);
        if (result == '?' || result == ':') {
            trace += "!" + std::to_string(QXGetOptionOption);
        }
        if (QXGetOptionArgument != nullptr) {
            trace += "(" + std::string(QXGetOptionArgument) + ")";
        }
        trace += ' ';
    }
    EXPECT_EQ(trace + "@" + std::to_string(QXGetOptionIndex), each.trace);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), each.complaint);
    EXPECT_EQ(arguments.Text(), each.permuted.empty() ? each.vector : each.permuted);
}

void ExpectTrace(const Case& each, const QXOptionRecord* records) {
    ExpectScan(each, [=](int32_t count, char** vector) {
        return QXGetOption(count, vector, records, nullptr);
    });
}

TEST(Option, LongOptionsAreFoundAndOthersMovedBehindThem) {
    for (const Case& each : {
             Case{"prog - a -flag --file x b --file=y -- --flag", "5 3(x) 3(y) @6",
                  "prog -flag --file x --file=y -- - a b --flag"},
             {"prog a b c", "@1"},
             {"prog a b --flag c --file x d -flag e f g", "5 3(x) 5 @5",
              "prog --flag --file x -flag a b c d e f g"},
             {"prog a --file x y --file=z b c --flag -- d", "3(x) 3(z) 5 @6",
              "prog --file x --file=z --flag -- a y b c d"},
             {"prog a b c -- d --flag", "@2", "prog -- a b c d --flag"},
             {"prog a --name= b --file", "4 63!3 @3", "prog --name= --file a b",
              "Usage: option '--file' requires an argument\n"},
             {"prog --file= --file x", "3() 3(x) @4"},
             {"prog --name=1 --nam z", "4 4 @3"},
             {"prog --verb --version --vers", "63!0 2 2 @4", "",
              "Usage: option '--verb' is ambiguous\n"},
             {"prog -v=1 -fl -f", "63!0 5 63!0 @4", "",
              "Usage: option '-v' is ambiguous\nUsage: option '-f' is ambiguous\n"},
             {"prog --verbose=1", "63!1 @2", "",
              "Usage: option '--verbose' doesn't allow an argument\n"},
             {"prog -nope --FLAG=1", "63!0 63!0 @3", "",
              "Usage: unrecognized option '-nope'\nUsage: unrecognized option '--FLAG=1'\n"},
             {"prog --=x", "63!0 @2", "", "Usage: option '--' is ambiguous\n"},
         }) {
        ExpectTrace(each, kRecords);
    }
    const QXOptionRecord single[] = {{"only", 1, -1}, {nullptr, 0, 0}};
    ExpectTrace({"prog --=x y", "@2"}, single);
}

TEST(Option, WithoutATableEachLetterIsUnknown) {
    ExpectTrace({"prog -ab x", "63!97 63!98 @2", "",
                 "Usage: invalid option -- a\nUsage: invalid option -- b\n"},
                nullptr);
    ExpectTrace({"prog -a-", "63!97 @1", "", "Usage: invalid option -- a\n"}, nullptr);
    ExpectTrace({"prog -\xE9:", "63!233 63!58 @2", "",
                 "Usage: invalid option -- \xE9\nUsage: invalid option -- :\n"},
                nullptr);
}

TEST(Option, PosixlyCorrectStopsAtTheFirstOtherElementAndComplainsInItsWords) {
    SetEnvironment("POSIXLY_CORRECT", "1");
    ExpectTrace({"prog a --flag b -- c", "@1"}, kRecords);
    ExpectTrace({"prog --flag - --flag", "5 @2"}, kRecords);
    ExpectTrace({"prog -a x", "63!97 @2", "", "Usage: illegal option -- a\n"}, nullptr);
    UnsetEnvironment("POSIXLY_CORRECT");
    ExpectTrace({"prog a --flag", "5 @2", "prog --flag a"}, kRecords);
}

TEST(Option, ClientsOwnFormatsAndSilence) {
    char own[] = "no %s%s here";
    char* const former = std::exchange(QXGetOptionMsgUnrecognized, own);
    ExpectTrace({"prog --x", "63!0 @2", "", "no --x here\n"}, kRecords);
    QXGetOptionMsgUnrecognized = nullptr;
    ExpectTrace({"prog --x", "63!0 @2", "", "\n"}, kRecords);
    QXGetOptionMsgUnrecognized = former;
    QXGetOptionError = 0;
    ExpectTrace({"prog --x --verb -file", "63!0 63!0 63!3 @4"}, kRecords);
    QXGetOptionError = 1;
}

TEST(Option, AScanStartsOverByIndexZeroOrByReset) {
    Arguments arguments("prog x --flag --file a");
    int32_t index = -1;
    for (const auto& again : {std::pair{0, 0}, {1, 1}}) {
        std::tie(QXGetOptionIndex, QXGetOptionReset) = again;
        EXPECT_EQ(QXGetOption(arguments.Count(), arguments.Vector(), kRecords, &index), 5);
        EXPECT_EQ(index, 5);
        EXPECT_EQ(QXGetOptionReset, 0);
    }
    EXPECT_EQ(QXGetOption(arguments.Count(), arguments.Vector(), kRecords, &index), 3);
    EXPECT_STREQ(QXGetOptionArgument, "a");
    EXPECT_EQ(index, 2);
    EXPECT_EQ(QXGetOption(arguments.Count(), arguments.Vector(), kRecords, nullptr), -1);
    EXPECT_EQ(QXGetOptionArgument, nullptr);
    EXPECT_EQ(arguments.Text(), "prog --flag --file a x");
}

TEST(Option, ShortOptionsOfTheScanner) {
    struct Row {
        const char* shortOptions;
        std::string vector, trace;
        std::string complaint = "";
        u32 flags = QX_OPTION_PERMUTE;
    };
    const QXOptionRecord alike[] = {
        {"verbose", 0, 1}, {"verbosity", 0, 1}, {"file", 0, 5}, {"files", 1, 5}, {nullptr, 0, 0}};
    for (const Row& row : {
             Row{"ab:c::", "prog -abx -b y -cz -c w", "97 98(x) 98(y) 99(z) 99 @6"},
             {"b:", "prog -b", "63!98 @2", "Usage: option requires an argument -- b\n"},
             {":b:", "prog -b -x", "98(-x) @3"},
             {":b:", "prog -x -b", "63!120 58!98 @3"},
             {"+a", "prog x -a", "@1"},
             {"-a", "prog x -a y", "1(x) 97 1(y) @4"},
             {"a-", "prog -a- -a", "97 63!0 97 @3", "Usage: option '--' is ambiguous\n"},
             {"W;", "prog -W flag -Wfile=1 -W", "5 3(1) 63!87 @5",
              "Usage: option requires an argument -- W\n"},
             {"W;", "prog -Wx -W flag=1", "63!0 63!5 @4",
              "Usage: unrecognized option '-W x'\n"
              "Usage: option '-W flag' doesn't allow an argument\n"},
             {":W;", "prog -W file", "58!3 @3"},
             {"", "prog --verb", "1 @2"},
             {"", "prog --fi", "63!0 @2", "Usage: option '--fi' is ambiguous\n"},
             {"f", "prog -f -flag -vers -x", "102 5 2 63!0 @5", "Usage: unrecognized option '-x'\n",
              QX_OPTION_PERMUTE | QX_OPTION_LONGONLY},
             {"x", "prog -xy", "120 63!0 @2", "Usage: unrecognized option '-y'\n",
              QX_OPTION_LONGONLY},
         }) {
        const QXOptionRecord* const records = *row.shortOptions == '\0' ? alike : kRecords;
        ExpectScan({row.vector, row.trace, "", row.complaint}, [&](int32_t count, char** vector) {
            return QXGetOptionInternal(count, vector, row.shortOptions, records, nullptr,
                                       row.flags);
        });
    }
    EXPECT_EQ(QXGetOptionInternal(0, nullptr, nullptr, nullptr, nullptr, 0), -1);
}

}  // namespace
