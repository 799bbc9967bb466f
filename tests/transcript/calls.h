// Calls that need no objects: one row of a table for a function, with a kind for each argument. A
// kind is a function that draws a value: Kind(random), or Kind(random, draft) for one that depends
// on what was drawn for other arguments, wherever those stand. Everything drawn is printed, and
// behind the call its result and whatever it may have written.
#ifndef TESTS_TRANSCRIPT_CALLS_H
#define TESTS_TRANSCRIPT_CALLS_H

#include <qxcore/guid.h>
#include <qxcore/time.h>

#include <cerrno>
#include <optional>
#include <tuple>

#include "transcript/families.h"
#include "transcript/values.h"

// What the arguments of one call know of each other: the last text of either width.
struct Draft {
    std::string narrow;
    std::u16string wide;
    GUID identifier = {};
    size_t units = 0;  // of the text that was drawn last
    size_t room = 0;   // of the buffer that was drawn last

    template <typename Unit>
    const std::basic_string<Unit>& Text() const {
        if constexpr (sizeof(Unit) == 1) {
            return narrow;
        } else {
            return wide;
        }
    }

    void Note(const std::string& text) { narrow = text, units = text.size(); }
    void Note(const std::u16string& text) { wide = text, units = text.size(); }
    void Note(const std::u32string& text) { units = text.size(); }
    void Note(const GUID& guid) { identifier = guid; }
    template <typename Unit>
    void Note(const Buffer<Unit>& buffer) {
        room = buffer.Size();
    }
    void Note(const auto&) {}
};

// A text, or a null pointer in its place.
template <typename Unit>
struct MaybeText {
    std::basic_string<Unit> text;
    bool isNull;
    const Unit* c_str() const { return isNull ? nullptr : text.c_str(); }
};

template <typename Value>
void Print(Line& line, const char* what, const Value& value) {
    if constexpr (requires { value.Content(); }) {
        line.Add(what, value.Content());
    } else if constexpr (requires { value.isNull; }) {
        line.Add("isNull", value.isNull).Add(what, value.text);
    } else if constexpr (std::is_same_v<Value, tm>) {
        for (const int field :
             {value.tm_sec, value.tm_min, value.tm_hour, value.tm_mday, value.tm_mon, value.tm_year,
              value.tm_wday, value.tm_yday, value.tm_isdst}) {
            line.Add("field", field);
        }
    } else if constexpr (requires { value.number; }) {
        line.Add(what, value.number).Add("length", value.length);
    } else if constexpr (std::is_class_v<Value> && std::is_trivially_copyable_v<Value>) {
        line.Bytes(what, &value, sizeof value);
    } else {
        line.Add(what, value);
    }
}

template <typename Parameter, typename Kind>
class Argument {
  public:
    explicit Argument(Kind kind) : m_kind(kind) {}

    void Draw(Random& random, Draft& draft, Line& line, bool drawsDependent) {
        if constexpr (kIsDependent) {
            if (drawsDependent) {
                m_value.emplace(m_kind(random, draft));
            }
        } else if (!drawsDependent) {
            m_value.emplace(m_kind(random));
        }
        if (drawsDependent == kIsDependent) {
            draft.Note(*m_value);
            Print(line, "given", *m_value);
        }
    }

    Parameter Get() {
        if constexpr (requires { m_value->Begin(); }) {
            return m_value->Begin();
        } else if constexpr (requires { m_value->c_str(); }) {
            return m_value->c_str();
        } else if constexpr (std::is_pointer_v<Parameter>) {
            return &*m_value;
        } else {
            return static_cast<Parameter>(*m_value);
        }
    }

    void PrintWhatMayBeWritten(Line& line) {
        using Target = std::remove_pointer_t<Parameter>;
        if constexpr (std::is_pointer_v<Parameter> && !std::is_const_v<Target>) {
            Print(line, "left", *m_value);
        }
    }

    // Where a result that points into this argument counts from.
    template <typename Unit>
    const Unit* Base() {
        if constexpr (std::is_convertible_v<Parameter, const Unit*>) {
            return Get();
        } else {
            return nullptr;
        }
    }

  private:
    static constexpr bool kIsDependent = !std::is_invocable_v<Kind, Random&>;
    template <bool isDependent, typename K>
    struct Drawn : std::invoke_result<K, Random&> {};
    template <typename K>
    struct Drawn<true, K> : std::invoke_result<K, Random&, const Draft&> {};

    Kind m_kind;
    std::optional<typename Drawn<kIsDependent, Kind>::type> m_value;
};

// What a result promises.
constexpr auto kExact = [](auto result) { return result; };
constexpr auto kSign = [](auto result) { return (result > 0) - (result < 0); };
constexpr auto kAndErrno = [](auto result) { return result; };  // the same, with its errno
constexpr auto kYesOrNo = [](auto result) { return result != 0; };

template <auto kPromise = kExact, typename Result, typename... Parameters, typename... Kinds>
MakeCall Row(Result (*function)(Parameters...), Kinds... kinds) {
    return [=](Random& random, Line& line) {
        std::tuple<Argument<Parameters, Kinds>...> arguments{kinds...};
        Draft draft;
        const auto call = [&](auto&... each) {
            (each.Draw(random, draft, line, false), ...);
            (each.Draw(random, draft, line, true), ...);
            errno = 0;
            [[maybe_unused]] int error = 0;
            if constexpr (std::is_void_v<Result>) {
                function(each.Get()...);
            } else if constexpr (std::is_pointer_v<Result>) {
                using Unit = std::remove_pointer_t<Result>;
                const Unit* const result = function(each.Get()...);
                error = errno;
                const Unit* base = nullptr;
                ((base = base != nullptr ? base : each.template Base<Unit>()), ...);
                line.Place("->", result, base);
            } else {
                const auto result = kPromise(function(each.Get()...));
                error = errno;
                Print(line, "->", result);
            }
            if constexpr (std::is_same_v<decltype(kPromise), decltype(kAndErrno)>) {
                line.Add("errno", error);
            }
            (each.PrintWhatMayBeWritten(line), ...);
        };
        std::apply(call, arguments);
    };
}

// ---- Kinds for every family

template <uint32_t kFirst, uint32_t kLast>
uint32_t Within(Random& random) {
    return random.Between(kFirst, kLast);
}

template <typename Unit>
MaybeText<Unit> TextOrNull(Random& random) {
    return {Text<Unit>(random), random.OneIn(10)};
}

// A length of the text: all of it up to its terminator, or its head.
inline int32_t AnyHead(Random& random, const Draft& draft) {
    return random.OneIn(2) ? -1 : static_cast<int32_t>(random.Below(draft.units + 1));
}

inline size_t Room(Random&, const Draft& draft) {
    return draft.room;
}

template <typename Unit, size_t kSize>
Buffer<Unit> RoomFor(Random&) {
    return Buffer<Unit>(kSize);
}

#endif
