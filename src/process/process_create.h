// The start of a child.
#ifndef QX_PROCESS_PROCESS_CREATE_H
#define QX_PROCESS_PROCESS_CREATE_H

#include <qxcore/base.h>

#include "process/process_manager.h"

struct ChildRequest {
    const wchar* m_program;
    const wchar* m_arguments;           // or null
    const wchar* m_directory;           // or null
    const wchar* const* m_environment;  // or null
    QXHandle* m_standardHandles;        // or null
};

// Puts the new child on record and returns its handle. Throws what fails.
platform::HANDLE CreateChild(const ChildRequest& request, CQXProcessManager& manager);

#endif
