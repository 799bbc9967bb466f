// What stands behind a handle: the handle is the object's address.
#ifndef QX_PLATFORM_POSIX_WAITING_OBJECT_H
#define QX_PLATFORM_POSIX_WAITING_OBJECT_H

#include "platform/types.h"

namespace platform {

class Object {
  public:
    Object() = default;
    virtual ~Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    // As WaitForSingleObject.
    virtual u32 Wait(u32 milliseconds) noexcept = 0;
};

}  // namespace platform

#endif
