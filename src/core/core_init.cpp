#include "core/core_init.h"

#include <clocale>
#include <initializer_list>
#include <new>

#include "core/exception.h"
#include "core/global_data.h"
#include "core/system_time.h"

constinit u32 s_isWinNT = 0;
constinit platform::IMalloc* s_pMalloc = nullptr;

namespace {

// Plain: the loader serialises the calls.
constinit i32 s_initCount = 0;

// Places for the set-up that a platform may need. No platform needs any so far.
QXResult InitPlatformFirst() {
    return QX_S_OK;
}
QXResult InitPlatformSecond() {
    return QX_S_OK;
}
QXResult TermPlatformFirst() {
    return QX_S_OK;
}
QXResult TermPlatformSecond() {
    return QX_S_OK;
}

// Not the entry guard: a code that is no failure lets the initialisation go on.
QXResult ConstructGlobals() {
    try {
        QXGlobalsConstruct();
    } catch (EQXCoreException& exception) {
        return QX_FAILED(exception.m_result) ? exception.m_result : QX_S_OK;
    } catch (std::bad_alloc&) {
        return QX_E_OUTOFMEMORY;
    } catch (...) {
        return QX_E_FAIL;
    }
    return QX_S_OK;
}

void DestroyGlobals() {
    try {
        QXGlobalsDestroy();
    } catch (...) {
        // The termination goes on, and its result does not tell.
    }
}

}  // namespace

QXResult QXCoreInit() {
    ++s_initCount;
    if (s_initCount != 1) {
        return QX_S_OK;
    }
    std::setlocale(LC_ALL, "");
    s_isWinNT = 1;
    QXResolveTimeFunctions();
    for (const auto step : {ConstructGlobals, InitPlatformFirst, InitPlatformSecond}) {
        const QXResult result = step();
        if (QX_FAILED(result)) {
            return result;
        }
    }
    return platform::CoGetMalloc(1, &s_pMalloc);
}

QXResult QXCoreTerm() {
    if (s_initCount <= 0) {
        return QX_E_FAIL;
    }
    --s_initCount;
    if (s_initCount != 0) {
        return QX_S_OK;
    }
    if (s_pMalloc != nullptr && s_pMalloc->Release() == 0) {
        s_pMalloc = nullptr;
    }
    QXResult overall = QX_S_OK;
    for (const auto step : {TermPlatformFirst, TermPlatformSecond}) {
        if (QX_FAILED(step())) {
            overall = QX_E_FAIL;
        }
    }
    DestroyGlobals();
    return overall;
}
