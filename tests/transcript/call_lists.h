// What each family's file offers to families.cpp.
#ifndef TESTS_TRANSCRIPT_CALL_LISTS_H
#define TESTS_TRANSCRIPT_CALL_LISTS_H

#include "transcript/families.h"

std::vector<Call> ClassCalls();
std::vector<Call> ConverterCalls();
std::vector<Call> FileCalls();
std::vector<Call> HostCalls();
std::vector<Call> LineFileCalls();
std::vector<Call> MemoryCalls();
std::vector<Call> NumberCalls();
std::vector<Call> OptionCalls();
std::vector<Call> RegistryCalls();
std::vector<Call> SharedMemoryCalls();
std::vector<Call> TextCalls();
std::vector<Call> TransformCalls();
std::vector<Call> WaitingCalls();
std::vector<Call> WordCalls();

void PrintConverters();
void PrintSystem();
void PrintTextCase();
void PrintWords();

#endif
