#include "command_line.h"

#include <algorithm>

namespace platform {
namespace {

constexpr std::u16string_view kBlanks = u" \t";

class Splitter {
  public:
    explicit Splitter(std::u16string_view line) : m_rest(line) {}

    // False at the end of the line.
    bool SkipBlanks() noexcept {
        m_rest.remove_prefix(std::min(m_rest.find_first_not_of(kBlanks), m_rest.size()));
        return !m_rest.empty();
    }

    std::u16string TakeArgument() {
        m_argument.clear();
        m_isQuoted = false;
        while (!IsAtEndOfArgument()) {
            TakePart();
        }
        return m_argument;
    }

  private:
    bool IsAtEndOfArgument() const noexcept {
        return m_rest.empty() || (!m_isQuoted && kBlanks.find(m_rest.front()) != kBlanks.npos);
    }

    // Some backslashes and the unit behind them, or one of both.
    void TakePart() {
        const std::size_t count = std::min(m_rest.find_first_not_of(u'\\'), m_rest.size());
        m_rest.remove_prefix(count);
        if (!m_rest.starts_with(u'"')) {
            m_argument.append(count, u'\\');
            TakeUnits(IsAtEndOfArgument() ? 0 : 1);
            return;
        }
        m_argument.append(count / 2, u'\\');
        if (count % 2 != 0) {
            TakeUnits(1);
        } else {
            TakeQuote();
        }
    }

    void TakeQuote() {
        m_rest.remove_prefix(1);
        if (m_isQuoted && m_rest.starts_with(u'"')) {
            TakeUnits(1);
        } else {
            m_isQuoted = !m_isQuoted;
        }
    }

    void TakeUnits(std::size_t count) {
        m_argument += m_rest.substr(0, count);
        m_rest.remove_prefix(count);
    }

    std::u16string_view m_rest;
    std::u16string m_argument;
    bool m_isQuoted = false;
};

}  // namespace

std::vector<std::u16string> SplitCommandLine(std::u16string_view line) {
    std::vector<std::u16string> arguments;
    Splitter splitter(line);
    while (splitter.SkipBlanks()) {
        arguments.push_back(splitter.TakeArgument());
    }
    return arguments;
}

}  // namespace platform
