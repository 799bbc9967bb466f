// A key's value: what it is named, how it is typed, which bytes it has.
#ifndef QXREG_VALUE_H
#define QXREG_VALUE_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// The native numbers of the types, which registry editors' files show too.
enum NativeType : uint32_t {
    kNativeNone = 0,
    kNativeString = 1,
    kNativeExpand = 2,
    kNativeBinary = 3,
    kNativeDword = 4,
    kNativeMulti = 7,
    kNativeQword = 11,
};

struct Value {
    std::u16string m_name;  // empty for the key's default value
    uint32_t m_type;        // native
    std::string m_bytes;

    bool operator==(const Value&) const = default;
};

// The bytes of text as the registry keeps it, without anything added, and back. An odd byte at the
// end is left out.
std::string BytesOf(std::u16string_view text);
std::u16string TextOf(std::string_view bytes);

std::string TypeName(uint32_t native);

// The number by which the library writes a type; nothing for a type that it can only read.
std::optional<uint32_t> WrittenType(uint32_t native);

// A value from the words of a command line. Throws WrongUse for what does not read as that type.
Value MakeValue(std::string_view name, std::string_view type, std::span<char* const> words);

// The data alone. Of several texts each ends with `separator`, but the last.
std::string ShownData(const Value& value, std::string_view separator, bool isExact);

// The data as a program wants it that asks for one value: text as it is, and a line feed.
std::string PrintedData(const Value& value);

#endif
