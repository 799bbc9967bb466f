/**
 * @file
 * The component model: classes found through the registry, factories that are cached, objects.
 *
 * A class is registered by two keys under the root QX_HKEY_CLASSES_64. The default value (the one
 * with the empty name) of
 * @verbatim CLSID\{class id}\InprocServer32 @endverbatim
 * names the component library, which exports "DllGetClassObject" (qxcore/unknown.h); the default
 * value of
 * @verbatim program id\CLSID @endverbatim
 * is the class id as text.
 *
 * Any thread may call any function here. A first lookup of a class blocks all other lookups until
 * the library is loaded and has answered. A request to cancel the thread waits while a component
 * runs on behalf of the cache. The child of a fork may find the cache locked for good if another
 * thread of the parent was at a lookup: it makes objects only if the parent had one thread. A
 * library must not look a class up in its constructors or its initialisation: the system's loader
 * then waits for the lookup of another thread, which waits for the loader.
 */
#ifndef QXCORE_COMPONENT_H
#define QXCORE_COMPONENT_H

#include <qxcore/guid.h>
#include <qxcore/result.h>
#include <qxcore/unknown.h>

QX_BEGIN_DECLS

/**
 * Gives the class factory of a class.
 *
 * The first lookup of a class reads the registry, opens the library and asks it; the object that
 * it returns is cached. Later lookups ask that object for the interface and neither read nor open.
 * The library's DllGetClassObject may itself call this function.
 *
 * @param classID      the class.
 * @param interfaceID  the interface that is wanted of the factory, as a rule QX_IID_CLASS_FACTORY.
 * @param result       receives the interface, null on failure. The caller owns one reference.
 * @return QX_S_OK;
 *         QX_E_NOTREGISTERED if the registry does not name a library, for whatever reason;
 *         the mapped number of the loader if the library does not load (QX_E_FAIL, see
 *         qxcore/module.h) or lacks the export;
 *         what the library, or the cached object, answered if that is negative, or QX_E_FAIL if it
 *         threw an exception;
 *         QX_E_NOTINITIALIZED for a class that is not cached, while this library is being unloaded;
 *         QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXComGetClassObject(const GUID* classID, const GUID* interfaceID, void** result);

/**
 * Makes an object of a class.
 *
 * @param classID      the class.
 * @param outer        handed to the factory: the object that the new one is to be part of, or null.
 * @param interfaceID  the interface that is wanted of the object.
 * @param result       receives the interface; untouched if the factory is not found. The caller
 *                     owns one reference.
 * @return what the factory's CreateInstance returns, or a failure of QXComGetClassObject.
 */
QX_API QXResult QXComCreateObject(const GUID* classID, void* outer, const GUID* interfaceID,
                                  void** result);

/**
 * Makes an object of the class that a program id names.
 *
 * @param programID    wide text; see QXComClassIDFromProgID.
 * @param outer        as QXComCreateObject has it.
 * @param interfaceID  see there.
 * @param result       see there.
 * @return a failure of QXComClassIDFromProgID, or what QXComCreateObject returns.
 */
QX_API QXResult QXComCreateObjectByProgID(const wchar* programID, void* outer,
                                          const GUID* interfaceID, void** result);

/**
 * Finds the class id that a program id stands for.
 *
 * @param programID  wide text of at most 257 units.
 * @param classID    receives the class id; untouched on failure.
 * @return QX_S_OK; QX_E_NOTREGISTERED for an unknown program id; QX_E_INVALIDARG if the registered
 *         text is no class id; any other failure of QXRegistryGetValue.
 */
QX_API QXResult QXComClassIDFromProgID(const wchar* programID, GUID* classID);

/**
 * Drops all cached factories and closes their libraries.
 *
 * Objects that callers hold go on, but a library whose last opening the cache held may leave the
 * memory.
 *
 * A factory's Release runs here, under the lock of the cache.
 *
 * @return QX_S_OK; QX_E_FAIL if a Release threw an exception: the cache is empty all the same.
 */
QX_API QXResult QXComFlushFactoryCache(void);

/**
 * Asks a component object for an interface.
 *
 * @param object       the object.
 * @param interfaceID  the interface that is wanted.
 * @param result       receives it.
 * @return what the object's QueryInterface returns.
 */
QX_API QXResult IQXUnknown_QueryInterface(void* object, const GUID* interfaceID, void** result);

/**
 * Adds a reference to a component object.
 *
 * @param object  the object.
 * @return what the object's AddRef returns.
 */
QX_API uint32_t IQXUnknown_AddRef(void* object);

/**
 * Gives a reference to a component object up.
 *
 * @param object  the object.
 * @return what the object's Release returns.
 */
QX_API uint32_t IQXUnknown_Release(void* object);

/**
 * Allocates memory that components share: a block may be allocated by one library and freed by
 * another. It is not the heap of qxcore/memory.h.
 *
 * @param size  bytes; 0 gives a block that is not null.
 * @param out   receives the block, null on failure. The caller owns it.
 * @return QX_S_OK, or QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXComMalloc(uint32_t size, void** out);

/**
 * Changes the size of a block of component memory.
 *
 * @param block  in: a block or null; out: the block at its new place. Unchanged on failure.
 * @param size   bytes; 0 frees the block and stores null.
 * @return QX_S_OK, or QX_E_OUTOFMEMORY: the old block is then still valid.
 */
QX_API QXResult QXComRealloc(void** block, uint32_t size);

/**
 * Frees a block of component memory.
 * @param block  the block; null is allowed.
 * @return QX_S_OK, always.
 */
QX_API QXResult QXComFree(void* block);

QX_END_DECLS

#endif
