// The values, which all stores have alike, and what a store is:
//
//   kName, kOffers
//   static void Fill(directory, values)  makes the store's files in a directory of its own
//   Store(directory)                     opens what Fill made
//   static Place PlaceOf(number)         how the store names a value: made before anything is timed
//   static auto KeyOf(group)             likewise for a key
//   bool Get(place, data)                false for a value that is absent
//   bool Set(place, data)                one transaction
//   int Enumerate(key)                   copies the name and the data of each value; how many
//   bool OpenAndClose(key)               whether the key is there
#ifndef QX_BENCH_REGISTRY_STORES_VALUES_H
#define QX_BENCH_REGISTRY_STORES_VALUES_H

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

// Each offers what stands before it too.
enum class Offers { kReading, kWriting, kSeeingOthersWrite };

constexpr int kGroupSize = 1000;    // values of a key
constexpr int kAbsent = 1'000'000;  // values from this one on are in no store

using Data = std::array<char16_t, 16>;

constexpr Data kData = {u"a text of units"};

inline std::string_view BytesOf(const Data& data) {
    return {reinterpret_cast<const char*>(data.data()), sizeof data};
}

inline int GroupOf(int number) {
    return number % kAbsent / kGroupSize;
}

inline int GroupsOf(int values) {
    return (values + kGroupSize - 1) / kGroupSize;
}

inline std::u16string Numbered(const char* format, int number) {
    char text[32];
    const int length = std::snprintf(text, sizeof text, format, number);
    return {text, text + length};
}

inline std::u16string PathOf(int group) {
    return u"Software\\Example\\" + Numbered("Group %05d", group);
}

// One that is absent would stand behind the one of its number that is there.
inline std::u16string NameOf(int number) {
    return Numbered(number < kAbsent ? "Value %05d" : "Value %05d none", number % kGroupSize);
}

// The registry's stored form: units in upper case, the high byte first.
inline std::string Stored(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        const bool isLower = unit >= u'a' && unit <= u'z';
        bytes += static_cast<char>(unit >> 8);
        bytes += static_cast<char>((unit & 0xFF) - (isLower ? 'a' - 'A' : 0));
    }
    return bytes;
}

#endif
