// A call as one row of a table: a function, and a kind for each argument. A kind is a function that
// draws a value: Kind(random), or Kind(random, draft) for one that depends on what was drawn for
// other arguments, wherever those stand. Everything drawn is printed, and behind the call its
// result and whatever it may have written.
#ifndef TESTS_TRANSCRIPT_CALLS_H
#define TESTS_TRANSCRIPT_CALLS_H

#include <qxcore/guid.h>
#include <qxcore/time.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>

#include "transcript/families.h"
#include "transcript/values.h"

// What the arguments of one call know of each other: the last text of each width.
struct Draft {
    std::tuple<std::string, std::u16string, std::u32string> texts;
    const void* begin = nullptr;  // of the text that was drawn last
    size_t units = 0;             // of the same
    size_t room = 0;              // of the buffer that was drawn last
    GUID identifier = {};

    template <typename Unit>
    const std::basic_string<Unit>& Text() const {
        return std::get<std::basic_string<Unit>>(texts);
    }

    template <typename Unit>
    void Note(const std::basic_string<Unit>& text) {
        std::get<std::basic_string<Unit>>(texts) = text;
        begin = text.c_str();
        units = text.size();
    }
    template <typename Unit>
    void Note(const Buffer<Unit>& buffer) {
        room = buffer.Size();
    }
    void Note(const GUID& guid) { identifier = guid; }
    void Note(const auto&) {}
};

template <typename Value>
void Print(Line& line, const char* what, const Value& value) {
    if constexpr (requires { value.Show(line, what); }) {
        value.Show(line, what);
    } else if constexpr (std::is_same_v<Value, tm>) {
        for (const int field :
             {value.tm_sec, value.tm_min, value.tm_hour, value.tm_mday, value.tm_mon, value.tm_year,
              value.tm_wday, value.tm_yday, value.tm_isdst}) {
            line.Add("field", field);
        }
    } else if constexpr (requires { line.Add(what, value); }) {
        line.Add(what, value);
    } else {
        static_assert(std::is_trivially_copyable_v<Value>);
        line.Bytes(what, &value, sizeof value);
    }
}

template <typename Kind>
constexpr bool kIsDependent = !std::is_invocable_v<Kind, Random&>;

template <typename Kind>
auto DrawOne(Kind& kind, Random& random, const Draft& draft) {
    if constexpr (kIsDependent<Kind>) {
        return kind(random, draft);
    } else {
        return kind(random);
    }
}

template <typename Parameter, typename Kind>
class Argument {
  public:
    explicit Argument(Kind kind) : m_kind(kind) {}

    void Draw(Random& random, Draft& draft, Line& line, bool drawsDependent) {
        if (drawsDependent == kIsDependent<Kind>) {
            m_value.emplace(DrawOne(m_kind, random, draft));
            draft.Note(*m_value);
            Print(line, "given", *m_value);
        }
    }

    // Without all its arguments a call is not made.
    bool IsThere() const {
        if constexpr (requires { m_value->IsThere(); }) {
            return m_value->IsThere();
        }
        return true;
    }

    Parameter Get() {
        if constexpr (std::is_same_v<std::remove_const_t<std::remove_pointer_t<Parameter>>,
                                     Value> &&
                      std::is_pointer_v<Parameter>) {
            return &*m_value;
        } else if constexpr (requires { m_value->Get(); }) {
            return static_cast<Parameter>(m_value->Get());
        } else if constexpr (requires { m_value->c_str(); }) {
            return m_value->c_str();
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
    using Value = decltype(DrawOne(std::declval<Kind&>(), std::declval<Random&>(), Draft()));

    Kind m_kind;
    std::optional<Value> m_value;
};

// What a result promises.
constexpr auto kExact = [](auto result) { return result; };
constexpr auto kSign = [](auto result) { return (result > 0) - (result < 0); };
constexpr auto kAndErrno = [](auto result) { return result; };  // the same, with its errno
constexpr auto kYesOrNo = [](auto result) { return result != 0; };

template <auto kPromise, typename Result, typename... Parameters, typename... Kinds>
auto RowOf(std::function<Result(Parameters...)> function, Kinds... kinds) {
    return [=](Random& random, Line& line) {
        std::tuple<Argument<Parameters, Kinds>...> arguments{kinds...};
        Draft draft;
        const auto call = [&](auto&... each) {
            (each.Draw(random, draft, line, false), ...);
            (each.Draw(random, draft, line, true), ...);
            if (!(each.IsThere() && ...)) {
                return;
            }
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
                if constexpr (std::is_same_v<decltype(result), const QXResult>) {
                    line.Result(result);
                } else {
                    Print(line, "->", result);
                }
            }
            if constexpr (std::is_same_v<decltype(kPromise), decltype(kAndErrno)>) {
                line.Add("errno", error);
            }
            (each.PrintWhatMayBeWritten(line), ...);
        };
        std::apply(call, arguments);
    };
}

// The same of a function or of what can be called like one.
template <auto kPromise = kExact, typename Function, typename... Kinds>
auto Row(Function function, Kinds... kinds) {
    return RowOf<kPromise>(std::function(function), kinds...);
}

// The first two of a call's fields, and calls of a function for narrow and for wide text, whose
// kinds tell the two apart by `Unit`.
#define NAMED(function, ...) #function, Row(function __VA_OPT__(, ) __VA_ARGS__)
#define NAMED_FOR(U, promise, function, ...)                         \
    [] {                                                             \
        using Unit = U;                                              \
        return Call{#function, Row<promise>(function, __VA_ARGS__)}; \
    }()
#define CALL_WIDE(promise, function, ...) NAMED_FOR(wchar, promise, function, __VA_ARGS__)
#define CALLS_A_W(promise, name, ...) \
    NAMED_FOR(char, promise, name##A, __VA_ARGS__), CALL_WIDE(promise, name##W, __VA_ARGS__)

// ---- Kinds for every family

template <uint32_t kFirst, uint32_t kLast = kFirst>
uint32_t Within(Random& random) {
    return random.Between(kFirst, kLast);
}

template <const auto& kChoices>
auto AnyOf(Random& random) {
    return random.Of(kChoices);
}

// Something that a call is to write.
template <typename Value>
Value Unset(Random&) {
    Value value;
    std::memset(&value, 0x7E, sizeof value);
    return value;
}

// A text, or a null pointer in its place.
template <typename Unit>
struct MaybeText {
    std::basic_string<Unit> text;
    bool isNull;
    const Unit* c_str() const { return isNull ? nullptr : text.c_str(); }
    void Show(Line& line, const char* what) const { line.Add("isNull", isNull).Add(what, text); }
};

template <typename Unit>
MaybeText<Unit> TextOrNull(Random& random) {
    return {Text<Unit>(random), random.OneIn(10)};
}

// A text in whose place the transcript shows another: the part of a path that is the same in each
// run.
template <typename Unit>
struct ShownText {
    std::u16string shown;
    std::basic_string<Unit> text;
    const Unit* c_str() const { return text.c_str(); }
    void Show(Line& line, const char* what) const { line.Add(what, shown); }
};

// A length of the text: all of it up to its terminator, or its head.
inline int32_t AnyHead(Random& random, const Draft& draft) {
    return random.OneIn(2) ? -1 : static_cast<int32_t>(random.Below(draft.units + 1));
}

inline size_t Units(Random&, const Draft& draft) {
    return draft.units;
}

inline size_t Room(Random&, const Draft& draft) {
    return draft.room;
}

template <typename Unit, size_t kSize>
Buffer<Unit> RoomFor(Random&) {
    return Buffer<Unit>(kSize);
}

// Where a reader of the text puts the place that it came to.
template <typename Unit>
struct EndOfText {
    const Unit* begin;
    Unit* end;
    Unit** Get() { return &end; }
    void Show(Line& line, const char* what) const { line.Place<Unit>(what, end, begin); }
};

template <typename Unit>
EndOfText<Unit> End(Random&, const Draft& draft) {
    return {static_cast<const Unit*>(draft.begin), nullptr};
}

// ---- Handles

inline bool IsOpen(const void* handle) {
    return handle != nullptr && handle != QX_INVALID_HANDLE;
}

// Some places for handles. What is in a place is closed before a new one comes there, and at last.
class Handles {
  public:
    Handles(size_t places, std::function<void(void*)> close)
        : m_close(std::move(close)), m_handles(places) {}
    ~Handles() { CloseAll(); }
    Handles(const Handles&) = delete;
    Handles& operator=(const Handles&) = delete;

    void*& At(size_t place) { return m_handles[place]; }
    void*& Any(Random& random) { return At(random.Below(m_handles.size())); }

    // An open one, if there is one.
    void*& AnyOpen(Random& random) {
        size_t place = random.Below(m_handles.size());
        for (size_t left = m_handles.size(); left > 1 && !IsOpen(At(place)); --left) {
            place = (place + 1) % m_handles.size();
        }
        return At(place);
    }
    void Close(void*& handle) {
        if (void* const closed = std::exchange(handle, nullptr); IsOpen(closed)) {
            m_close(closed);
        }
    }
    void CloseAll() {
        for (void*& handle : m_handles) {
            Close(handle);
        }
    }
    bool AreAllClosed() const { return std::none_of(m_handles.begin(), m_handles.end(), IsOpen); }

  private:
    const std::function<void(void*)> m_close;
    std::vector<void*> m_handles;
};

struct OpenHandle {
    void* handle;
    bool IsThere() const { return IsOpen(handle); }
    void* Get() const { return handle; }
    void Show(Line& line, const char* what) const { line.Handle(what, handle); }
};

struct NewHandle {
    void** place;
    void** Get() const { return place; }
    void Show(Line& line, const char* what) const { line.Handle(what, *place); }
};

inline auto OpenOne(const std::shared_ptr<Handles>& handles) {
    return [=](Random& random) { return OpenHandle{handles->AnyOpen(random)}; };
}

// One that the call closes.
inline auto LastUse(const std::shared_ptr<Handles>& handles) {
    return [=](Random& random) {
        return OpenHandle{std::exchange(handles->AnyOpen(random), nullptr)};
    };
}

// A place for one that the call opens.
inline auto NewOne(const std::shared_ptr<Handles>& handles) {
    return [=](Random& random) {
        void*& place = handles->Any(random);
        handles->Close(place);
        return NewHandle{&place};
    };
}

#endif
