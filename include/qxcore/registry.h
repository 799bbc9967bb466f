/**
 * @file
 * The native registry: trees of keys, each with named and typed values.
 *
 * Paths and names are terminated wide text. Only a backslash separates the components of a path;
 * leading, trailing and doubled separators count for nothing, and the empty path means the root
 * itself. Names compare without case and keep the spelling that they were made with. The empty
 * value name means a key's default value. A key's name has at most 255 units, a value's 16383.
 *
 * Each function opens and closes what it needs; no key stays open but inside an enumeration. Any
 * thread may call, also at the same time as other processes; only the handle of an enumeration
 * belongs to one thread at a time. A function that finds other processes in its way waits for them,
 * for five seconds at the most: then it gives QX_E_FAIL. After a fork the child works on. Signal
 * handlers must not call: what they interrupt may hold what they need, and they would hang.
 *
 * On the reference platform this is the system's registry. Elsewhere each user has a file in
 * `$XDG_CONFIG_HOME/w64qxcore6` or `~/.config/w64qxcore6` (user.db), and the machine one in
 * `/var/lib/w64qxcore6` (machine.db), which everybody may read. The environment variable
 * W64QXCORE6_REGISTRY names a directory that holds both instead. A HOME or XDG_CONFIG_HOME that is
 * not an absolute path does not count. The place is remembered once it was found, until the process
 * changes its effective ids: each user sees what he may see, also after `setuid`. Programs that run
 * with more rights than their caller take nothing from the environment; there no reference in a
 * value is expanded either. Reading makes no file. A file whose path has more than 504 bytes cannot
 * be used (QX_E_FAIL). A file that is damaged, or is something else, is never overwritten: all
 * functions fail on it.
 *
 * **Replacing a file.** Beside each file lie its log (`-wal`) and the log's index (`-shm`). A file
 * that is removed, or that another one is moved onto (`rename`, `mv`), is followed: by what writes
 * at once, by what reads within a second; an enumeration of the old file ends. The side files of
 * the old one go with it. Side files that are removed or cut in use are noticed too; what was in
 * the log alone is then lost. What cannot be told is a copy over the file in its place (`cp`), and
 * a file that is put there, in whatever way, when nobody who knows the old one is running but its
 * log is still there, as after a kill: the old log would be taken for the new file's. So the right
 * way is `qxreg backup` and `qxreg restore`, which take the log along and stop nobody; or else to
 * stop who uses the registry, remove the three files, and then move the new one there.
 *
 * One process may have several copies of this library, but only one of SQLite: two copies of that
 * in one process (as `dlmopen` makes them) undo each other's locks on a file, and lose values.
 */
#ifndef QXCORE_REGISTRY_H
#define QXCORE_REGISTRY_H

#include <qxcore/base.h>

/** The roots. The two views of a root are trees of their own. */
#define QX_HKEY_CLASSES 0    /**< classes, 32-bit view */
#define QX_HKEY_CONFIG 1     /**< the machine's configuration, 32-bit view */
#define QX_HKEY_USER 2       /**< the current user's configuration */
#define QX_HKEY_CLASSES_64 3 /**< classes, 64-bit view */
#define QX_HKEY_CONFIG_64 4  /**< the machine's configuration, 64-bit view */

/** The types of values. */
#define QX_REG_STRING 0u        /**< wide text */
#define QX_REG_DWORD 1u         /**< 32-bit number */
#define QX_REG_QWORD 2u         /**< 64-bit number: can be read, not written */
#define QX_REG_BINARY 3u        /**< bytes */
#define QX_REG_EXPAND_STRING 4u /**< wide text with references `%NAME%` to the environment */
#define QX_REG_MULTI_STRING 5u  /**< texts in a row, an empty one at the end */

/** The kinds of stores that QXRegistryMigrate knows. */
#define QX_REGSTORE_NATIVE 0u /**< the native registry */
#define QX_REGSTORE_INI 1u    /**< the file "qxregistry.ini" in the current directory */

QX_BEGIN_DECLS

/**
 * Reads a value.
 *
 * With a type pointer, text with environment references is expanded in place: names that are not
 * set and single percent signs stay, and the length is still that of the stored text. Without a
 * type pointer the bytes come as they are stored.
 *
 * @param root    a root number.
 * @param path    the key's path.
 * @param name    the value's name.
 * @param type    receives the type; may be null. QX_REG_EXPAND_STRING reads as QX_REG_STRING, and
 *                the native type "none" as QX_REG_BINARY. A native type without a number here comes
 *                as the native number; so does every type when the buffer is too small.
 * @param data    receives the bytes; null asks for their number only.
 * @param length  in: bytes at `data`; out: bytes stored, a text's terminator included if it was
 *                stored. May be null if `data` is.
 * @return QX_S_OK; QX_E_NOTFOUND for no such key or value; QX_E_ACCESSDENIED; QX_E_HANDLE for an
 *         unknown root; QX_E_OUTOFMEMORY; QX_E_FAIL if the buffer is too small (`*length` is then
 *         what it takes), if the expanded text does not fit (the text is then there as stored, the
 *         type set), for a length pointer of null with data, for a name that is too long, and for a
 *         store that cannot be read.
 */
QX_API QXResult QXRegistryGetValue(int32_t root, const wchar* path, const wchar* name,
                                   uint32_t* type, void* data, uint32_t* length);

/**
 * Writes a value, and makes the key and what is missing along its path.
 *
 * @param root    a root number.
 * @param path    the key's path.
 * @param name    the value's name. A value that exists is replaced in its place.
 * @param type    a QX_REG_ type; QX_REG_QWORD is refused.
 * @param data    the bytes; may be null if `length` is 0.
 * @param length  bytes to store. Nothing is added: a text's terminator is stored only if counted.
 * @return QX_S_OK; QX_E_INVALIDARG for a type that cannot be written; QX_E_ACCESSDENIED;
 *         QX_E_NOTFOUND if the store's directory is missing; QX_E_HANDLE for an unknown root;
 *         QX_E_OUTOFMEMORY; QX_E_FAIL for a name that is too long, a full disk, or a store that
 *         cannot be used.
 */
QX_API QXResult QXRegistrySetValue(int32_t root, const wchar* path, const wchar* name,
                                   uint32_t type, const void* data, uint32_t length);

/**
 * Deletes a key with all that is below it.
 *
 * The empty path empties a root of its keys; the root itself stays, which counts as one failing
 * step, so that the result is then not 0 (access denied is one of its bits).
 *
 * @param root  a root number.
 * @param path  the key's path.
 * @return 0 on success; QX_E_FAIL if the key is missing or cannot be opened; QX_E_OUTOFMEMORY if
 * the keys below cannot be listed. Otherwise some step failed, and the result is a mix, by bitwise
 * or, of positive native error numbers. So only 0 is success here: do not test with QX_SUCCEEDED.
 * Keys whose names have 255 units stop the deletion of their siblings behind them.
 */
QX_API QXResult QXRegistryDeleteKey(int32_t root, const wchar* path);

/**
 * Deletes a value.
 *
 * @param root  a root number.
 * @param path  the key's path.
 * @param name  the value's name.
 * @return QX_S_OK; QX_E_NOTFOUND for no such key or value; QX_E_ACCESSDENIED; QX_E_HANDLE for an
 *         unknown root; QX_E_OUTOFMEMORY; QX_E_FAIL.
 */
QX_API QXResult QXRegistryDeleteValue(int32_t root, const wchar* path, const wchar* name);

/**
 * Begins an enumeration of the keys below a key, in the order of their names without case.
 *
 * @param root    a root number.
 * @param path    the key's path.
 * @param handle  receives the enumeration, or QX_INVALID_HANDLE on failure. The caller owns it
 *                until QXRegistryCloseEnum.
 * @return QX_S_OK; QX_E_FAIL if the key cannot be opened, whatever the reason; QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXRegistryOpenKeyEnum(int32_t root, const wchar* path, QXHandle* handle);

/**
 * Begins an enumeration of a key's values, in the order in which they were first set.
 *
 * @param root    a root number.
 * @param path    the key's path.
 * @param handle  receives the enumeration, or QX_INVALID_HANDLE on failure. The caller owns it
 *                until QXRegistryCloseEnum.
 * @return QX_S_OK; QX_E_NOTFOUND for no such key; QX_E_ACCESSDENIED; QX_E_HANDLE for an unknown
 *         root; QX_E_OUTOFMEMORY; QX_E_FAIL.
 */
QX_API QXResult QXRegistryOpenValueEnum(int32_t root, const wchar* path, QXHandle* handle);

/**
 * Gives the next key's name.
 *
 * A step that fails moves on too. When the key is deleted meanwhile the enumeration is at its end,
 * also if there is a new key of that name.
 *
 * @param handle  an enumeration of keys.
 * @param name    receives the name and its terminator.
 * @param length  in: capacity in units; out: units without the terminator.
 * @return QX_S_OK; QX_E_FAIL at the end and if the name does not fit; QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXRegistryEnumNextKey(QXHandle handle, wchar* name, uint32_t* length);

/**
 * Gives the next value. Text is not expanded.
 *
 * A step that fails moves on too.
 *
 * @param handle      an enumeration of values.
 * @param name        receives the name and its terminator.
 * @param nameLength  in: capacity in units; out: units without the terminator.
 * @param type        receives the type; not null. Left alone for a type that is not QX_REG_STRING
 *                    (with references or without), QX_REG_BINARY, QX_REG_DWORD or
 *                    QX_REG_MULTI_STRING.
 * @param data        receives the bytes; null asks for their number only.
 * @param length      in: bytes at `data`; out: bytes stored; not null.
 * @return QX_S_OK; QX_E_FAIL at the end, and if the name or the data do not fit;
 *         QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXRegistryEnumNextValue(QXHandle handle, wchar* name, uint32_t* nameLength,
                                        uint32_t* type, void* data, uint32_t* length);

/**
 * Ends an enumeration.
 *
 * @param handle  the enumeration, or null. QX_INVALID_HANDLE is not allowed.
 * @return QX_S_OK, always.
 */
QX_API QXResult QXRegistryCloseEnum(QXHandle handle);

/**
 * Copies all values of all roots from one store to another.
 *
 * A value of the same name is overwritten there; nothing else in the destination changes, and keys
 * without values do not move. What cannot be read or is not accepted is left out, and the result
 * does not tell: names of 256 units and more (which end the walk of their key), values of more than
 * 2048 bytes, and from the native store to the file all but text. When the ini file was the source
 * and the copy has run through, the file is deleted, whether all of it arrived or not. A native
 * source stays.
 *
 * The ini file is text in the process's narrow encoding. A section, "[name]" in a line of its own,
 * is a key: "QX_HKEY_CLASSES", "QX_HKEY_CONFIG", "QX_HKEY_CLASSES_64", "QX_HKEY_CONFIG_64" or
 * "QX_HKEY_USER\", the user's name, and then a separator and the path. Each line "name=value" is a
 * text value, and an empty line ends the section. Comments, which begin with "#", ":" or ";", are
 * for between sections; a line inside a section that holds no "=" ends the reading of the file.
 * Other users' sections, sections of other names, and prefixes in another case than above do not
 * move; they go with the file. Line ends of either kind are read. Lines of more than 510 bytes,
 * names with "=", and spaces at the ends of names and values do not survive the way through the
 * file, nor do names and values with line ends.
 *
 * One migration at a time in a process, and none in a child that was forked during one. Waits for
 * as long as another process works on such a file, whichever.
 *
 * @param sourceKind       a QX_REGSTORE_ kind.
 * @param reserved1        not used.
 * @param destinationKind  a QX_REGSTORE_ kind; it may be that of the source.
 * @param reserved2        not used.
 * @return QX_S_OK, also without a file to read; QX_E_BADKEY for an unknown kind: then nothing was
 *         done; the failure of a native key that cannot be listed, QX_E_FAIL whatever the reason;
 *         what the file's semaphore or QXGetUserName fails with; QX_E_OUTOFMEMORY. After a failure
 *         what was copied stays, and the file is not deleted.
 */
QX_API QXResult QXRegistryMigrate(uint32_t sourceKind, uintptr_t reserved1,
                                  uint32_t destinationKind, uintptr_t reserved2);

QX_END_DECLS

#endif
