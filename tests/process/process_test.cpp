#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "process/process_support.h"
#include "support/child_role.h"
#include "support/failure.h"
#include "support/system.h"

namespace {

using Wide = std::u16string;

Wide WideOf(const std::filesystem::path& path) {
    return path.u16string();
}

struct Start {
    Wide program = WideOf(ProgramPath());
    const wchar* directory = nullptr;
    const wchar* const* environment = nullptr;
    QXHandle* standardHandles = nullptr;
};

QXResult TryRole(const Wide& role, const Start& start, QXHandle* child) {
    const Wide arguments = u"--child-role " + role;
    return QXProcessCreate(start.program.c_str(), arguments.c_str(), start.directory,
                           start.environment, 77, start.standardHandles, child);
}

QXHandle StartRole(const Wide& role, const Start& start = {}) {
    QXHandle child = nullptr;
    EXPECT_EQ(QX_S_OK, TryRole(role, start, &child));
    EXPECT_NE(QX_INVALID_HANDLE, child);
    return child;
}

// Runs a role to its end and gives what it has written.
std::string OutputOfRole(const Wide& role, Start start = {}) {
    Pipes pipes;
    start.standardHandles = pipes.ends;
    const QXHandle child = StartRole(role, start);
    pipes.CloseInput();
    const std::string output = ReadAll(pipes.ends[1]);
    EXPECT_EQ(0u, CodeOf(child));
    return output;
}

CHILD_ROLE(Exit) {
    return std::atoi(arguments[0].c_str());
}

// Copies the input to both outputs.
CHILD_ROLE(Copy) {
    std::string all(std::istreambuf_iterator<char>(std::cin), {});
    std::cout << all << std::flush;
    std::cerr << "e" << all << std::flush;
    return 3;
}

CHILD_ROLE(Arguments) {
    for (const std::string& argument : arguments) {
        std::cout << '<' << argument << '>';
    }
    return 0;
}

CHILD_ROLE(Directory) {
    std::cout << std::filesystem::current_path().filename().string();
    return 0;
}

TEST(Process, ReadsAndWritesItsPipesAndGivesItsCodeOnce) {
    Pipes pipes;
    const QXHandle child = StartRole(u"Copy", {.standardHandles = pipes.ends});
    uint32_t code = 5;
    for (int poll = 0; poll < 3; ++poll) {
        EXPECT_EQ(QX_E_FAIL, QXProcessGetExitCode(child, &code));
    }
    Write(pipes.ends[0], "text");
    pipes.CloseInput();
    EXPECT_EQ("text", ReadAll(pipes.ends[1]));
    EXPECT_EQ("etext", ReadAll(pipes.ends[2]));
    EXPECT_EQ(5u, code);
    EXPECT_EQ(QX_S_OK, QXProcessJoin(child, &code));
    EXPECT_EQ(3u, code);
    EXPECT_EQ(QX_E_HANDLE, QXProcessJoin(child, &code));
    EXPECT_EQ(QX_E_HANDLE, QXProcessGetExitCode(child, &code));
    EXPECT_EQ(QX_E_HANDLE, QXProcessDetach(child));
    EXPECT_EQ(3u, code);
}

TEST(Process, AnyChildIsJoinedButNoneThatWasDetached) {
    Pipes pipes;
    const QXHandle detached = StartRole(u"Copy", {.standardHandles = pipes.ends});
    std::vector<QXHandle> children;
    for (const char16_t* const role : {u"Exit 7", u"Exit 8"}) {
        children.push_back(StartRole(role));
    }
    EXPECT_EQ(QX_S_OK, QXProcessDetach(detached));
    uint32_t sum = 0;
    for (int count = 0; count < 2; ++count) {
        uint32_t code = 0;
        QXHandle child = nullptr;
        EXPECT_EQ(QX_S_OK, QXProcessJoinChild(&child, count == 0 ? &code : nullptr));
        EXPECT_EQ(1u, std::erase(children, child));
        sum += code;
    }
    EXPECT_TRUE(sum == 7 || sum == 8);
    QXHandle child = nullptr;
    EXPECT_EQ(QX_E_FAIL, QXProcessJoinChild(&child, nullptr));
    pipes.CloseInput();
    EXPECT_EQ("", ReadAll(pipes.ends[1]));
}

TEST(Process, AWaitForAnyTakesSixtyFourChildren) {
    Pipes pipes;
    std::vector<QXHandle> children = {StartRole(u"Copy", {.standardHandles = pipes.ends})};
    while (children.size() < 65) {
        children.push_back(StartRole(u"Exit 0"));
    }
    QXHandle child = nullptr;
    EXPECT_EQ(QX_E_FAIL, QXProcessJoinChild(&child, nullptr));
    pipes.CloseInput();
    EXPECT_EQ(3u, CodeOf(children[0]));
    uint32_t code = 0;
    for (int count = 0; count < 64; ++count) {
        EXPECT_EQ(QX_S_OK, QXProcessJoinChild(&child, &code));
    }
    EXPECT_EQ(QX_E_FAIL, QXProcessJoinChild(&child, &code));
}

TEST(Process, WhatCannotStartIsToldAndLeavesNothingOpen) {
    const TemporaryDirectory directory;
    const Wide missing = WideOf(directory.Path() / "missing");
    const Wide here = WideOf(ProgramPath());
    const struct {
        Wide program;
        const wchar* directory;
        QXResult result;
    } cases[] = {{missing, nullptr, QX_E_NOTFOUND},
                 {missing + u"/program.exe", nullptr, QX_E_NOTFOUND},
                 {u"", nullptr, QX_E_NOTFOUND},
                 {here, missing.c_str(), QX_E_FAIL},
                 {here, here.c_str(), QX_E_FAIL}};
    const auto tryAll = [&] {
        for (const auto& each : cases) {
            QXHandle ends[3] = {QX_INVALID_HANDLE, QX_INVALID_HANDLE, QX_INVALID_HANDLE};
            QXHandle child = nullptr;
            const ErrnoStays errnoStays;
            EXPECT_EQ(each.result, TryRole(u"Exit 0",
                                           {.program = each.program,
                                            .directory = each.directory,
                                            .standardHandles = ends},
                                           &child));
            EXPECT_EQ(QX_INVALID_HANDLE, child);
        }
    };
    tryAll();
    const std::size_t before = MeasureFootprint().handles;
    tryAll();
    EXPECT_EQ(before, MeasureFootprint().handles);
}

// The rule that the reference platform's C runtime reads by.
Wide Quoted(const Wide& argument) {
    Wide line = u"\"";
    std::size_t backslashes = 0;
    for (const char16_t unit : argument) {
        if (unit == u'"') {
            line.append(backslashes + 1, u'\\');
        }
        backslashes = unit == u'\\' ? backslashes + 1 : 0;
        line += unit;
    }
    return line.append(backslashes, u'\\') + u'"';
}

TEST(Process, ArgumentsReachTheChildAsTheyWereQuoted) {
    std::mt19937 random(12);
    const Wide units = u"\\\\\\\"\" \tab";
    for (int round = 0; round < 8; ++round) {
        Wide line = u"Arguments";
        std::string expected;
        for (int count = 0; count < 12; ++count) {
            Wide argument;
            while (random() % 9 != 0) {
                argument += units[random() % units.size()];
            }
            line += u' ' + Quoted(argument);
            expected += '<' + std::string(argument.begin(), argument.end()) + '>';
        }
        EXPECT_EQ(expected, OutputOfRole(line));
    }
}

TEST(Process, WorksInADirectoryWhileARelativeProgramIsFoundFromThisOne) {
    const TemporaryDirectory directory;
    std::filesystem::create_directory(directory.Path() / "inner");
    const Wide inner = WideOf(directory.Path() / "inner");
    EXPECT_EQ("inner", OutputOfRole(u"Directory", {.directory = inner.c_str()}));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(ProgramPath().parent_path());
    EXPECT_EQ("inner", OutputOfRole(u"Directory", {.program = WideOf(ProgramPath().filename()),
                                                   .directory = inner.c_str()}));
    std::filesystem::current_path(before);
}

TEST(Process, TellsNumbersNamesAndThePseudoHandle) {
    EXPECT_EQ(reinterpret_cast<QXHandle>(intptr_t{-1}), QXProcessGetHandle());
    EXPECT_EQ(QX_E_HANDLE, QXProcessJoin(QXProcessGetHandle(), nullptr));
    EXPECT_EQ(QX_E_HANDLE, QXProcessDetach(QXProcessGetHandle()));
    uint32_t code = 5;
    EXPECT_EQ(QX_E_FAIL, QXProcessGetExitCode(QXProcessGetHandle(), &code));
    EXPECT_EQ(QX_E_HANDLE, QXProcessGetExitCode(nullptr, &code));
    const std::string name = ProgramPath().filename().string();
    char buffer[300];
    EXPECT_EQ(1, QXProcessGetName(QXProcessGetID(), buffer, sizeof buffer));
    EXPECT_EQ(name, buffer);
    EXPECT_EQ(1, QXProcessGetName(QXProcessGetID(), buffer, 4));
    EXPECT_EQ(name.substr(0, 3), buffer);
    EXPECT_EQ(1, QXProcessGetName(QXProcessGetID(), buffer, 1));
    EXPECT_STREQ("", buffer);
    buffer[0] = 'x';
    EXPECT_EQ(0, QXProcessGetName(0x7FFFFFF0, buffer, sizeof buffer));
    EXPECT_EQ(0, QXProcessGetName(0, buffer, sizeof buffer));
    EXPECT_EQ('x', buffer[0]);
}

TEST(Process, ThreadsThatStartChildrenAtOnceHoldNoPipesOfOthers) {
    const std::size_t before = MeasureFootprint().handles;
    std::vector<std::thread> starters;
    for (int index = 0; index < 8; ++index) {
        starters.emplace_back([index] {
            for (int round = 0; round < 25; ++round) {
                Pipes pipes;
                const QXHandle child = StartRole(u"Copy", {.standardHandles = pipes.ends});
                const std::string text = std::to_string(index * 100 + round);
                Write(pipes.ends[0], text);
                pipes.CloseInput();
                EXPECT_EQ(text, ReadAll(pipes.ends[1]));
                EXPECT_EQ('e' + text, ReadAll(pipes.ends[2]));
                EXPECT_EQ(3u, CodeOf(child));
            }
        });
    }
    for (std::thread& starter : starters) {
        starter.join();
    }
    EXPECT_EQ(before, MeasureFootprint().handles);
}

}  // namespace
