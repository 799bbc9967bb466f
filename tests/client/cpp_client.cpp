// A program in C++ that uses the installed library and a component library, whose class it finds by
// its program id.
//   cpp_client COMPONENT_LIBRARY
#include <cstring>
#include <string>

#include "expect.h"
#include "tally.h"

namespace {

constexpr char16_t kProgram[] = u"Client.Tally";

std::u16string Wide(const char* text) {
    std::u16string wide(QXAnsiToUnicode(nullptr, text, 0), u'\0');
    QXAnsiToUnicode(wide.data(), text, wide.size());
    return wide;
}

std::u16string ClassText() {
    wchar text[QX_GUID_TEXT_SIZE];
    QXComStringFromGUID(&kTallyClass, text, QX_GUID_TEXT_SIZE);
    return text;
}

QXResult SetDefaultValue(const std::u16string& key, const std::u16string& text) {
    return QXRegistrySetValue(QX_HKEY_CLASSES_64, key.c_str(), u"", QX_REG_STRING, text.c_str(),
                              static_cast<uint32_t>(2 * text.size() + 2));
}

void UseObject() {
    void* object = nullptr;
    EXPECT(QXComCreateObjectByProgID(kProgram, nullptr, &kTallyInterface, &object) == QX_S_OK);
    if (object != nullptr) {
        auto* const tally = static_cast<ITally*>(object);
        EXPECT(tally->Add(40) == 40);
        EXPECT(tally->Add(2) == 42);
        EXPECT(tally->Made() == 1);
        EXPECT(std::strcmp(tally->Mark(), QXUtf8BomStr) == 0);
        EXPECT(tally->Release() == 0);
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    const std::u16string key = u"CLSID\\" + ClassText();
    EXPECT(SetDefaultValue(key + u"\\InprocServer32", Wide(arguments[1])) == QX_S_OK);
    EXPECT(SetDefaultValue(std::u16string(kProgram) + u"\\CLSID", ClassText()) == QX_S_OK);
    UseObject();
    EXPECT(QXComFlushFactoryCache() == QX_S_OK);  // unloads the component library
    QXUtf8BomStr = "another mark";                // which is loaded again, and shares the variable
    UseObject();
    EXPECT(QXComFlushFactoryCache() == QX_S_OK);
    EXPECT(QXRegistryDeleteKey(QX_HKEY_CLASSES_64, key.c_str()) == 0);
    EXPECT(QXRegistryDeleteKey(QX_HKEY_CLASSES_64, kProgram) == 0);
    return failures != 0;
}
