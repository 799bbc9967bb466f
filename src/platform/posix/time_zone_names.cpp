#include "time_zone_names.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unicode/ucal.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "cancellation.h"
#include "platform/errors.h"
#include "platform/multibyte.h"
#include "utf8.h"

// The name that the macro stands for, which has ICU's version in it.
#define QX_NAME_OF(symbol) QX_TEXT_OF(symbol)
#define QX_TEXT_OF(symbol) #symbol

namespace platform {
namespace {

// ICU's calendars. Their library costs more to load than all else together, so it is bound when a
// name is asked for. It stays loaded from then on, and binding it again is cheap.
class IcuCalendars {
  public:
    IcuCalendars() noexcept
        : m_library(::dlopen("libicui18n.so." QX_NAME_OF(U_ICU_VERSION_MAJOR_NUM),
                             RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
        Bind(QX_NAME_OF(ucal_getCanonicalTimeZoneID), m_getCanonicalId);
        Bind(QX_NAME_OF(ucal_open), m_open);
        Bind(QX_NAME_OF(ucal_getTimeZoneDisplayName), m_getDisplayName);
        Bind(QX_NAME_OF(ucal_close), m_close);
    }
    ~IcuCalendars() {
        if (m_library != nullptr) {
            ::dlclose(m_library);
        }
    }
    IcuCalendars(const IcuCalendars&) = delete;
    IcuCalendars& operator=(const IcuCalendars&) = delete;

    bool IsComplete() const noexcept { return m_isComplete; }

    decltype(&::ucal_getCanonicalTimeZoneID) m_getCanonicalId = nullptr;
    decltype(&::ucal_open) m_open = nullptr;
    decltype(&::ucal_getTimeZoneDisplayName) m_getDisplayName = nullptr;
    decltype(&::ucal_close) m_close = nullptr;

  private:
    template <typename Function>
    void Bind(const char* name, Function& function) noexcept {
        function =
            m_library != nullptr ? reinterpret_cast<Function>(::dlsym(m_library, name)) : nullptr;
        m_isComplete &= function != nullptr;
    }

    void* m_library;
    bool m_isComplete = true;
};

constexpr std::size_t kLongestId = 100;
constexpr i32 kLongestName = 128;

// "Europe/Berlin" from the path of the file that describes it.
std::string_view IdInPath(std::string_view path) noexcept {
    constexpr std::string_view kDirectory = "zoneinfo/";
    const std::size_t directory = path.rfind(kDirectory);
    return directory != path.npos ? path.substr(directory + kDirectory.size()) : path;
}

// The environment says which zone the process is in, otherwise the system does. Empty if neither
// does so in a name.
std::string_view FindZoneId(char (&buffer)[kLongestId]) noexcept {
    if (const char* const variable = ::getenv("TZ")) {
        if (*variable == '\0') {
            return "UTC";
        }
        return IdInPath(variable + (*variable == ':' ? 1 : 0));
    }
    const ssize_t length = ::readlink("/etc/localtime", buffer, sizeof buffer);
    return IdInPath({buffer, static_cast<std::size_t>(std::max<ssize_t>(length, 0))});
}

// At most so many units as have a place beside the terminator, and no half of a pair.
void StoreName(const char16_t* name, i32 length, char16_t* target) noexcept {
    i32 kept = std::min(length, kZoneNameUnits - 1);
    if (kept < length && utf::IsLead(name[kept - 1])) {
        --kept;
    }
    *std::copy_n(name, kept, target) = 0;
}

void StoreAbbreviation(const char* name, char16_t* target) noexcept {
    const std::size_t bytes = strnlen(name, kZoneNameUnits - 1);
    target[MultiByteToWideChar(name, static_cast<i32>(bytes), target, kZoneNameUnits - 1)] = 0;
}

bool StoreDisplayName(const IcuCalendars& icu, const UCalendar* calendar,
                      UCalendarDisplayNameType kind, char16_t* target) noexcept {
    char16_t name[kLongestName];
    UErrorCode status = U_ZERO_ERROR;
    const i32 length = icu.m_getDisplayName(calendar, kind, nullptr, name, kLongestName, &status);
    if (U_FAILURE(status) || length <= 0 || length > kLongestName) {
        return false;
    }
    StoreName(name, length, target);
    return true;
}

// A text such as "GMT+3" has the opposite meaning for ICU and for the C library, so only zones that
// both have by their names count.
bool IsKnown(const IcuCalendars& icu, const char16_t* id, i32 length) noexcept {
    char16_t canonical[kLongestId];
    UBool isSystemId = 0;
    UErrorCode status = U_ZERO_ERROR;
    icu.m_getCanonicalId(id, length, canonical, static_cast<i32>(kLongestId), &isSystemId, &status);
    return U_SUCCESS(status) && isSystemId != 0;
}

bool FindIcuNames(std::string_view id, char16_t* standardName, char16_t* daylightName) noexcept {
    char16_t wideId[kLongestId];
    if (id.empty() || id.size() > kLongestId) {
        return false;
    }
    const i32 length = MultiByteToWideChar(id.data(), static_cast<i32>(id.size()), wideId,
                                           static_cast<i32>(kLongestId));
    const IcuCalendars icu;
    if (!icu.IsComplete() || !IsKnown(icu, wideId, length)) {
        return false;
    }
    UErrorCode status = U_ZERO_ERROR;
    UCalendar* const calendar = icu.m_open(wideId, length, nullptr, UCAL_GREGORIAN, &status);
    if (U_FAILURE(status)) {
        return false;
    }
    const bool found = StoreDisplayName(icu, calendar, UCAL_STANDARD, standardName) &&
                       StoreDisplayName(icu, calendar, UCAL_DST, daylightName);
    icu.m_close(calendar);
    return found;
}

}  // namespace

void FindTimeZoneNames(const char* standard, char16_t* standardName, const char* daylight,
                       char16_t* daylightName) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff cancellationOff;
    char buffer[kLongestId];
    if (!FindIcuNames(FindZoneId(buffer), standardName, daylightName)) {
        StoreAbbreviation(standard, standardName);
        StoreAbbreviation(daylight, daylightName);
    }
}

}  // namespace platform
