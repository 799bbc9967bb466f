#include <gtest/gtest.h>
#include <qxcore/option.h>

#include <sstream>
#include <string>
#include <vector>

#include "options/option_scan.h"
#include "support/system.h"

namespace {

// A vector of arguments as a program gets it, each element in a block of its own size.
class Arguments {
  public:
    explicit Arguments(const std::vector<std::string>& elements) : m_elements(elements) {
        for (std::string& element : m_elements) {
            element.shrink_to_fit();
            m_vector.push_back(element.data());
        }
        m_vector.push_back(nullptr);
    }

    int32_t Count() const { return static_cast<int32_t>(m_elements.size()); }
    char** Vector() { return m_vector.data(); }

    std::string Text() const {
        std::string text;
        for (size_t i = 0; i + 1 < m_vector.size(); ++i) {
            text += (i == 0 ? "" : " ") + std::string(m_vector[i]);
        }
        return text;
    }

  private:
    std::vector<std::string> m_elements;
    std::vector<char*> m_vector;
};

std::vector<std::string> Words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

void StartOver() {
    QXGetOptionIndex = 1;
    QXGetOptionReset = 1;
    QXGetOptionOption = '?';
}

void AppendArgument(std::string& trace) {
    if (QXGetOptionArgument != nullptr) {
        trace += "(" + std::string(QXGetOptionArgument) + ")";
    }
}

// What each call gave until the end: its result, the argument in brackets, behind "?" what was
// wrong.
template <typename Call>
std::string Trace(Call call) {
    StartOver();
    std::string trace;
    for (int32_t result; (result = call()) != -1;) {
        trace += std::to_string(result);
        if (result == '?' || result == ':') {
            trace += "!" + std::to_string(QXGetOptionOption);
        }
        AppendArgument(trace);
        trace += ' ';
    }
    return trace + "@" + std::to_string(QXGetOptionIndex);
}

const QXOptionRecord kRecords[] = {{"verbose", 0, 1}, {"version", 0, 2},   {"file", 1, 3},
                                   {"name", 2, 4},    {"verbosity", 0, 1}, {"flag", 0, 5},
                                   {nullptr, 0, 0}};

struct ExportCase {
    std::string vector;
    std::string trace;
    std::string permuted = "";
    std::string complaint = "";
};

class OptionTest : public testing::Test {
  protected:
    ~OptionTest() override { SetPosixlyCorrect(false); }

    static void SetPosixlyCorrect(bool on) {
        on ? SetEnvironment("POSIXLY_CORRECT", "1") : UnsetEnvironment("POSIXLY_CORRECT");
    }
};

void ExpectTrace(const ExportCase& each, const QXOptionRecord* records) {
    SCOPED_TRACE(each.vector);
    Arguments arguments(Words(each.vector));
    testing::internal::CaptureStderr();
    EXPECT_EQ(
        Trace([&] { return QXGetOption(arguments.Count(), arguments.Vector(), records, nullptr); }),
        each.trace);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), each.complaint);
    EXPECT_EQ(arguments.Text(), each.permuted.empty() ? each.vector : each.permuted);
}

TEST_F(OptionTest, LongOptionsAreFoundAndOthersMovedBehindThem) {
    for (const ExportCase& each : {
             ExportCase{"prog", "@1"},
             {"prog a --flag b -- c", "5 @3", "prog --flag -- a b c"},
             {"prog - a -flag --file x b --file=y -- --flag", "5 3(x) 3(y) @6",
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
             {"prog --verbos", "63!0 @2", "", "Usage: option '--verbos' is ambiguous\n"},
             {"prog -v=1 -fl -f", "63!0 5 63!0 @4", "",
              "Usage: option '-v' is ambiguous\nUsage: option '-f' is ambiguous\n"},
             {"prog --verbose=1", "63!1 @2", "",
              "Usage: option '--verbose' doesn't allow an argument\n"},
             {"prog -nope --nope=1", "63!0 63!0 @3", "",
              "Usage: unrecognized option '-nope'\nUsage: unrecognized option '--nope=1'\n"},
             {"prog --FLAG x --file", "63!0 63!3 @3", "prog --FLAG --file x",
              "Usage: unrecognized option '--FLAG'\n"
              "Usage: option '--file' requires an argument\n"},
             {"prog --=x", "63!0 @2", "", "Usage: option '--' is ambiguous\n"},
         }) {
        ExpectTrace(each, kRecords);
    }
    const QXOptionRecord single[] = {{"only", 1, -1}, {nullptr, 0, 0}};
    ExpectTrace({"prog --=x y", "@2"}, single);
}

TEST_F(OptionTest, WithoutATableEachLetterIsUnknown) {
    ExpectTrace({"prog -ab x", "63!97 63!98 @2", "",
                 "Usage: invalid option -- a\nUsage: invalid option -- b\n"},
                nullptr);
    ExpectTrace({"prog -a-", "63!97 @1", "", "Usage: invalid option -- a\n"}, nullptr);
    ExpectTrace({"prog -\xE9:", "63!233 63!58 @2", "",
                 "Usage: invalid option -- \xE9\nUsage: invalid option -- :\n"},
                nullptr);
    SetPosixlyCorrect(true);
    ExpectTrace({"prog -a x", "63!97 @2", "", "Usage: illegal option -- a\n"}, nullptr);
}

TEST_F(OptionTest, PosixlyCorrectStopsAtTheFirstOtherElement) {
    SetPosixlyCorrect(true);
    ExpectTrace({"prog a --flag b -- c", "@1"}, kRecords);
    ExpectTrace({"prog --flag - --flag", "5 @2"}, kRecords);
    SetPosixlyCorrect(false);
    ExpectTrace({"prog a --flag", "5 @2", "prog --flag a"}, kRecords);
}

TEST_F(OptionTest, ClientsOwnFormatsAndSilence) {
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

TEST_F(OptionTest, AScanStartsOverByIndexZeroOrByReset) {
    Arguments arguments(Words("prog x --flag --file a"));
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

TEST_F(OptionTest, ShortOptionsOfTheScanner) {
    const struct {
        const char* shortOptions;
        std::string vector;
        std::string trace;
        std::string complaint = "";
        u32 flags = QX_OPTION_PERMUTE;
    } cases[] = {
        {"ab:c::", "prog -abx -b y -cz -c w", "97 98(x) 98(y) 99(z) 99 @6"},
        {"b:", "prog -b", "63!98 @2", "Usage: option requires an argument -- b\n"},
        {":b:", "prog -b -x", "98(-x) @3"},
        {":b:", "prog -x -b", "63!120 58!98 @3"},
        {"+a", "prog x -a", "@1"},
        {"-a", "prog x -a y", "1(x) 97 1(y) @4"},
        {"a-", "prog -a- -a", "97 63!0 97 @3", "Usage: option '--' is ambiguous\n"},
        {"W;", "prog -W flag -Wfile=1 -W", "5 3(1) 63!87 @5",
         "Usage: option requires an argument -- W\n"},
        {"W;", "prog -Wx -W flag=1", "63!0 63!5 @4",
         "Usage: unrecognized option '-W x'\nUsage: option '-W flag' doesn't allow an argument\n"},
        {":W;", "prog -W file", "58!3 @3"},
        {"", "prog --verb", "1 @2", "", QX_OPTION_PERMUTE},
        {"", "prog --fi", "63!0 @2", "Usage: option '--fi' is ambiguous\n", QX_OPTION_PERMUTE},
        {"f", "prog -f -flag -vers -x", "102 5 2 63!0 @5", "Usage: unrecognized option '-x'\n",
         QX_OPTION_PERMUTE | QX_OPTION_LONGONLY},
        {"x", "prog -xy", "120 63!0 @2", "Usage: unrecognized option '-y'\n", QX_OPTION_LONGONLY},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.vector);
        const QXOptionRecord alike[] = {{"verbose", 0, 1},
                                        {"verbosity", 0, 1},
                                        {"file", 0, 5},
                                        {"files", 1, 5},
                                        {nullptr, 0, 0}};
        const bool isAlike = *each.shortOptions == '\0';
        Arguments arguments(Words(each.vector));
        testing::internal::CaptureStderr();
        EXPECT_EQ(Trace([&] {
                      return QXGetOptionInternal(arguments.Count(), arguments.Vector(),
                                                 each.shortOptions, isAlike ? alike : kRecords,
                                                 nullptr, each.flags);
                  }),
                  each.trace);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), each.complaint);
    }
    EXPECT_EQ(QXGetOptionInternal(0, nullptr, nullptr, nullptr, nullptr, 0), -1);
}

}  // namespace
