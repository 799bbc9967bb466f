/**
 * @file
 * Shared libraries, and the modules that may use them.
 *
 * A module is whatever names itself by a token: any pointer-sized value that is unique to it, by
 * custom the address of something of its own. A module marks itself as initialised when it is ready
 * and takes the mark away before it is unloaded. The functions that take a token refuse their work
 * for a module without the mark, so that what its destructors still try does not run. A call that
 * is under way is not stopped.
 *
 * Any thread may call any function here.
 */
#ifndef QXCORE_MODULE_H
#define QXCORE_MODULE_H

#include <qxcore/guid.h>
#include <qxcore/result.h>

/** What a module names itself by. It is compared as a number and never followed; null is a token.
 */
typedef const void* QXModuleToken;

QX_BEGIN_DECLS

/**
 * Marks a module as initialised, or takes the mark away. Marks are not counted.
 *
 * @param token        the module.
 * @param initialized  16-bit flag: not 0 marks, 0 takes the mark away.
 * @return QX_S_OK, also where nothing changes; QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXModuleSetInitialized(QXModuleToken token, int16_t initialized);

/**
 * QXComCreateObject for a module.
 *
 * @param token        the module.
 * @param classID      as QXComCreateObject has it, and so are the others.
 * @param outer        see there.
 * @param interfaceID  see there.
 * @param result       see there.
 * @return QX_E_NOTINITIALIZED without a mark, and then nothing is touched; otherwise what
 *         QXComCreateObject returns.
 */
QX_API QXResult QXModuleComCreateObject(QXModuleToken token, const GUID* classID, void* outer,
                                        const GUID* interfaceID, void** result);

/**
 * QXComGetClassObject for a module.
 *
 * @param token        the module.
 * @param classID      as QXComGetClassObject has it, and so are the others.
 * @param interfaceID  see there.
 * @param result       see there.
 * @return QX_E_NOTINITIALIZED without a mark, and then nothing is touched; otherwise what
 *         QXComGetClassObject returns.
 */
QX_API QXResult QXModuleComGetClassObject(QXModuleToken token, const GUID* classID,
                                          const GUID* interfaceID, void** result);

/**
 * QXLibOpen for a module.
 *
 * @param token  the module.
 * @param path   as QXLibOpen has it.
 * @param out    see there.
 * @return QX_E_NOTINITIALIZED without a mark, and then nothing is touched; otherwise what QXLibOpen
 *         returns.
 */
QX_API QXResult QXModuleLibOpen(QXModuleToken token, const wchar* path, QXHandle* out);

/**
 * QXLibClose for a module.
 *
 * @param token    the module.
 * @param library  as QXLibClose has it.
 * @return QX_E_NOTINITIALIZED without a mark, and then nothing is touched; otherwise what
 *         QXLibClose returns.
 */
QX_API QXResult QXModuleLibClose(QXModuleToken token, QXHandle library);

/**
 * Opens a shared library. Openings are counted for each library.
 *
 * @param path  wide text. A name without a separator goes to the system's search; `\` separates as
 *              `/` does.
 * @param out   receives the library, QX_INVALID_HANDLE on failure. The caller owns one opening,
 *              until QXLibClose.
 * @return QX_S_OK; QX_E_FAIL if the file, or a library that it needs, is not found, or if it is not
 *         a library; QX_E_ACCESSDENIED; QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXLibOpen(const wchar* path, QXHandle* out);

/**
 * Gives one opening of a library up. The system may keep the library in memory all the same.
 *
 * @param library  what QXLibOpen gave.
 * @return QX_S_OK; QX_E_HANDLE for null; QX_E_FAIL if the system refuses.
 */
QX_API QXResult QXLibClose(QXHandle library);

/**
 * Finds a symbol that a library itself exports; the libraries that it needs are not searched.
 *
 * @param library  what QXLibOpen gave.
 * @param name     wide text.
 * @param out      receives the address, null on failure. It is valid while the library is open.
 * @return QX_S_OK; QX_E_FAIL if there is no such symbol, as for the empty name; QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXLibGetSymbol(QXHandle library, const wchar* name, void** out);

QX_END_DECLS

#endif
