// The library's identity as a module.
#ifndef QX_CORE_ENTRY_H
#define QX_CORE_ENTRY_H

// The token by which the library registers itself with its own module manager: the address of its
// entry function.
extern void* const s_moduleToken;

#endif
