// What the program can do. Each command writes to standard output, and throws Failure or WrongUse.
#ifndef QXREG_COMMANDS_H
#define QXREG_COMMANDS_H

#include <span>
#include <string>

struct Options {
    bool m_wantsHelp = false;
    bool m_isPlain = false;
    bool m_isRecursive = false;
    bool m_isMachine = false;
    bool m_isUtf8 = false;
    bool m_keepsGoing = false;
    int m_view = 0;
};

using Words = std::span<char* const>;

struct Command {
    const char* m_name;
    std::size_t m_leastWords;
    std::size_t m_mostWords;
    void (*m_run)(Words words, const Options& options);
};

// Null for an unknown name.
const Command* FindCommand(const char* name);

#endif
