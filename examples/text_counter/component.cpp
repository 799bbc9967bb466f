#include "component.h"

namespace {

const std::u16string kProgramKey = kTextCounterProgramID;

std::u16string ClassText() {
    char16_t text[QX_GUID_TEXT_SIZE];
    QXComStringFromGUID(&kTextCounterClass, text, QX_GUID_TEXT_SIZE);
    return text;
}

std::u16string ClassKey() {
    return u"CLSID\\" + ClassText();
}

void SetDefaultValue(const std::u16string& key, const std::u16string& text) {
    const auto bytes = static_cast<uint32_t>((text.size() + 1) * sizeof(wchar));
    Check(QXRegistrySetValue(QX_HKEY_CLASSES_64, key.c_str(), u"", QX_REG_STRING, text.c_str(),
                             bytes),
          "QXRegistrySetValue");
}

void DeleteKey(const std::u16string& key) {
    // Everything but 0 is a failure here.
    if (QXRegistryDeleteKey(QX_HKEY_CLASSES_64, key.c_str()) != QX_S_OK) {
        throw Failure{Narrow(key), QX_E_NOTFOUND};
    }
}

// From the root on, so that it is found from every directory.
std::u16string WholePath(const char* path) {
    std::u16string whole(32768, u'\0');
    Check(QXPathExpand(Wide(path).c_str(), whole.data(), static_cast<uint32_t>(whole.size())),
          path);
    return whole.c_str();
}

}  // namespace

void RegisterTextCounter(const char* library) {
    SetDefaultValue(ClassKey() + u"\\InprocServer32", WholePath(library));
    SetDefaultValue(kProgramKey + u"\\CLSID", ClassText());
}

void InstallTextCounter() {
    Check(QXRegistryMigrate(QX_REGSTORE_INI, 0, QX_REGSTORE_NATIVE, 0), "qxregistry.ini");
}

void UnregisterTextCounter() {
    DeleteKey(ClassKey());
    DeleteKey(kProgramKey);
}

CounterObject CreateCounter() {
    void* object = nullptr;
    Check(
        QXComCreateObjectByProgID(kTextCounterProgramID, nullptr, &kTextCounterInterface, &object),
        "the text counter");
    return CounterObject(static_cast<ITextCounter*>(object));
}
