/* The interface as a C program sees it. */
#include <qxcore.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;

#define EXPECT(condition)                                                  \
    do {                                                                   \
        if (!(condition)) {                                                \
            printf("%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
            ++failures;                                                    \
        }                                                                  \
    } while (0)

static QXResult query(IQXUnknown* self, const GUID* interfaceID, void** result) {
    const int known = QXComIsEqualGUID(interfaceID, &QX_IID_UNKNOWN);
    *result = known ? self : NULL;
    return known ? QX_S_OK : (QXResult)0x80004002;
}

static uint32_t addRef(IQXUnknown* self) {
    (void)self;
    return 2;
}

static uint32_t release(IQXUnknown* self) {
    (void)self;
    return 1;
}

int main(void) {
    static const IQXUnknownTable table = {query, addRef, release};
    IQXUnknown object = {&table};
    void* found = NULL;
    QXHandle mutex = NULL;
    void* block = NULL;

    EXPECT(sizeof(wchar) == 2);
    EXPECT(QX_FAILED(QX_E_FAIL) && QX_SUCCEEDED(2));
    EXPECT(QXMutexCreate("c", 0, &mutex) == QX_S_OK);
    EXPECT(QXMutexAcquire(mutex) == QX_S_OK);
    EXPECT(QXMutexRelease(mutex) == QX_S_OK);
    EXPECT(QXMutexDestroy(mutex) == 0);
    EXPECT(QXMalloc(3, &block) == QX_S_OK && QXMallocSize(block) == 3 && QXFree(block) == QX_S_OK);
    EXPECT(IQXUnknown_QueryInterface(&object, &QX_IID_UNKNOWN, &found) == QX_S_OK);
    EXPECT(found == &object);
    EXPECT(QX_FAILED(IQXUnknown_QueryInterface(&object, &QX_IID_CLASS_FACTORY, &found)));
    EXPECT(IQXUnknown_AddRef(&object) == 2 && IQXUnknown_Release(&object) == 1);
    return failures != 0;
}
