// A library without a class object of its own that needs one with: what the other exports is not
// its.
#include <qxcore.h>

extern "C" QXResult DllGetClassObject(const GUID*, const GUID*, void**);

extern "C" __attribute__((visibility("default"))) QXResult HollowUsesTheOther(const GUID* classID,
                                                                              void** result) {
    return DllGetClassObject(classID, classID, result);
}
