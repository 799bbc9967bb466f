// What the text counter and its users agree on: the ids and the interface.
#ifndef EXAMPLES_TEXT_COUNTER_H
#define EXAMPLES_TEXT_COUNTER_H

#include <qxcore.h>

// {6B1F0E52-3C8D-4E67-9A57-0D6B7D2C4A11}
inline constexpr GUID kTextCounterClass = {
    0x6B1F0E52, 0x3C8D, 0x4E67, {0x9A, 0x57, 0x0D, 0x6B, 0x7D, 0x2C, 0x4A, 0x11}};

// {6B1F0E53-3C8D-4E67-9A57-0D6B7D2C4A11}
inline constexpr GUID kTextCounterInterface = {
    0x6B1F0E53, 0x3C8D, 0x4E67, {0x9A, 0x57, 0x0D, 0x6B, 0x7D, 0x2C, 0x4A, 0x11}};

inline constexpr char16_t kTextCounterProgramID[] = u"Examples.TextCounter";

struct TextCounts {
    uint64_t lines;
    uint64_t words;
    uint64_t codePoints;
    uint64_t bytes;
};

class ITextCounter : public IQXUnknown {
  public:
    // Counts a text of `size` bytes in an encoding that is named as for QXEncToW_Open. A sequence
    // of bytes that is no character counts as one. The counts are untouched on failure.
    virtual QXResult Count(const void* text, size_t size, const wchar* encoding,
                           TextCounts* counts) = 0;

  protected:
    ~ITextCounter() = default;
};

#endif
