// The question with three answers, and the ways to put it to somebody.
#ifndef QX_PLATFORM_POSIX_ALERTS_QUESTION_H
#define QX_PLATFORM_POSIX_ALERTS_QUESTION_H

#include <optional>
#include <string>

#include "platform/alerts.h"

namespace platform {

// In UTF-8.
struct Question {
    std::string m_title;
    std::string m_text;
};

// As the buttons are labelled.
struct AnswerName {
    const char* m_name;
    Answer m_answer;
};

inline constexpr AnswerName kAnswerNames[] = {
    {"Abort", kAnswerAbort}, {"Retry", kAnswerRetry}, {"Ignore", kAnswerIgnore}};

// Each waits as long as it takes, and gives nothing if there is nobody to be asked in its way. May
// throw std::bad_alloc.

// By a program that shows a dialog, on the graphical session that the environment names. A dialog
// that is closed without an answer counts as kAnswerNone.
std::optional<Answer> AskByDialog(const Question& question);

// On the controlling terminal, while the process is in its foreground.
std::optional<Answer> AskAtTerminal(const Question& question);

}  // namespace platform

#endif
