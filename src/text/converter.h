// A named character encoding, opened: the object behind the pointer that clients hold.
#ifndef QX_TEXT_CONVERTER_H
#define QX_TEXT_CONVERTER_H

#include <qxcore/converter.h>
#include <unicode/ucnv.h>

#include <string>

#include "platform/types.h"

// Has no direction: one object may convert both ways.
struct QXEncConverter {
    // Always leaves an object; one for which nothing at all opened has no converter.
    explicit QXEncConverter(const wchar* encodingName);
    ~QXEncConverter();
    QXEncConverter(const QXEncConverter&) = delete;
    QXEncConverter& operator=(const QXEncConverter&) = delete;

    // 0 stands for U+FFFD; a negative value makes bad input stop the conversion.
    QXResult SetSubstitution(i32 codePoint) noexcept;

    // Both move the cursors as far as they get, also when they fail. Without a converter the first
    // gives QX_E_NOCONVERTER and the second ends the process.
    QXResult ToWide(const char** source, const char* sourceLimit, wchar** target,
                    wchar* targetLimit, bool flush) noexcept;
    QXResult FromWide(const wchar** source, const wchar* sourceLimit, char** target,
                      char* targetLimit, bool flush) noexcept;

    // From this encoding to another: all of the source, as ToWide and FromWide would convert it in
    // passes, but at once. False if there is bad input, or no room, or if only passes are sure to
    // give the same or as fast: both objects are then fit for a new text, the source is as it was,
    // and the cursors stand where they stood.
    bool ConvertDirectly(QXEncConverter& to, const char** source, const char* sourceLimit,
                         char** target, char* targetLimit, wchar* pivot,
                         wchar* pivotLimit) noexcept;

    QXResult FlushToWide(wchar** target, wchar* targetLimit) noexcept;
    QXResult FlushFromWide(char** target, char* targetLimit) noexcept;

  private:
    QXResult StopAtBadInput() noexcept;

    // As asked for, also when another encoding was opened in its place.
    const std::u16string m_name;
    UConverter* m_converter = nullptr;
    // For a second way of converting the same text. Nothing opens one.
    UConverter* m_secondConverter = nullptr;
};

// Tells ICU where its data is. The number of converters that it offers.
i32 InitConverters(const char* dataDirectory) noexcept;

#endif
