// The registry's operations on the ini file "qxregistry.ini" in the current directory. A key is a
// section, named after the root and the key's path; all values are texts.
#ifndef QX_CONFIG_INI_REGISTRY_H
#define QX_CONFIG_INI_REGISTRY_H

#include <qxcore/base.h>

#include <string>

#include "platform/types.h"

// The file is loaded by the first operation behind IniRegistryInit and forgotten by
// IniRegistryTerm. These two are called by one thread at a time, and nothing else outside of them.
void IniRegistryInit() noexcept;
void IniRegistryTerm() noexcept;

// Throws QX_E_INVALIDARG for an unknown root, and what QXGetUserName fails with: the current user's
// root has a section for each user.
std::u16string IniRegistrySectionName(u32 root, const wchar* path);

// Deletes the file if an operation has opened it. A file that is not there is a success.
QXResult IniRegistryDeleteFile();

// Each of the following runs under the guard and may also give QX_E_OUTOFMEMORY, what the semaphore
// of the file fails with, and for a root what IniRegistrySectionName throws.

// The handle is the invalid one on failure, and the caller's until IniRegistryCloseEnum.
QXResult IniRegistryOpenKeyEnum(u32 root, const wchar* path, QXHandle* handle);
// QX_E_NOTFOUND if there is no such key.
QXResult IniRegistryOpenValueEnum(u32 root, const wchar* path, QXHandle* handle);

// QX_E_EOF at the end. `*length` goes in as the capacity in units and comes out as the units
// without the terminator. A name that does not fit is cut, without a terminator, and lost:
// QX_E_BUFFERTOOSMALL.
QXResult IniRegistryEnumNextKey(QXHandle handle, wchar* name, u32* length);
// The same for values. `type` may be null. With `data`, which must have room for the value and its
// terminator, `dataLength` receives the bytes; the result is then that of reading the value,
// QX_S_OK or QX_E_FAIL.
QXResult IniRegistryEnumNextValue(QXHandle handle, wchar* name, u32* length, u32* type, void* data,
                                  u32* dataLength);
// Null is accepted.
QXResult IniRegistryCloseEnum(QXHandle handle);

// QX_E_NOTFOUND if there is no such value. `data` must have room for it.
QXResult IniRegistryGetValue(u32 root, const wchar* path, const wchar* name, u32* type, void* data,
                             u32* length);
// QX_E_NOTIMPL for a type that is no text. The data is terminated text, whatever `length` says.
// A file that cannot be written is a success.
QXResult IniRegistrySetValue(u32 root, const wchar* path, const wchar* name, u32 type,
                             const void* data, u32 length);

#endif
