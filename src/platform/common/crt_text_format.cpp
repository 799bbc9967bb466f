// Formatted text in wide units, with the reference platform's conversions. What the C library knows
// as well, numbers, is handed to it: the narrow functions of every one of them agree on those.
#include <narrow_character.h>
#include <stdio.h>

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/crt_text.h"

namespace platform {
namespace {

constexpr int kNoPrecision = -1;
// No number is longer than this without its padding.
constexpr std::size_t kLongestNumber = 20'000;

// The width of an argument, or of a text's units.
enum class Size { kDefault, kChar, kShort, kLong, kLongLong, kLongDouble };
static_assert(sizeof(void*) == sizeof(i64));

// Places in "-+ #0".
constexpr int kFlagCount = 5;
constexpr int kLeft = 0;
constexpr int kZero = 4;

struct Conversion {
    bool m_flags[kFlagCount] = {};
    int m_width = 0;
    int m_precision = kNoPrecision;
    Size m_size = Size::kDefault;
    char16_t m_type = 0;
};

// Texts may stand at odd addresses.
char16_t UnitAt(const char16_t* text, std::size_t index) noexcept {
    char16_t unit;
    std::memcpy(&unit, reinterpret_cast<const char*>(text) + index * sizeof unit, sizeof unit);
    return unit;
}

std::size_t BoundedLength(const char16_t* text, std::size_t limit) noexcept {
    std::size_t length = 0;
    while (length < limit && UnitAt(text, length) != 0) {
        ++length;
    }
    return length;
}

// Hands out the characters of a narrow text until it ends or the next would take it beyond `limit`
// units, and gives the number of units. Bytes behind that are not looked at.
template <typename Take>
std::size_t ForEachCharacter(const char* text, std::size_t limit, Take take) noexcept {
    std::size_t units = 0;
    while (units < limit && *text != '\0') {
        const NarrowCharacter character = ReadNarrowCharacter(text);
        if (character.length > limit - units) {
            break;
        }
        text += character.bytes;
        units += character.length;
        take(character);
    }
    return units;
}

// The buffer. What does not fit is dropped and remembered.
class Sink {
  public:
    Sink(char16_t* buffer, std::size_t size) noexcept
        : m_begin(buffer), m_next(buffer), m_end(buffer + size) {}

    std::size_t Room() const noexcept { return static_cast<std::size_t>(m_end - m_next); }

    void Put(char16_t unit) noexcept {
        if (m_next != m_end) {
            *m_next++ = unit;
        } else {
            m_isCut = true;
        }
    }

    void Fill(char16_t unit, std::size_t count) noexcept {
        m_isCut |= count > Room();
        m_next = std::fill_n(m_next, std::min(count, Room()), unit);
    }

    void PutNarrow(const char* text, std::size_t limit) noexcept {
        ForEachCharacter(text, limit, [this](const NarrowCharacter& character) {
            for (u32 index = 0; index < character.length; ++index) {
                Put(character.units[index]);
            }
        });
    }

    // The C library writes into the end of the buffer itself, in which a byte takes half the place
    // of a unit: behind the byte of a character there is always room for the units so far.
    template <typename Value>
    void PutNumber(const char* format, int width, int precision, Value value) noexcept {
        if (m_next == m_end) {
            m_isCut = true;
            return;
        }
        char* const place = reinterpret_cast<char*>(m_next) + (Room() - 1);
        const int length = ::snprintf(place, Room() + 1, format, width, precision, value);
        m_isCut |= length < 0 || static_cast<std::size_t>(length) > Room();
        PutNarrow(place, SIZE_MAX);
    }

    int Finish() noexcept {
        if (m_isCut) {
            return -1;
        }
        if (m_next != m_end) {
            *m_next = 0;
        }
        return static_cast<int>(m_next - m_begin);
    }

  private:
    char16_t* m_begin;
    char16_t* m_next;
    char16_t* m_end;
    bool m_isCut = false;
};

struct SizePrefix {
    const char16_t* m_text;
    Size m_size;
};

// A longer prefix stands before those that it begins with.
constexpr SizePrefix kSizePrefixes[] = {
    {u"hh", Size::kChar},     {u"h", Size::kShort},    {u"ll", Size::kLongLong},
    {u"l", Size::kLong},      {u"w", Size::kLong},     {u"I64", Size::kLongLong},
    {u"I32", Size::kDefault}, {u"I", Size::kLongLong}, {u"z", Size::kLongLong},
    {u"t", Size::kLongLong},  {u"j", Size::kLongLong}, {u"L", Size::kLongDouble},
};

// The arguments, each read in the width that its prefix tells.
// The analyzer loses sight of the list's beginning.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized)
class Arguments {
  public:
    explicit Arguments(std::va_list arguments) noexcept { va_copy(m_list, arguments); }
    ~Arguments() { va_end(m_list); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    int TakeInt() noexcept { return va_arg(m_list, int); }
    double TakeDouble() noexcept { return va_arg(m_list, double); }
    long double TakeLongDouble() noexcept { return va_arg(m_list, long double); }

    template <typename Pointer>
    Pointer Take() noexcept {
        return va_arg(m_list, Pointer);
    }

    // Sign-extended; an unsigned number is cut to its width by TakeUnsigned.
    i64 TakeSigned(Size size) noexcept {
        switch (size) {
            case Size::kChar:
                return static_cast<signed char>(TakeInt());
            case Size::kShort:
                return static_cast<i16>(TakeInt());
            case Size::kLong:  // NOLINT(bugprone-branch-clone): a long is narrower on Windows
                return va_arg(m_list, long);
            case Size::kLongLong:
                return va_arg(m_list, i64);
            default:
                return TakeInt();
        }
    }

    u64 TakeUnsigned(Size size) noexcept {
        const auto value = static_cast<u64>(TakeSigned(size));
        switch (size) {
            case Size::kChar:
                return static_cast<u8>(value);
            case Size::kShort:
                return static_cast<u16>(value);
            case Size::kDefault:
                return static_cast<u32>(value);
            case Size::kLong:
                return static_cast<unsigned long>(value);
            default:
                return value;
        }
    }

  private:
    std::va_list m_list;
};
// NOLINTEND(clang-analyzer-valist.Uninitialized)

// ---- Reading a conversion

bool StartsWith(const char16_t* text, const char16_t* start) noexcept {
    while (*start != 0 && *text == *start) {
        ++text;
        ++start;
    }
    return *start == 0;
}

const char16_t* ParseFlags(const char16_t* format, Conversion& conversion) noexcept {
    constexpr std::u16string_view kFlags = u"-+ #0";
    for (std::size_t flag; (flag = kFlags.find(*format)) != kFlags.npos; ++format) {
        conversion.m_flags[flag] = true;
    }
    return format;
}

// A number, or `*` for an argument.
const char16_t* ParseCount(const char16_t* format, Arguments& arguments, int& count) noexcept {
    if (*format == u'*') {
        count = arguments.TakeInt();
        return format + 1;
    }
    i64 value = 0;
    for (; *format >= u'0' && *format <= u'9'; ++format) {
        value = std::min<i64>(value * 10 + (*format - u'0'), INT_MAX);
    }
    count = static_cast<int>(value);
    return format;
}

const char16_t* ParseWidth(const char16_t* format, Arguments& arguments,
                           Conversion& conversion) noexcept {
    format = ParseCount(format, arguments, conversion.m_width);
    if (conversion.m_width < 0) {
        conversion.m_flags[kLeft] = true;
        conversion.m_width = -std::max(conversion.m_width, -INT_MAX);
    }
    return format;
}

const char16_t* ParsePrecision(const char16_t* format, Arguments& arguments,
                               Conversion& conversion) noexcept {
    if (*format != u'.') {
        return format;
    }
    format = ParseCount(format + 1, arguments, conversion.m_precision);
    conversion.m_precision = std::max(conversion.m_precision, kNoPrecision);
    return format;
}

const char16_t* ParseSize(const char16_t* format, Conversion& conversion) noexcept {
    for (const auto& [text, size] : kSizePrefixes) {
        if (StartsWith(format, text)) {
            conversion.m_size = size;
            return format + std::char_traits<char16_t>::length(text);
        }
    }
    return format;
}

// `format` stands behind the `%`, and behind the whole conversion afterwards.
Conversion Parse(const char16_t*& format, Arguments& arguments) noexcept {
    Conversion conversion;
    format = ParseFlags(format, conversion);
    format = ParseWidth(format, arguments, conversion);
    format = ParsePrecision(format, arguments, conversion);
    format = ParseSize(format, conversion);
    conversion.m_type = *format;
    format += *format != 0 ? 1 : 0;
    return conversion;
}

// ---- Writing it

// Padded on its left or right; with zeros too, as the reference platform pads texts.
template <typename Put>
void PutPadded(Sink& sink, const Conversion& conversion, std::size_t length, Put put) noexcept {
    const auto width = static_cast<std::size_t>(conversion.m_width);
    const std::size_t padding = width > length ? width - length : 0;
    if (conversion.m_flags[kLeft]) {
        put();
        sink.Fill(u' ', padding);
    } else {
        sink.Fill(conversion.m_flags[kZero] ? u'0' : u' ', padding);
        put();
    }
}

// As far as the precision goes. What is behind the end of the buffer is not looked at but for the
// one unit that tells that something is.
std::size_t LimitOf(const Sink& sink, const Conversion& conversion) noexcept {
    const std::size_t seen = sink.Room() + 1;
    return conversion.m_precision == kNoPrecision
               ? seen
               : std::min(seen, static_cast<std::size_t>(conversion.m_precision));
}

void PutWideText(Sink& sink, const Conversion& conversion, const char16_t* text) noexcept {
    text = text != nullptr ? text : u"(null)";
    const std::size_t length = BoundedLength(text, LimitOf(sink, conversion));
    PutPadded(sink, conversion, length, [&] {
        for (std::size_t index = 0; index < length; ++index) {
            sink.Put(UnitAt(text, index));
        }
    });
}

void PutNarrowText(Sink& sink, const Conversion& conversion, const char* text) noexcept {
    text = text != nullptr ? text : "(null)";
    const std::size_t limit = LimitOf(sink, conversion);
    const std::size_t length = ForEachCharacter(text, limit, [](const NarrowCharacter&) {});
    PutPadded(sink, conversion, length, [&] { sink.PutNarrow(text, limit); });
}

// The small letter goes by the function's own width, the capital by the other one.
bool IsNarrow(const Conversion& conversion, char16_t capital) noexcept {
    return conversion.m_size == Size::kShort ||
           (conversion.m_type == capital && conversion.m_size != Size::kLong);
}

void PutText(Sink& sink, const Conversion& conversion, Arguments& arguments) noexcept {
    if (IsNarrow(conversion, u'S')) {
        PutNarrowText(sink, conversion, arguments.Take<const char*>());
    } else {
        PutWideText(sink, conversion, arguments.Take<const char16_t*>());
    }
}

void PutCharacter(Sink& sink, const Conversion& conversion, Arguments& arguments) noexcept {
    const int character = arguments.TakeInt();
    char16_t unit = static_cast<char16_t>(character);
    if (IsNarrow(conversion, u'C')) {
        const char text[] = {static_cast<char>(character), '\0'};
        unit = character == 0 ? u'\0' : ReadNarrowCharacter(text).units[0];
    }
    PutPadded(sink, conversion, 1, [&] { sink.Put(unit); });
}

// Behind the buffer's end a number may be as long as it likes.
int Visible(const Sink& sink, int count) noexcept {
    const std::size_t limit = std::min<std::size_t>(sink.Room() + kLongestNumber, INT_MAX);
    return std::min(count, static_cast<int>(limit));
}

template <typename Value>
void PutNumber(Sink& sink, const Conversion& conversion, std::string_view type,
               Value value) noexcept {
    char format[16];
    char* end = format;
    *end++ = '%';
    for (int flag = 0; flag < kFlagCount; ++flag) {
        if (conversion.m_flags[flag]) {
            *end++ = "-+ #0"[flag];
        }
    }
    end = std::copy_n("*.*", 3, end);
    end = std::copy(type.begin(), type.end(), end);
    *end = '\0';
    sink.PutNumber(format, Visible(sink, conversion.m_width), Visible(sink, conversion.m_precision),
                   value);
}

void PutSigned(Sink& sink, const Conversion& conversion, Arguments& arguments) noexcept {
    PutNumber(sink, conversion, "jd", std::intmax_t{arguments.TakeSigned(conversion.m_size)});
}

void PutUnsigned(Sink& sink, const Conversion& conversion, Arguments& arguments) noexcept {
    const char type[] = {'j', static_cast<char>(conversion.m_type)};
    PutNumber(sink, conversion, {type, 2},
              std::uintmax_t{arguments.TakeUnsigned(conversion.m_size)});
}

void PutReal(Sink& sink, const Conversion& conversion, Arguments& arguments) noexcept {
    const char type[] = {'L', static_cast<char>(conversion.m_type)};
    if (conversion.m_size == Size::kLongDouble) {
        PutNumber(sink, conversion, {type, 2}, arguments.TakeLongDouble());
    } else {
        PutNumber(sink, conversion, {type + 1, 1}, arguments.TakeDouble());
    }
}

// All digits, whatever the precision.
void PutPointer(Sink& sink, const Conversion& given, Arguments& arguments) noexcept {
    Conversion conversion = given;
    conversion.m_precision = 2 * sizeof(void*);
    PutNumber(sink, conversion, "jX", std::uintmax_t{arguments.TakeUnsigned(Size::kLongLong)});
}

// Nobody's memory is written to on a format's word.
void SkipCount(Sink&, const Conversion&, Arguments& arguments) noexcept {
    arguments.Take<void*>();
}

struct Action {
    std::u16string_view m_types;
    void (*m_put)(Sink&, const Conversion&, Arguments&) noexcept;
};

constexpr Action kActions[] = {
    {u"sS", PutText},   {u"cC", PutCharacter},  {u"di", PutSigned}, {u"uoxX", PutUnsigned},
    {u"p", PutPointer}, {u"aAeEfFgG", PutReal}, {u"n", SkipCount},
};

// An unknown type stands for itself, `%` among them.
void Put(Sink& sink, const Conversion& conversion, Arguments& arguments) noexcept {
    for (const auto& [types, put] : kActions) {
        if (types.find(conversion.m_type) != types.npos) {
            return put(sink, conversion, arguments);
        }
    }
    if (conversion.m_type != 0) {
        sink.Put(conversion.m_type);
    }
}

}  // namespace

int _vsnwprintf(char16_t* buffer, std::size_t size, const char16_t* format,
                std::va_list list) noexcept {
    Sink sink(buffer, size);
    Arguments arguments(list);
    while (*format != 0) {
        if (*format != u'%') {
            sink.Put(*format++);
        } else {
            ++format;
            Put(sink, Parse(format, arguments), arguments);
        }
    }
    return sink.Finish();
}

}  // namespace platform
