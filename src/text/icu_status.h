// What a status of ICU means to the library's callers.
#ifndef QX_TEXT_ICU_STATUS_H
#define QX_TEXT_ICU_STATUS_H

#include <qxcore/result.h>
#include <unicode/utypes.h>

// Warnings, which are negative, are successes.
inline QXResult ResultFromIcu(UErrorCode status) noexcept {
    if (U_SUCCESS(status)) {
        return QX_S_OK;
    }
    switch (status) {
        case U_INVALID_CHAR_FOUND:
        case U_TRUNCATED_CHAR_FOUND:
        case U_ILLEGAL_CHAR_FOUND:
            return QX_E_ILLEGALCHAR;
        case U_BUFFER_OVERFLOW_ERROR:
            return QX_E_BUFFERTOOSMALL;
        default:
            return QX_E_FAIL;
    }
}

#endif
