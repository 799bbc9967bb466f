// A library without a class object of its own that needs one with: what the other exports is not
// its.
#include "support/witness.h"

extern "C" QXResult DllGetClassObject(const GUID*, const GUID*, void**);

WITNESS_EXPORT QXResult HollowUsesTheOther(const GUID* classID, void** result) {
    return DllGetClassObject(classID, classID, result);
}
