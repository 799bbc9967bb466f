#include <qxcore/string.h>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

// What a comparison promises: an exact number, or a sign.
int Exact(int result) {
    return result;
}

int Sign(int result) {
    return (result > 0) - (result < 0);
}

enum class Texts { kAny, kAgreedCase };

using Promise = int (*)(int result);

template <typename Unit>
std::basic_string<Unit> Other(Random& random, const std::basic_string<Unit>& text) {
    return random.OneIn(5) ? Text<Unit>(random) : Variation(random, text);
}

// The runtime's comparisons without case stay within what all runtimes agree on.
std::string AgreedCase(const std::string& text) {
    return allowance::NarrowCaseIsTheSystems(text);
}
std::u16string AgreedCase(const std::u16string& text) {
    return allowance::WideCaseIsTheRuntimes(text);
}

template <typename Unit>
MakeCall Compare(int32_t (*compare)(const Unit*, const Unit*), Promise promise,
                 Texts texts = Texts::kAny) {
    return [=](Random& random, Line& line) {
        auto first = Text<Unit>(random);
        auto second = Other(random, first);
        if (texts == Texts::kAgreedCase) {
            first = AgreedCase(first);
            second = AgreedCase(second);
        }
        line.Add("first", first).Add("second", second);
        line.Add("->", promise(compare(first.c_str(), second.c_str())));
    };
}

template <typename Unit>
MakeCall CompareHeads(int32_t (*compare)(const Unit*, const Unit*, size_t), Promise promise,
                      Texts texts = Texts::kAny) {
    return [=](Random& random, Line& line) {
        auto first = Text<Unit>(random);
        auto second = Other(random, first);
        if (texts == Texts::kAgreedCase) {
            first = AgreedCase(first);
            second = AgreedCase(second);
        }
        const size_t count = random.OneIn(8) ? 0x7FFFFFFF : random.Below(16);
        line.Add("first", first).Add("second", second).Add("count", count);
        line.Add("->", promise(compare(first.c_str(), second.c_str(), count)));
    };
}

}  // namespace

std::vector<Call> TextCompareCalls() {
    return {
        {"QXStrCmpA", Compare(QXStrCmpA, Exact)},
        {"QXStrCmpW", Compare(QXStrCmpW, Exact)},
        {"QXStrCmpUCS2", Compare(QXStrCmpUCS2, Exact)},
        {"QXStrCmpUTF16", Compare(QXStrCmpUTF16, Sign)},
        {"QXStrICmpA", Compare(QXStrICmpA, Exact, Texts::kAgreedCase)},
        {"QXStrICmpW", Compare(QXStrICmpW, Sign, Texts::kAgreedCase)},
        {"QXStrICmpUCS2", Compare(QXStrICmpUCS2, Exact)},
        {"QXStrICmpUTF16", Compare(QXStrICmpUTF16, Sign)},
        {"QXStrNCmpA", CompareHeads(QXStrNCmpA, Sign)},
        {"QXStrNCmpW", CompareHeads(QXStrNCmpW, Sign)},
        {"QXStrNCmpUTF16", CompareHeads(QXStrNCmpUTF16, Sign)},
        {"QXStrNICmpA", CompareHeads(QXStrNICmpA, Exact, Texts::kAgreedCase)},
        {"QXStrNICmpW", CompareHeads(QXStrNICmpW, Sign, Texts::kAgreedCase)},
        {"QXStrNICmpUTF16", CompareHeads(QXStrNICmpUTF16, Sign)},
    };
}
