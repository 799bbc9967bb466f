// A registry and a witness log of a test's own, and classes of the witness in it.
#ifndef TESTS_SUPPORT_REGISTERED_CLASSES_H
#define TESTS_SUPPORT_REGISTERED_CLASSES_H

#include <gtest/gtest.h>
#include <qxcore.h>

#include <algorithm>
#include <string>

#include "support/system.h"
#include "support/witness.h"

class RegisteredClasses {
  public:
    // Points the witness's log into the registry's folder.
    RegisteredClasses() { SetEnvironment(kWitnessLog, LogPath().string()); }

    static std::u16string WitnessPath() { return ModulePath(QXCORE_WITNESS).u16string(); }
    static std::u16string HollowPath() { return ModulePath(QXCORE_HOLLOW).u16string(); }
    static std::u16string ClassText(WitnessBehaviour behaviour) {
        const GUID classID = WitnessClass(behaviour);
        char16_t text[QX_GUID_TEXT_SIZE];
        QXComStringFromGUID(&classID, text, QX_GUID_TEXT_SIZE);
        return text;
    }
    std::u16string Folder() const { return m_registry.Folder().u16string(); }

    void Register(WitnessBehaviour behaviour, const std::u16string& library,
                  uint32_t type = QX_REG_STRING, bool terminated = true) const {
        SetValue(ClassKey(behaviour), u"", type, library, terminated);
    }
    void RegisterWithoutPath(WitnessBehaviour behaviour) const {
        SetValue(ClassKey(behaviour), u"ThreadingModel", QX_REG_STRING, u"Both", true);
    }
    void Unregister(WitnessBehaviour behaviour) const {
        EXPECT_EQ(0, QXRegistryDeleteKey(QX_HKEY_CLASSES_64, ClassKey(behaviour).c_str()));
    }
    void RegisterProgram(const std::u16string& program, const std::u16string& classText,
                         bool terminated = true) const {
        SetValue(program + u"\\CLSID", u"", QX_REG_STRING, classText, terminated);
    }

    // The words that the witness wrote since the last call, each with a blank behind it.
    std::string TakeLog() const {
        std::string words = ReadTextFile(LogPath());
        std::replace(words.begin(), words.end(), '\n', ' ');
        std::filesystem::remove(LogPath());
        return words;
    }

  private:
    static std::u16string ClassKey(WitnessBehaviour behaviour) {
        return u"CLSID\\" + ClassText(behaviour) + u"\\InprocServer32";
    }
    static void SetValue(const std::u16string& key, const std::u16string& name, uint32_t type,
                         const std::u16string& text, bool terminated) {
        const auto size = static_cast<uint32_t>(2 * (text.size() + (terminated ? 1 : 0)));
        ASSERT_EQ(QX_S_OK, QXRegistrySetValue(QX_HKEY_CLASSES_64, key.c_str(), name.c_str(), type,
                                              text.c_str(), size));
    }
    std::filesystem::path LogPath() const { return m_registry.Folder() / "log"; }

    const OwnRegistry m_registry;
};

#endif
