// The system's loader of shared libraries. It has no state.
#ifndef QX_COMPONENT_LIBRARY_LOADER_H
#define QX_COMPONENT_LIBRARY_LOADER_H

#include <qxcore/base.h>

class CQXLibraryLoader {
  public:
    // These throw the mapped number of the system's failure.
    QXHandle Open(const char16_t* path);
    void Close(QXHandle library);
    void* GetSymbol(QXHandle library, const char16_t* name);
};

#endif
