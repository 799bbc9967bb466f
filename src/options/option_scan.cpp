#include "options/option_scan.h"

#include <cstdlib>
#include <cstring>
#include <optional>

#include "options/element_blocks.h"
#include "options/option_messages.h"

constinit char* QXGetOptionArgument = nullptr;
constinit int32_t QXGetOptionError = 1;
constinit int32_t QXGetOptionIndex = 1;
constinit int32_t QXGetOptionOption = '?';
constinit int32_t QXGetOptionReset = 0;

namespace {

constexpr i32 kEnd = -1;
constexpr i32 kAllArgument = 1;
constexpr i32 kFailure = '?';
constexpr i32 kUnset = -1;

// Where in the current element the scan stands; empty when the next one is to be fetched.
constinit const char* s_place = "";
// The block of elements passed over that are no options.
constinit i32 s_nonoptStart = kUnset;
constinit i32 s_nonoptEnd = kUnset;

enum class DashPrefix { None = -1, Single, Double, W };
constinit DashPrefix s_dashPrefix = DashPrefix::None;

const char* DashText() noexcept {
    switch (s_dashPrefix) {
        case DashPrefix::Single:
            return "-";
        case DashPrefix::Double:
            return "--";
        case DashPrefix::W:
            return "-W ";
        default:
            return "";
    }
}

bool IsOptionElement(const char* element) noexcept {
    return element[0] == '-' && element[1] != '\0';
}

// Asked anew by each call, but only where the answer counts: the environment is long.
bool IsPosixlyCorrect() noexcept {
    return std::getenv("POSIXLY_CORRECT") != nullptr;
}

void FinishElement() noexcept {
    s_place = "";
}

void NextElementAtItsEnd() noexcept {
    if (*s_place == '\0') {
        ++QXGetOptionIndex;
    }
}

void ClearMarks() noexcept {
    s_nonoptStart = kUnset;
    s_nonoptEnd = kUnset;
}

// Names are short and mostly differ at once, so a loop beats a call.
bool StartsWith(const char* name, const char* start, size_t length) noexcept {
    size_t same = 0;
    while (same < length && name[same] == start[same]) {
        ++same;
    }
    return same == length;
}

// The text of a long option: its name part, and what follows "=", null without one.
struct LongText {
    explicit LongText(const char* place) noexcept
        : text(place),
          nameLength(std::strcspn(place, "=")),
          value(text[nameLength] == '=' ? text + nameLength + 1 : nullptr) {}

    const char* text;
    size_t nameLength;
    const char* value;
};

// One call of the scanner.
class COptionScan {
  public:
    COptionScan(i32 argc, char** argv, const char* shortOptions, const QXOptionRecord* options,
                i32* longIndex, u32 flags) noexcept
        : m_argc(argc),
          m_argv(argv),
          m_shortOptions(shortOptions),
          m_options(options),
          m_longIndex(longIndex),
          m_flags(flags) {}

    i32 Next() noexcept;

  private:
    void ReadLeadingLetter() noexcept;
    std::optional<i32> FetchElement() noexcept;
    std::optional<i32> PassOver(char* element) noexcept;
    i32 EndOfVector() noexcept;
    i32 EndByDashes() noexcept;
    void MovePassedBehind() noexcept;
    void JoinBlocks() noexcept;

    bool MayBeLong() const noexcept;
    std::optional<i32> LongOption() noexcept;
    std::optional<i32> SearchLong(bool shortToo) noexcept;
    const QXOptionRecord* FindRecord(const LongText& element, bool shortToo,
                                     bool* ambiguous) const noexcept;
    bool IsAnother(const QXOptionRecord& record, const QXOptionRecord& held) const noexcept;
    i32 TakeLong(const QXOptionRecord& record, const LongText& element) noexcept;
    i32 MissingLongArgument(const QXOptionRecord& record, const char* text) noexcept;

    i32 ShortOption() noexcept;
    i32 LongByW() noexcept;
    i32 TakeArgument(u8 letter, bool optional) noexcept;
    i32 MissingArgument(u8 letter) noexcept;
    i32 UnknownLetter(u8 letter) noexcept;

    template <typename... Arguments>
    i32 Fail(i32 wrong, const char* format, Arguments... arguments) const noexcept;
    i32 MissingResult() const noexcept { return *m_shortOptions == ':' ? ':' : kFailure; }

    const i32 m_argc;
    char** const m_argv;
    const char* m_shortOptions;
    const QXOptionRecord* const m_options;
    i32* const m_longIndex;
    u32 m_flags;
};

template <typename... Arguments>
i32 COptionScan::Fail(i32 wrong, const char* format, Arguments... arguments) const noexcept {
    QXGetOptionOption = wrong;
    if (QXGetOptionError != 0 && *m_shortOptions != ':') {
        PrintOptionMessage(format, arguments...);
    }
    return kFailure;
}

i32 COptionScan::Next() noexcept {
    ReadLeadingLetter();
    if (QXGetOptionIndex == 0) {
        QXGetOptionIndex = 1;
        QXGetOptionReset = 1;
    }
    QXGetOptionArgument = nullptr;
    if (QXGetOptionReset != 0) {
        ClearMarks();
    }
    if (const auto ended = FetchElement()) {
        return *ended;
    }
    if (MayBeLong()) {
        if (const auto found = LongOption()) {
            FinishElement();
            return *found;
        }
    }
    return ShortOption();
}

void COptionScan::ReadLeadingLetter() noexcept {
    if (*m_shortOptions == '-') {
        m_flags |= QX_OPTION_ALLARGS;
        ++m_shortOptions;
    } else if (*m_shortOptions == '+') {
        m_flags &= ~QX_OPTION_PERMUTE;
        ++m_shortOptions;
    }
}

// Nothing when s_place stands in an option element.
std::optional<i32> COptionScan::FetchElement() noexcept {
    while (QXGetOptionReset != 0 || *s_place == '\0') {
        QXGetOptionReset = 0;
        if (QXGetOptionIndex >= m_argc) {
            return EndOfVector();
        }
        char* const element = m_argv[QXGetOptionIndex];
        if (!IsOptionElement(element)) {
            if (const auto result = PassOver(element)) {
                return result;
            }
            continue;
        }
        if (s_nonoptStart != kUnset && s_nonoptEnd == kUnset) {
            s_nonoptEnd = QXGetOptionIndex;
        }
        s_place = element + 1;
        if (std::strcmp(element, "--") == 0) {
            return EndByDashes();
        }
    }
    return std::nullopt;
}

// An element that is no option. Nothing when the scan goes on behind it.
std::optional<i32> COptionScan::PassOver(char* element) noexcept {
    FinishElement();
    if ((m_flags & QX_OPTION_ALLARGS) != 0) {
        QXGetOptionArgument = element;
        ++QXGetOptionIndex;
        return kAllArgument;
    }
    if ((m_flags & QX_OPTION_PERMUTE) == 0 || IsPosixlyCorrect()) {
        return kEnd;
    }
    JoinBlocks();
    ++QXGetOptionIndex;
    return std::nullopt;
}

// Afterwards the marks describe one block, right behind the options so far.
void COptionScan::JoinBlocks() noexcept {
    if (s_nonoptStart == kUnset) {
        s_nonoptStart = QXGetOptionIndex;
    } else if (s_nonoptEnd != kUnset) {
        ExchangeBlocks(m_argv, s_nonoptStart, s_nonoptEnd, QXGetOptionIndex);
        s_nonoptStart += QXGetOptionIndex - s_nonoptEnd;
        s_nonoptEnd = kUnset;
    }
}

void COptionScan::MovePassedBehind() noexcept {
    ExchangeBlocks(m_argv, s_nonoptStart, s_nonoptEnd, QXGetOptionIndex);
    QXGetOptionIndex -= s_nonoptEnd - s_nonoptStart;
}

i32 COptionScan::EndOfVector() noexcept {
    FinishElement();
    if (s_nonoptEnd != kUnset) {
        MovePassedBehind();
    } else if (s_nonoptStart != kUnset) {
        QXGetOptionIndex = s_nonoptStart;
    }
    ClearMarks();
    return kEnd;
}

i32 COptionScan::EndByDashes() noexcept {
    ++QXGetOptionIndex;
    FinishElement();
    if (s_nonoptEnd != kUnset) {
        MovePassedBehind();
    }
    ClearMarks();
    return kEnd;
}

bool COptionScan::MayBeLong() const noexcept {
    return m_options != nullptr && s_place != m_argv[QXGetOptionIndex] &&
           (*s_place == '-' || (m_flags & QX_OPTION_LONGONLY) != 0);
}

// Nothing when the element may hold short options instead.
std::optional<i32> COptionScan::LongOption() noexcept {
    bool shortToo = false;
    s_dashPrefix = DashPrefix::Single;
    if (*s_place == '-') {
        ++s_place;
        s_dashPrefix = DashPrefix::Double;
    } else if (*s_place != ':') {
        shortToo = std::strchr(m_shortOptions, *s_place) != nullptr;
    }
    return SearchLong(shortToo);
}

// Nothing, with `shortToo`, when no record matches.
std::optional<i32> COptionScan::SearchLong(bool shortToo) noexcept {
    const LongText element(s_place);
    bool ambiguous = false;
    const QXOptionRecord* const record = FindRecord(element, shortToo, &ambiguous);
    if (record == nullptr && !ambiguous && shortToo) {
        return std::nullopt;
    }
    ++QXGetOptionIndex;
    if (ambiguous) {
        return Fail(0, QXGetOptionMsgAmbiguous, DashText(), static_cast<int>(element.nameLength),
                    element.text);
    }
    if (record == nullptr) {
        return Fail(0, QXGetOptionMsgUnrecognized, DashText(), element.text);
    }
    return TakeLong(*record, element);
}

// An exact match beats all partial ones.
const QXOptionRecord* COptionScan::FindRecord(const LongText& element, bool shortToo,
                                              bool* ambiguous) const noexcept {
    const QXOptionRecord* held = nullptr;
    bool several = false;
    for (const QXOptionRecord* record = m_options; record->name != nullptr; ++record) {
        if (!StartsWith(record->name, element.text, element.nameLength)) {
            continue;
        }
        if (record->name[element.nameLength] == '\0') {
            return record;
        }
        if (shortToo && element.nameLength == 1) {
            continue;
        }
        if (held == nullptr) {
            held = record;
        } else {
            several |= IsAnother(*record, *held);
        }
    }
    *ambiguous = several;
    return several ? nullptr : held;
}

// Two cut names for one thing are no ambiguity, unless a single dash may start a long option.
bool COptionScan::IsAnother(const QXOptionRecord& record,
                            const QXOptionRecord& held) const noexcept {
    return (m_flags & QX_OPTION_LONGONLY) != 0 || record.hasArgument != held.hasArgument ||
           record.value != held.value;
}

i32 COptionScan::TakeLong(const QXOptionRecord& record, const LongText& element) noexcept {
    if (record.hasArgument == 0 && element.value != nullptr) {
        return Fail(record.value, QXGetOptionMsgNoArgumentAllowed, DashText(),
                    static_cast<int>(element.nameLength), element.text);
    }
    if (record.hasArgument == 1) {
        // The next element is taken without a look at argc: a null one ends the vector.
        QXGetOptionArgument = element.value != nullptr ? const_cast<char*>(element.value)
                                                       : m_argv[QXGetOptionIndex++];
        if (QXGetOptionArgument == nullptr) {
            return MissingLongArgument(record, element.text);
        }
    }
    if (m_longIndex != nullptr) {
        *m_longIndex = static_cast<i32>(&record - m_options);
    }
    return record.value;
}

i32 COptionScan::MissingLongArgument(const QXOptionRecord& record, const char* text) noexcept {
    Fail(record.value, QXGetOptionMsgStringRequiresArgument, DashText(), text);
    --QXGetOptionIndex;
    return MissingResult();
}

i32 COptionScan::ShortOption() noexcept {
    const u8 letter = static_cast<u8>(*s_place++);
    const bool isLast = *s_place == '\0';
    const bool isNoOption = letter == ':' || (letter == '-' && !isLast);
    const char* const entry = isNoOption ? nullptr : std::strchr(m_shortOptions, letter);
    if (entry == nullptr) {
        return letter == '-' && isLast ? kEnd : UnknownLetter(letter);
    }
    if (m_options != nullptr && letter == 'W' && entry[1] == ';') {
        return LongByW();
    }
    if (entry[1] == ':') {
        return TakeArgument(letter, entry[2] == ':');
    }
    NextElementAtItsEnd();
    return letter;
}

i32 COptionScan::LongByW() noexcept {
    if (*s_place == '\0') {
        if (++QXGetOptionIndex >= m_argc) {
            return MissingArgument('W');
        }
        s_place = m_argv[QXGetOptionIndex];
    }
    s_dashPrefix = DashPrefix::W;
    const auto found = SearchLong(false);
    FinishElement();
    return *found;
}

i32 COptionScan::TakeArgument(u8 letter, bool optional) noexcept {
    QXGetOptionArgument = nullptr;
    if (*s_place != '\0') {
        QXGetOptionArgument = const_cast<char*>(s_place);
    } else if (!optional) {
        if (++QXGetOptionIndex >= m_argc) {
            return MissingArgument(letter);
        }
        QXGetOptionArgument = m_argv[QXGetOptionIndex];
    }
    ++QXGetOptionIndex;
    FinishElement();
    return letter;
}

i32 COptionScan::MissingArgument(u8 letter) noexcept {
    FinishElement();
    Fail(letter, QXGetOptionMsgCharacterRequiresArgument, letter);
    return MissingResult();
}

// The scan stays where it stands, so that the next call goes on with the next letter.
i32 COptionScan::UnknownLetter(u8 letter) noexcept {
    NextElementAtItsEnd();
    return Fail(letter, IsPosixlyCorrect() ? QXGetOptionMsgIllegal : QXGetOptionMsgInvalid, letter);
}

}  // namespace

i32 QXGetOptionInternal(i32 argc, char** argv, const char* shortOptions,
                        const QXOptionRecord* options, i32* longIndex, u32 flags) noexcept {
    if (shortOptions == nullptr) {
        return kEnd;
    }
    return COptionScan(argc, argv, shortOptions, options, longIndex, flags).Next();
}
