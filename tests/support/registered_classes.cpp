#include "support/registered_classes.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

std::u16string ClassKey(WitnessBehaviour behaviour) {
    return u"CLSID\\" + RegisteredClasses::ClassText(behaviour) + u"\\InprocServer32";
}

void SetValue(const std::u16string& key, const std::u16string& name, uint32_t type,
              const std::u16string& text, bool terminated) {
    const size_t units = text.size() + (terminated ? 1 : 0);
    ASSERT_EQ(QX_S_OK, QXRegistrySetValue(QX_HKEY_CLASSES_64, key.c_str(), name.c_str(), type,
                                          text.c_str(), static_cast<uint32_t>(units * 2)));
}

}  // namespace

RegisteredClasses::RegisteredClasses() {
    SetEnvironment(kWitnessLog, (m_registry.Folder() / "log").string());
}

std::u16string RegisteredClasses::WitnessPath() {
    return ModulePath(QXCORE_WITNESS).u16string();
}

std::u16string RegisteredClasses::HollowPath() {
    return ModulePath(QXCORE_HOLLOW).u16string();
}

std::u16string RegisteredClasses::ClassText(WitnessBehaviour behaviour) {
    const GUID classID = WitnessClass(behaviour);
    char16_t text[QX_GUID_TEXT_SIZE];
    QXComStringFromGUID(&classID, text, QX_GUID_TEXT_SIZE);
    return text;
}

std::u16string RegisteredClasses::Folder() const {
    return m_registry.Folder().u16string();
}

void RegisteredClasses::Register(WitnessBehaviour behaviour, const std::u16string& library,
                                 uint32_t type, bool terminated) const {
    SetValue(ClassKey(behaviour), u"", type, library, terminated);
}

void RegisteredClasses::RegisterWithoutPath(WitnessBehaviour behaviour) const {
    SetValue(ClassKey(behaviour), u"ThreadingModel", QX_REG_STRING, u"Both", true);
}

void RegisteredClasses::Unregister(WitnessBehaviour behaviour) const {
    EXPECT_EQ(0, QXRegistryDeleteKey(QX_HKEY_CLASSES_64, ClassKey(behaviour).c_str()));
}

void RegisteredClasses::RegisterProgram(const std::u16string& program,
                                        const std::u16string& classText, bool terminated) const {
    SetValue(program + u"\\CLSID", u"", QX_REG_STRING, classText, terminated);
}

std::string RegisteredClasses::TakeLog() const {
    const auto path = m_registry.Folder() / "log";
    std::string words;
    {
        std::ifstream log(path);
        for (std::string word; log >> word;) {
            words += word + ' ';
        }
    }
    std::filesystem::remove(path);
    return words;
}
