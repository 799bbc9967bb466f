// A program that is started with pipes to its standard input and output, for messages of a line.
#ifndef QX_BENCH_CHILD_PROGRAM_H
#define QX_BENCH_CHILD_PROGRAM_H

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

class Child {
  public:
    // `arguments` without the program's own name.
    Child(const char* program, const std::vector<std::string>& arguments) {
        int input[2];
        int output[2];
        if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) {
            Die("no pipe");
        }
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
        std::vector<char*> words = {const_cast<char*>(program)};
        for (const std::string& argument : arguments) {
            words.push_back(const_cast<char*>(argument.c_str()));
        }
        words.push_back(nullptr);
        if (::posix_spawn(&m_id, program, &actions, nullptr, words.data(), environ) != 0) {
            Die("no child");
        }
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(input[0]);
        ::close(output[1]);
        m_input = ::fdopen(input[1], "w");
        m_output = ::fdopen(output[0], "r");
    }
    ~Child() { Wait(); }
    Child(Child&& other) noexcept
        : m_id(std::exchange(other.m_id, -1)), m_input(other.m_input), m_output(other.m_output) {}
    Child& operator=(Child&&) = delete;

    void Write(const std::string& line) {
        std::fprintf(m_input, "%s\n", line.c_str());
        std::fflush(m_input);
    }
    // The end of its output, or of itself, ends this program too.
    std::string Read() {
        char line[256];
        if (std::fgets(line, sizeof line, m_output) == nullptr) {
            Die("a child failed");
        }
        return line;
    }
    // Closes its input and waits for its end.
    void Wait() {
        if (m_id == -1) {
            return;
        }
        std::fclose(m_input);
        int status = 1;
        ::waitpid(std::exchange(m_id, -1), &status, 0);
        std::fclose(m_output);
        if (status != 0) {
            Die("a child failed");
        }
    }

  private:
    [[noreturn]] static void Die(const char* message) {
        std::fprintf(stderr, "%s\n", message);
        std::exit(1);
    }

    pid_t m_id = -1;
    FILE* m_input = nullptr;
    FILE* m_output = nullptr;
};

#endif
