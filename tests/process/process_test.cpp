#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "process/process_support.h"
#include "support/child_role.h"
#include "support/failure.h"
#include "support/system.h"

namespace {

using Wide = std::u16string;

struct Start {
    Wide program = ProgramPath().u16string();
    const wchar* directory = nullptr;
    const wchar* const* environment = nullptr;
    QXHandle* standardHandles = nullptr;
};

QXResult TryRole(const Wide& role, const Start& start, QXHandle* child) {
    return QXProcessCreate(start.program.c_str(), (u"--child-role " + role).c_str(),
                           start.directory, start.environment, 77, start.standardHandles, child);
}

QXHandle StartRole(const Wide& role, const Start& start = {}) {
    QXHandle child = nullptr;
    EXPECT_EQ(QX_S_OK, TryRole(role, start, &child));
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
    EXPECT_EQ(QX_S_OK, QXProcessJoin(StartRole(u"Exit 0"), nullptr));
}

TEST(Process, AnyOfSixtyFourIsJoinedButNoneThatWasDetached) {
    Pipes pipes;
    const QXHandle first = StartRole(u"Copy", {.standardHandles = pipes.ends});
    std::vector<QXHandle> children = {first};
    while (children.size() < 65) {
        children.push_back(StartRole(children.size() < 64 ? u"Exit 0" : u"Exit 7"));
    }
    QXHandle child = nullptr;
    EXPECT_EQ(QX_E_FAIL, QXProcessJoinChild(&child, nullptr));
    EXPECT_EQ(QX_S_OK, QXProcessDetach(first));
    uint32_t sum = 0;
    for (int count = 0; count < 64; ++count) {
        uint32_t code = 99;
        EXPECT_EQ(QX_S_OK, QXProcessJoinChild(&child, &code));
        EXPECT_EQ(1u, std::erase(children, child));
        sum += code;
    }
    EXPECT_EQ(7u, sum);
    EXPECT_EQ(QX_E_FAIL, QXProcessJoinChild(&child, nullptr));
    pipes.CloseInput();
    EXPECT_EQ("", ReadAll(pipes.ends[1]));
}

TEST(Process, WhatCannotStartIsToldAndLeavesNothingOpen) {
    const TemporaryDirectory directory;
    const Wide missing = (directory.Path() / "missing").u16string();
    const Wide here = ProgramPath().u16string();
    const struct {
        Wide program;
        const wchar* directory;
        QXResult result;
    } cases[] = {{missing, nullptr, QX_E_NOTFOUND},
                 {missing + u"/program.exe", nullptr, QX_E_NOTFOUND},
                 {u"", nullptr, QX_E_NOTFOUND},
                 {here, missing.c_str(), QX_E_FAIL},
                 {here, here.c_str(), QX_E_FAIL}};
    std::size_t settled = 0;
    for (int round = 0; round < 2; ++round) {
        settled = MeasureFootprint().handles;
        for (const auto& [program, in, result] : cases) {
            QXHandle ends[3] = {QX_INVALID_HANDLE, QX_INVALID_HANDLE, QX_INVALID_HANDLE};
            QXHandle child = nullptr;
            const ErrnoStays errnoStays;
            EXPECT_EQ(result, TryRole(u"Exit 0", {program, in, nullptr, ends}, &child));
            EXPECT_EQ(QX_INVALID_HANDLE, child);
        }
    }
    EXPECT_EQ(settled, MeasureFootprint().handles);
}

TEST(Process, WorksInADirectoryWhileARelativeProgramIsFoundFromThisOne) {
    const TemporaryDirectory directory;
    std::filesystem::create_directory(directory.Path() / "inner");
    const Wide inner = (directory.Path() / "inner").u16string();
    EXPECT_EQ("inner", OutputOfRole(u"Directory", {.directory = inner.c_str()}));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(ProgramPath().parent_path());
    EXPECT_EQ("inner", OutputOfRole(u"Directory", {.program = ProgramPath().filename().u16string(),
                                                   .directory = inner.c_str()}));
    std::filesystem::current_path(before);
}

TEST(Process, TellsNamesAndThePseudoHandle) {
    const QXHandle own = QXProcessGetHandle();
    EXPECT_EQ(reinterpret_cast<QXHandle>(intptr_t{-1}), own);
    uint32_t code = 5;
    EXPECT_EQ(QX_E_HANDLE, QXProcessJoin(own, nullptr));
    EXPECT_EQ(QX_E_HANDLE, QXProcessDetach(own));
    EXPECT_EQ(QX_E_FAIL, QXProcessGetExitCode(own, &code));
    EXPECT_EQ(QX_E_HANDLE, QXProcessGetExitCode(nullptr, &code));
    const std::string name = ProgramPath().filename().string();
    char buffer[300];
    for (const uint32_t size : {300u, 4u, 1u}) {
        EXPECT_EQ(1, QXProcessGetName(QXProcessGetID(), buffer, size));
        EXPECT_EQ(name.substr(0, size - 1), buffer);
    }
    buffer[0] = 'x';
    EXPECT_EQ(0, QXProcessGetName(0x7FFFFFF0, buffer, sizeof buffer));
    EXPECT_EQ(0, QXProcessGetName(0, buffer, sizeof buffer));
    EXPECT_EQ('x', buffer[0]);
}

TEST(Process, ThreadsThatStartChildrenAtOnceHoldNoPipesOfOthers) {
    const std::size_t before = MeasureFootprint().handles;
    std::vector<std::jthread> starters;
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
    starters.clear();
    EXPECT_EQ(before, MeasureFootprint().handles);
}

}  // namespace
