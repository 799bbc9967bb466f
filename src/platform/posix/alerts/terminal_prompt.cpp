#include <fcntl.h>
#include <strings.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "descriptors.h"
#include "question.h"

namespace platform {
namespace {

// The process's terminal in a mode in which lines can be typed. What was typed before the question
// is no answer to it and is thrown away.
class Terminal {
  public:
    Terminal() noexcept
        : m_descriptor(AboveStandardStreams(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC))) {
        // A process in the background would be stopped by its question.
        m_isUsable = m_descriptor >= 0 && ::tcgetpgrp(m_descriptor) == ::getpgrp() &&
                     ::tcgetattr(m_descriptor, &m_before) == 0 && EnterLineMode();
    }
    ~Terminal() {
        if (m_isUsable) {
            ::tcsetattr(m_descriptor, TCSADRAIN, &m_before);
        }
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    bool IsUsable() const noexcept { return m_isUsable; }

    void Write(std::string_view text) const noexcept {
        while (!text.empty()) {
            const ssize_t written = ::write(m_descriptor, text.data(), text.size());
            if (written > 0) {
                text.remove_prefix(static_cast<std::size_t>(written));
            } else if (errno != EINTR) {
                return;
            }
        }
    }

    // One line, or as much of it as there is room for. Nothing at the end of the input.
    template <std::size_t Size>
    std::optional<std::string_view> ReadLine(char (&buffer)[Size]) const noexcept {
        ssize_t size;
        do {
            size = ::read(m_descriptor, buffer, Size);
        } while (size < 0 && errno == EINTR);
        if (size <= 0) {
            return std::nullopt;
        }
        return std::string_view(buffer, static_cast<std::size_t>(size));
    }

  private:
    bool EnterLineMode() const noexcept {
        termios lines = m_before;
        lines.c_iflag |= ICRNL;
        lines.c_oflag |= OPOST | ONLCR;
        lines.c_lflag |= ICANON | ECHO | ISIG;
        return ::tcsetattr(m_descriptor, TCSAFLUSH, &lines) == 0;
    }

    int m_descriptor;
    bool m_isUsable;
    termios m_before;
};

// Nothing in a text can move the cursor or change the terminal: control characters, those beyond
// ASCII among them, become question marks.
std::string Harmless(std::string text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const bool isHighControl = byte == 0xC2 && static_cast<unsigned char>(text[at + 1]) < 0xA0;
        if (isHighControl) {
            text.replace(at, 2, "?");
        } else if ((byte < ' ' && byte != '\n' && byte != '\t') || byte == 0x7F) {
            text[at] = '?';
        }
    }
    return text;
}

// The first letter or more of an answer's name.
std::optional<Answer> AnswerIn(std::string_view line) noexcept {
    const std::size_t length = std::min(line.find('\n'), line.size());
    for (const auto& [name, answer] : kAnswerNames) {
        if (length > 0 && length <= std::string_view(name).size() &&
            ::strncasecmp(name, line.data(), length) == 0) {
            return answer;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<Answer> AskAtTerminal(const Question& question) {
    const std::string text = Harmless("\n" + question.m_title + "\n" + question.m_text + "\n");
    const Terminal terminal;
    if (!terminal.IsUsable()) {
        return std::nullopt;
    }
    terminal.Write(text);
    for (;;) {
        char buffer[256];
        terminal.Write("Abort, retry or ignore? [a/r/i] ");
        const std::optional<std::string_view> line = terminal.ReadLine(buffer);
        if (!line) {
            return std::nullopt;
        }
        if (const std::optional<Answer> answer = AnswerIn(*line)) {
            return answer;
        }
    }
}

}  // namespace platform
