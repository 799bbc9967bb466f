#include <qxcore/string.h>

#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

template <typename Unit>
MakeCall Length(size_t (*length)(const Unit*)) {
    return [length](Random& random, Line& line) {
        const auto text = Text<Unit>(random);
        line.Add("text", text).Add("->", length(text.c_str()));
    };
}

template <typename Unit>
MakeCall LimitedLength(size_t (*length)(const Unit*, size_t)) {
    return [length](Random& random, Line& line) {
        const auto text = Text<Unit>(random);
        const size_t limit = random.Below(20);
        line.Add("text", text).Add("limit", limit).Add("->", length(text.c_str(), limit));
    };
}

template <typename Unit>
MakeCall Duplicate(Unit* (*duplicate)(const Unit*), void (*release)(Unit*)) {
    return [=](Random& random, Line& line) {
        const auto text = Text<Unit>(random);
        Unit* const copy = duplicate(random.OneIn(10) ? nullptr : text.c_str());
        line.Add("text", text).Add("->", copy != nullptr ? copy : std::basic_string<Unit>());
        release(copy);
    };
}

template <typename Unit>
MakeCall LimitedDuplicate(Unit* (*duplicate)(const Unit*, uint32_t), void (*release)(Unit*)) {
    return [=](Random& random, Line& line) {
        const auto text = Text<Unit>(random);
        const uint32_t limit = random.Below(20);
        Unit* const copy = duplicate(text.c_str(), limit);
        line.Add("text", text).Add("limit", limit).Add("->", std::basic_string<Unit>(copy));
        release(copy);
    };
}

// Copies and appends without a size of the target's.
template <typename Unit>
MakeCall Copy(Unit* (*copy)(Unit*, const Unit*)) {
    return [copy](Random& random, Line& line) {
        const auto old = Text<Unit>(random);
        const auto text = Text<Unit>(random);
        Buffer<Unit> target(old.size() + text.size() + 2, old + Unit{0});
        line.Add("old", old).Add("text", text);
        line.Place("->", copy(target.Begin(), text.c_str()), target.Begin());
        line.Add("target", target.Content());
    };
}

template <typename Unit>
MakeCall CountedCopy(Unit* (*copy)(Unit*, const Unit*, size_t)) {
    return [copy](Random& random, Line& line) {
        const auto old = Text<Unit>(random);
        const auto text = Text<Unit>(random);
        const size_t count = random.Below(24);
        Buffer<Unit> target(old.size() + text.size() + count + 2, old + Unit{0});
        line.Add("old", old).Add("text", text).Add("count", count);
        line.Place("->", copy(target.Begin(), text.c_str(), count), target.Begin());
        line.Add("target", target.Content());
    };
}

// Copies and appends within a size, into a target that may have no terminator. `copy` returns where
// it wrote.
template <typename Unit, typename Function>
MakeCall BoundedCopy(Function copy) {
    return [copy](Random& random, Line& line) {
        const size_t size = random.Between(1, 24);
        auto old = Text<Unit>(random) + Unit{0};
        old.resize(std::min(old.size(), size));
        const auto text = Text<Unit>(random);
        const size_t count = random.OneIn(3) ? text.size() : random.Below(24);
        Buffer<Unit> target(size, old);
        line.Add("old", old).Add("size", size).Add("text", text).Add("count", count);
        line.Place("->", copy(target.Begin(), size, text.c_str(), count), target.Begin());
        line.Add("target", target.Content());
    };
}

MakeCall BoundedCopy16(void (*copy)(wchar*, size_t, const wchar*, size_t)) {
    return BoundedCopy<wchar>([copy](wchar* target, size_t size, const wchar* text, size_t count) {
        copy(target, size, text, count);
        return target;
    });
}

void CopyList(Random& random, Line& line) {
    std::string texts[4];
    const char* arguments[4];
    size_t size = 1;
    for (int index = 0; index < 4; ++index) {
        texts[index] = NarrowText(random);
        arguments[index] = random.OneIn(4) ? nullptr : texts[index].c_str();
        size += texts[index].size();
        line.Add("text", arguments[index] == nullptr ? "null" : arguments[index]);
    }
    const int32_t number = static_cast<int32_t>(random.Below(6)) - 1;
    Buffer<char> target(size);
    line.Add("number", number);
    line.Add("->", QXStrCpyCatA(target.Begin(), number, arguments[0], arguments[1], arguments[2],
                                arguments[3]));
    line.Add("target", target.Content());
}

size_t Length16(const wchar* text) {
    return static_cast<size_t>(QXStrLenUTF16(text));
}

}  // namespace

std::vector<Call> TextCopyCalls() {
    return {
        {"QXStrLenA", Length(QXStrLenA)},
        {"QXStrLenA_32", Length(QXStrLenA_32)},
        {"QXStrLenW", Length(QXStrLenW)},
        {"QXStrLenW_32", Length(QXStrLenW_32)},
        {"QXStrLenUTF16", Length(Length16)},
        {"QXStrNLenA", LimitedLength(QXStrNLenA)},
        {"QXStrNLenW", LimitedLength(QXStrNLenW)},
        {"QXStrNLenUTF16", LimitedLength(QXStrNLenUTF16)},
        {"QXStrDupA", Duplicate(QXStrDupA, QXStrFreeA)},
        {"QXStrDupW", Duplicate(QXStrDupW, QXStrFreeW)},
        {"QXStrNDupA", LimitedDuplicate(QXStrNDupA, QXStrFreeA)},
        {"QXStrNDupW", LimitedDuplicate(QXStrNDupW, QXStrFreeW)},
        {"QXStrCpyA", Copy(QXStrCpyA)},
        {"QXStrCpyW", Copy(QXStrCpyW)},
        {"QXStrCatA", Copy(QXStrCatA)},
        {"QXStrCatW", Copy(QXStrCatW)},
        {"QXStrNCpyA", CountedCopy(QXStrNCpyA)},
        {"QXStrNCpyW", CountedCopy(QXStrNCpyW)},
        {"QXStrNCatA", CountedCopy(QXStrNCatA)},
        {"QXStrNCatW", CountedCopy(QXStrNCatW)},
        {"QXStrNZCpyA", BoundedCopy<char>(QXStrNZCpyA)},
        {"QXStrNZCpyW", BoundedCopy<wchar>(QXStrNZCpyW)},
        {"QXStrNZCpyUTF16", BoundedCopy16(QXStrNZCpyUTF16)},
        {"QXStrNZCatA", BoundedCopy<char>(QXStrNZCatA)},
        {"QXStrNZCatW", BoundedCopy<wchar>(QXStrNZCatW)},
        {"QXStrNZCatUTF16", BoundedCopy16(QXStrNZCatUTF16)},
        {"QXStrCpyCatA", CopyList},
    };
}
