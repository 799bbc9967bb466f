// What each family's file offers to families.cpp.
#ifndef TESTS_TRANSCRIPT_CALL_LISTS_H
#define TESTS_TRANSCRIPT_CALL_LISTS_H

#include "transcript/families.h"

std::vector<Call> ClassCalls();
std::vector<Call> ConverterCalls();
std::vector<Call> IdentifierCalls();
std::vector<Call> LocaleCalls();
std::vector<Call> MemoryCalls();
std::vector<Call> ModuleCalls();
std::vector<Call> MutexCalls();
std::vector<Call> NumberCalls();
std::vector<Call> OptionCalls();
std::vector<Call> RegistryCalls();
std::vector<Call> SharedCalls();
std::vector<Call> TextCaseCalls();
std::vector<Call> TextCompareCalls();
std::vector<Call> TextCopyCalls();
std::vector<Call> TextSearchCalls();
std::vector<Call> ThreadCalls();
std::vector<Call> TimeCalls();
std::vector<Call> TransformCalls();
std::vector<Call> WaitingCalls();
std::vector<Call> WordCalls();

void PrintConverters();
void PrintIdentifiers();
void PrintTextCase();
void PrintTime();
void PrintWords();

#endif
