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
    void* same = NULL;
    EXPECT(QXComCreateObject(&kTallyClass, NULL, &kTallyInterface, &object) == QX_S_OK);
    if (object == NULL) {
        return;
    }
    ITally* const tally = (ITally*)object;
    EXPECT(tally->table->Add(tally, 2) == 2);
    EXPECT(tally->table->Add(tally, 3) == 5);
    EXPECT(tally->table->Made(tally) == 1);
    EXPECT(strcmp(tally->table->Mark(tally), QXUtf8BomStr) == 0);
    EXPECT(QX_FAILED(IQXUnknown_QueryInterface(object, &QX_IID_CLASS_FACTORY, &same)));
    EXPECT(QX_SUCCEEDED(IQXUnknown_QueryInterface(object, &QX_IID_UNKNOWN, &same)));
    EXPECT(same == object && IQXUnknown_AddRef(object) == 3);
    EXPECT(IQXUnknown_Release(object) == 2 && IQXUnknown_Release(object) == 1);
    EXPECT(IQXUnknown_Release(object) == 0);
}

int main(int count, char** arguments) {
    wchar key[80];
    if (count != 2) {
        return 2;
    }
    LibraryKey(key);
    EXPECT(Register(key, arguments[1]) == QX_S_OK);
    UseObject();
    EXPECT(QXComFlushFactoryCache() == QX_S_OK); /* unloads the component library */
    /* The library, the component, which is loaded again, and this program share the variable. */
    EXPECT(memcmp(QXUtf8BomStr, "\xEF\xBB\xBF", 4) == 0);
    QXUtf8BomStr = "mark";
    EXPECT(QXIsUtf8BomStr("marked") == 1);
    UseObject();
    EXPECT(QXComFlushFactoryCache() == QX_S_OK);
    EXPECT(QXRegistryDeleteKey(QX_HKEY_CLASSES_64, key) == 0);
    return failures != 0;
}
