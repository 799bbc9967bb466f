// The guard round the body of an export that can throw.
#ifndef QX_CORE_ENTRY_GUARD_H
#define QX_CORE_ENTRY_GUARD_H

#include <new>
#include <utility>

#include "core/exception.h"

// Runs the body and returns what it returns, or the code of what it threw.
template <typename Body>
QXResult RunGuarded(Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (EQXCoreException& exception) {
        return exception.m_result;
    } catch (std::bad_alloc&) {
        return QX_E_OUTOFMEMORY;
    } catch (...) {
        return QX_E_FAIL;
    }
}

#endif
