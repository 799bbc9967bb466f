// The handle of a child is the platform's own.
#include <qxcore/process.h>

#include <cstring>
#include <string_view>

#include "core/client_data.h"
#include "core/entry_guard.h"
#include "core/global_data.h"
#include "process/process_create.h"

namespace {

CQXProcessManager& Manager() {
    return CQXGlobalData::m_clientData->m_processManager;
}

void StoreCode(u32 code, uint32_t* out) {
    if (out != nullptr) {
        *out = code;
    }
}

const char* WithoutDirectories(const char* path) {
    const char* const separator = std::strrchr(path, '\\');
    return separator != nullptr ? separator + 1 : path;
}

}  // namespace

QXResult QXProcessCreate(const wchar* program, const wchar* arguments, const wchar* directory,
                         const wchar* const* environment, uint32_t, QXHandle* standardHandles,
                         QXHandle* process) {
    *process = QX_INVALID_HANDLE;
    return RunGuarded([&] {
        *process =
            CreateChild({program, arguments, directory, environment, standardHandles}, Manager());
        return QX_S_OK;
    });
}

QXResult QXProcessDetach(QXHandle process) {
    return RunGuarded([&] {
        Manager().Detach(process);
        return QX_S_OK;
    });
}

QXResult QXProcessGetExitCode(QXHandle process, uint32_t* exitCode) {
    return RunGuarded([&] {
        *exitCode = Manager().Collect(process);
        return QX_S_OK;
    });
}

QXResult QXProcessJoin(QXHandle process, uint32_t* exitCode) {
    return RunGuarded([&] {
        StoreCode(Manager().Join(process), exitCode);
        return QX_S_OK;
    });
}

QXResult QXProcessJoinChild(QXHandle* process, uint32_t* exitCode) {
    return RunGuarded([&] {
        StoreCode(Manager().JoinAny(process), exitCode);
        return QX_S_OK;
    });
}

QXHandle QXProcessGetHandle(void) {
    return platform::GetCurrentProcess();
}

uint32_t QXProcessGetID(void) {
    return platform::GetCurrentProcessId();
}

int16_t QXProcessGetName(uint32_t id, char* buffer, uint32_t length) {
    const platform::HANDLE process =
        platform::OpenProcess(platform::kProcessQueryAndRead, false, id);
    if (process == nullptr) {
        return 0;
    }
    char path[260];
    const bool known = platform::GetProcessImageFileNameA(process, path, sizeof path) != 0;
    if (known) {
        std::strncpy(buffer, WithoutDirectories(path), length);
        buffer[length - 1] = '\0';
    }
    platform::CloseHandle(process);
    return known;
}
