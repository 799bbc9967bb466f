/**
 * @file
 * The shape of component objects, for those who write them and those who use them.
 *
 * An object is a pointer to a record whose first field points to a table of functions. Each table
 * begins with QueryInterface, AddRef and Release and has no slot for a destructor. In C++ that is a
 * class of virtual functions without a virtual destructor; in C the table is spelled out. Both see
 * the same object.
 *
 * Results are in the form of QXResult. Results that are interfaces carry one reference, which the
 * caller owns.
 */
#ifndef QXCORE_UNKNOWN_H
#define QXCORE_UNKNOWN_H

#include <qxcore/guid.h>
#include <qxcore/result.h>

/** The interface that every object has. */
static const GUID QX_IID_UNKNOWN = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

/** The interface of a class factory. */
static const GUID QX_IID_CLASS_FACTORY = {1, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

#ifdef __cplusplus

class IQXUnknown {
  public:
    /**
     * Asks the object for another of its interfaces.
     * @param interfaceID  which one.
     * @param result       receives the interface with a reference for the caller; null on failure.
     * @return not negative on success; by custom 0x80004002 for an interface it does not have.
     */
    virtual QXResult QueryInterface(const GUID* interfaceID, void** result) = 0;
    /** Adds a reference. @return the new count, for information only. */
    virtual uint32_t AddRef() = 0;
    /** Gives a reference up; the last one ends the object. @return the new count. */
    virtual uint32_t Release() = 0;

  protected:
    ~IQXUnknown() = default;
};

class IQXClassFactory : public IQXUnknown {
  public:
    /**
     * Makes an object.
     * @param outer        the object that the new one is to be part of, or null.
     * @param interfaceID  the interface that is wanted of the new object.
     * @param result       receives that interface with a reference for the caller.
     * @return not negative on success.
     */
    virtual QXResult CreateInstance(void* outer, const GUID* interfaceID, void** result) = 0;

  protected:
    ~IQXClassFactory() = default;
};

#else

typedef struct IQXUnknown IQXUnknown;
typedef struct IQXUnknownTable {
    QXResult (*QueryInterface)(IQXUnknown* self, const GUID* interfaceID, void** result);
    uint32_t (*AddRef)(IQXUnknown* self);
    uint32_t (*Release)(IQXUnknown* self);
} IQXUnknownTable;
struct IQXUnknown {
    const IQXUnknownTable* table;
};

typedef struct IQXClassFactory IQXClassFactory;
typedef struct IQXClassFactoryTable {
    QXResult (*QueryInterface)(IQXClassFactory* self, const GUID* interfaceID, void** result);
    uint32_t (*AddRef)(IQXClassFactory* self);
    uint32_t (*Release)(IQXClassFactory* self);
    QXResult (*CreateInstance)(IQXClassFactory* self, void* outer, const GUID* interfaceID,
                               void** result);
} IQXClassFactoryTable;
struct IQXClassFactory {
    const IQXClassFactoryTable* table;
};

#endif

/**
 * The function that a component library exports under the name "DllGetClassObject".
 *
 * @param classID      the class that is wanted.
 * @param interfaceID  the interface that is wanted of its class factory.
 * @param result       receives that interface with a reference for the caller.
 * @return not negative on success.
 */
typedef QXResult (*QXGetClassObjectFunction)(const GUID* classID, const GUID* interfaceID,
                                             void** result);

#endif
