#include <qxcore/locale.h>
#include <qxcore/string.h>

#include "core/entry_guard.h"
#include "platform/locale.h"
#include "text/locale_names.h"
#include "text/text_strings.h"

namespace {

// "CP", five digits and the terminator.
constexpr i32 kLongestEncodingName = 8;

QXResult CopyLocaleName(const char* name, wchar* buffer, i32 size) {
    if (name == nullptr) {
        buffer[0] = 0;
        return QX_E_FAIL;
    }
    const std::u16string wide = QXNarrowToWideString(QXStrCmpA(name, "C") != 0 ? name : "en");
    const u64 units = static_cast<u64>(i64{size});
    if (wide.length() >= units) {
        return QX_E_BUFFERTOOSMALL;
    }
    QXStrNCpyW(buffer, wide.c_str(), units);
    return QX_S_OK;
}

}  // namespace

QXResult QXGetDefaultLocale(wchar* buffer, int32_t size) {
    return RunGuarded([=] {
        return CopyLocaleName(QXLocaleNameFromLCID(platform::GetUserDefaultLCID()), buffer, size);
    });
}

QXResult QXGetDefaultCharEncoding(wchar* buffer, int32_t size) {
    if (size < kLongestEncodingName) {
        return QX_E_BUFFERTOOSMALL;
    }
    WriteCodePageName(platform::GetACP(), buffer, size);
    return QX_S_OK;
}
