// A registry and a witness log of a test's own, and classes of the witness in it.
#ifndef TESTS_SUPPORT_REGISTERED_CLASSES_H
#define TESTS_SUPPORT_REGISTERED_CLASSES_H

#include <qxcore.h>

#include <string>

#include "support/system.h"
#include "support/witness.h"

class RegisteredClasses {
  public:
    // Points the witness's log into the registry's folder.
    RegisteredClasses();

    static std::u16string WitnessPath();
    static std::u16string HollowPath();
    static std::u16string ClassText(WitnessBehaviour behaviour);
    std::u16string Folder() const;

    void Register(WitnessBehaviour behaviour, const std::u16string& library,
                  uint32_t type = QX_REG_STRING, bool terminated = true) const;
    void RegisterWithoutPath(WitnessBehaviour behaviour) const;
    void Unregister(WitnessBehaviour behaviour) const;
    void RegisterProgram(const std::u16string& program, const std::u16string& classText,
                         bool terminated = true) const;

    // The words that the witness wrote since the last call, each with a blank behind it.
    std::string TakeLog() const;

  private:
    OwnRegistry m_registry;
};

#endif
