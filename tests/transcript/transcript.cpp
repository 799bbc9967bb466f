// Runs sequences of calls of the exported interface and prints each call with its arguments and
// everything that it gives. The text is the same on every platform.
//   print_transcript [--component LIBRARY] [--length N] --seeds FIRST-LAST
//   print_transcript [--component LIBRARY] [--length N] --seed N [--only STEP,STEP...]
//   print_transcript --fixed
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>

#include "transcript/families.h"
#include "transcript/values.h"

std::u16string componentLibrary;

namespace {

struct Options {
    bool fixed = false;
    uint32_t first = 1;
    uint32_t last = 0;
    uint32_t length = 60;
    std::optional<std::set<uint32_t>> only;
};

// The calls of all families for one sequence.
class Sequence {
  public:
    Sequence() {
        for (const Family& family : Families()) {
            m_families.push_back(family.calls());
        }
    }

    // Most calls of a sequence are of one family, so that they meet each other's objects.
    void Make(uint32_t seed, uint32_t step) {
        Random theme(seed);
        Random random(seed, step + 1);
        const Call& call = AnyOf(AnyFamily(random.OneIn(4) ? random : theme), random);
        Line line(std::to_string(step) + ' ' + call.name);
        call.make(random, line);
    }

  private:
    // One with many calls more often than one with few.
    const std::vector<Call>& AnyFamily(Random& random) const {
        size_t total = 0;
        for (const std::vector<Call>& family : m_families) {
            total += family.size();
        }
        size_t drawn = random.Below(total);
        auto family = m_families.begin();
        for (; drawn >= family->size(); ++family) {
            drawn -= family->size();
        }
        return *family;
    }

    static const Call& AnyOf(const std::vector<Call>& calls, Random& random) {
        uint32_t total = 0;
        for (const Call& call : calls) {
            total += call.weight;
        }
        uint32_t drawn = random.Below(total);
        auto call = calls.begin();
        for (; drawn >= call->weight; ++call) {
            drawn -= call->weight;
        }
        return *call;
    }

    std::vector<std::vector<Call>> m_families;
};

void PrintSequence(uint32_t seed, const Options& options) {
    Line("seed " + std::to_string(seed));
    Sequence sequence;
    for (uint32_t step = 0; step < options.length; ++step) {
        if (!options.only || options.only->contains(step)) {
            sequence.Make(seed, step);
        }
    }
}

void PrintFixed() {
    for (const Family& family : Families()) {
        if (family.fixed != nullptr) {
            Line(std::string("family ") + family.name);
            family.fixed();
        }
    }
}

uint32_t Number(std::string_view text) {
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::invalid_argument(std::string(text));
    }
    return number;
}

std::set<uint32_t> Numbers(std::string_view text) {
    std::set<uint32_t> numbers;
    while (!text.empty()) {
        const std::string_view number = text.substr(0, text.find(','));
        numbers.insert(Number(number));
        text.remove_prefix(std::min(text.size(), number.size() + 1));
    }
    return numbers;
}

void Read(Options* options, std::string_view name, std::string_view value) {
    if (name == "--seed") {
        options->first = options->last = Number(value);
    } else if (name == "--seeds") {
        const size_t dash = std::min(value.find('-'), value.size());
        options->first = Number(value.substr(0, dash));
        options->last = Number(value.substr(std::min(dash + 1, value.size())));
    } else if (name == "--length") {
        options->length = Number(value);
    } else if (name == "--only") {
        options->only = Numbers(value);
    } else if (name == "--component") {
        componentLibrary = Widen(value);
    } else {
        throw std::invalid_argument(std::string(name));
    }
}

Options ReadOptions(int count, char** arguments) {
    Options options;
    for (int index = 1; index < count; ++index) {
        const std::string_view name = arguments[index];
        if (name == "--fixed") {
            options.fixed = true;
        } else {
            Read(&options, name, ++index < count ? arguments[index] : "");
        }
    }
    return options;
}

}  // namespace

int main(int count, char** arguments) try {
    const Options options = ReadOptions(count, arguments);
    for (uint32_t seed = options.first; seed <= options.last; ++seed) {
        PrintSequence(seed, options);
    }
    // Last, since it makes the default encoding known to the process.
    if (options.fixed) {
        PrintFixed();
    }
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "print_transcript: %s\n", failure.what());
    return 2;
}
