#include "transcript/families.h"

#include "transcript/call_lists.h"

namespace {

constexpr Family kFamilies[] = {
    {"classes", ClassCalls, nullptr},
    {"converters", ConverterCalls, PrintConverters},
    {"identifiers", IdentifierCalls, PrintIdentifiers},
    {"locale", LocaleCalls, nullptr},
    {"memory", MemoryCalls, nullptr},
    {"modules", ModuleCalls, nullptr},
    {"mutexes", MutexCalls, nullptr},
    {"numbers", NumberCalls, nullptr},
    {"options", OptionCalls, nullptr},
    {"registry", RegistryCalls, nullptr},
    {"shared objects", SharedCalls, nullptr},
    {"text case", TextCaseCalls, PrintTextCase},
    {"text comparing", TextCompareCalls, nullptr},
    {"text copying", TextCopyCalls, nullptr},
    {"text searching", TextSearchCalls, nullptr},
    {"threads", ThreadCalls, nullptr},
    {"time", TimeCalls, PrintTime},
    {"transforms", TransformCalls, nullptr},
    {"waiting", WaitingCalls, nullptr},
    {"words", WordCalls, PrintWords},
};

}  // namespace

std::span<const Family> Families() {
    return kFamilies;
}
