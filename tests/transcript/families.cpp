#include "transcript/families.h"

#include "transcript/call_lists.h"

namespace {

constexpr Family kFamilies[] = {
    {"classes", ClassCalls, nullptr},       {"converters", ConverterCalls, PrintConverters},
    {"files", FileCalls, nullptr},          {"host", HostCalls, PrintSystem},
    {"line files", LineFileCalls, nullptr}, {"memory", MemoryCalls, nullptr},
    {"numbers", NumberCalls, nullptr},      {"options", OptionCalls, nullptr},
    {"registry", RegistryCalls, nullptr},   {"shared memory", SharedMemoryCalls, nullptr},
    {"text", TextCalls, PrintTextCase},     {"transforms", TransformCalls, nullptr},
    {"waiting", WaitingCalls, nullptr},     {"words", WordCalls, PrintWords},
};

}  // namespace

std::span<const Family> Families() {
    return kFamilies;
}
