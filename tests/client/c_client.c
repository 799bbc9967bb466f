/* A program in C that uses the installed library and a component library.
 *   c_client COMPONENT_LIBRARY */
#include <string.h>

#include "expect.h"
#include "tally.h"

/* The key "CLSID\{class id}\InprocServer32". */
static void LibraryKey(wchar* key) {
    QXAnsiToUnicode(key, "CLSID\\", 7);
    QXComStringFromGUID(&kTallyClass, key + 6, QX_GUID_TEXT_SIZE);
    QXAnsiToUnicode(key + QXStrLenW(key), "\\InprocServer32", 16);
}

static QXResult Register(const wchar* key, const char* library) {
    wchar path[512];
    static const wchar noName[] = {0};
    const size_t length = QXAnsiToUnicode(path, library, 511);
    path[511] = 0;
    return QXRegistrySetValue(QX_HKEY_CLASSES_64, key, noName, QX_REG_STRING, path,
                              (uint32_t)(2 * length + 2));
}

static void UseObject(void) {
    void* object = NULL;
    EXPECT(QXComCreateObject(&kTallyClass, NULL, &kTallyInterface, &object) == QX_S_OK);
    if (object == NULL) {
        return;
    }
    ITally* const tally = (ITally*)object;
    EXPECT(tally->table->Add(tally, 2) == 2);
    EXPECT(tally->table->Add(tally, 3) == 5);
    EXPECT(tally->table->Made(tally) == 1);
    EXPECT(strcmp(tally->table->Mark(tally), QXUtf8BomStr) == 0);
    EXPECT(IQXUnknown_Release(object) == 0);
}

/* The library, the component and this program share the one variable. */
static void WriteVariable(void) {
    EXPECT(memcmp(QXUtf8BomStr, "\xEF\xBB\xBF", 4) == 0);
    QXUtf8BomStr = "mark";
    EXPECT(QXIsUtf8BomStr("marked") == 1);
    UseObject();
    QXUtf8BomStr = "\xEF\xBB\xBF";
    EXPECT(QXIsUtf8BomStr("marked") == 0);
}

/* An object of this program's, made as C makes one. */
static QXResult OwnQuery(IQXUnknown* self, const GUID* interfaceID, void** result) {
    const int known = QXComIsEqualGUID(interfaceID, &QX_IID_UNKNOWN);
    *result = known ? self : NULL;
    return known ? QX_S_OK : (QXResult)0x80004002;
}

static uint32_t OwnReferences(IQXUnknown* self) {
    (void)self;
    return 2;
}

static void UseOwnObject(void) {
    static const IQXUnknownTable table = {OwnQuery, OwnReferences, OwnReferences};
    IQXUnknown object = {&table};
    void* found = NULL;
    EXPECT(QX_FAILED(QX_E_FAIL) && QX_SUCCEEDED(2) && sizeof(wchar) == 2);
    EXPECT(QX_SUCCEEDED(IQXUnknown_QueryInterface(&object, &QX_IID_UNKNOWN, &found)));
    EXPECT(found == &object);
    EXPECT(QX_FAILED(IQXUnknown_QueryInterface(&object, &QX_IID_CLASS_FACTORY, &found)));
    EXPECT(IQXUnknown_AddRef(&object) == 2);
}

int main(int count, char** arguments) {
    wchar key[80];
    if (count != 2) {
        return 2;
    }
    UseOwnObject();
    LibraryKey(key);
    EXPECT(Register(key, arguments[1]) == QX_S_OK);
    UseObject();
    EXPECT(QXComFlushFactoryCache() == QX_S_OK); /* unloads the component library */
    WriteVariable();                             /* and this loads it again */
    EXPECT(QXComFlushFactoryCache() == QX_S_OK);
    EXPECT(QXRegistryDeleteKey(QX_HKEY_CLASSES_64, key) == 0);
    return failures != 0;
}
