// Runs sequences of calls of the exported interface and prints each call with its arguments and
// everything that it gives. The text is the same on every platform.
//   print_transcript [--component LIBRARY] [--fixed] [--length N] [--seeds FIRST-LAST]
//     [--only STEP,STEP...]
#include <set>
#include <sstream>
#include <stdexcept>

#include "support/exact_text.h"
#include "transcript/families.h"

std::u16string componentLibrary;

namespace {

constexpr Calls (*kFamilies[])() = {ClassCalls,    ConverterCalls,    FileCalls,   HostCalls,
                                    LineFileCalls, MemoryCalls,       NumberCalls, OptionCalls,
                                    RegistryCalls, SharedMemoryCalls, TextCalls,   TransformCalls,
                                    WaitingCalls,  WordCalls};

struct Options {
    bool fixed = false;
    uint32_t first = 1;
    uint32_t last = 0;
    uint32_t length = 60;
    std::set<uint32_t> only;  // all if none is named
};

// One of them, by their weights.
template <typename Items, typename Weight>
const auto& AnyOf(const Items& items, Weight weight, Random& random) {
    size_t total = 0;
    for (const auto& item : items) {
        total += weight(item);
    }
    size_t drawn = random.Below(total);
    auto item = items.begin();
    for (; drawn >= weight(*item); ++item) {
        drawn -= weight(*item);
    }
    return *item;
}

void PrintSequence(uint32_t seed, const Options& options) {
    { const Line head("seed " + std::to_string(seed)); }
    std::vector<Calls> families;
    for (const auto calls : kFamilies) {
        families.push_back(calls());
    }
    for (uint32_t step = 0; step < options.length; ++step) {
        if (options.only.empty() || options.only.contains(step)) {
            // Most calls of a sequence are of one family, so that they meet each other's objects.
            Random theme(seed);
            Random random(seed, step + 1);
            const Calls& family = AnyOf(
                families, [](const Calls& calls) { return calls.size(); },
                random.OneIn(4) ? random : theme);
            const Call& call = AnyOf(
                family, [](const Call& each) { return each.weight; }, random);
            Line line(std::to_string(step) + ' ' + call.name);
            call.make(random, line);
        }
    }
}

void Read(Options* options, std::string_view name, const std::string& value) {
    std::istringstream numbers(value);
    char separator = 0;
    if (name == "--seeds") {
        numbers >> options->first >> separator >> options->last;
    } else if (name == "--length") {
        numbers >> options->length;
    } else if (name == "--only") {
        for (uint32_t step = 0; numbers >> step; numbers >> separator) {
            options->only.insert(step);
        }
        numbers.clear();
    } else if (name == "--component") {
        componentLibrary = Widen(value);
    } else {
        numbers.setstate(std::ios::failbit);
    }
    if (numbers.fail()) {
        throw std::invalid_argument(std::string(name));
    }
}

}  // namespace

int main(int count, char** arguments) try {
    Options options;
    for (int index = 1; index < count; ++index) {
        const std::string_view name = arguments[index];
        if (name == "--fixed") {
            options.fixed = true;
        } else {
            Read(&options, name, ++index < count ? arguments[index] : "");
        }
    }
    for (uint32_t seed = options.first; seed <= options.last; ++seed) {
        PrintSequence(seed, options);
    }
    // Last, since it makes the default encoding known to the process.
    if (options.fixed) {
        PrintConverters();
        PrintSystem();
        PrintTextCase();
        PrintWords();
    }
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "print_transcript: %s\n", failure.what());
    return 2;
}
