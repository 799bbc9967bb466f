// Objects that processes find by their names: semaphores and blocks of memory, a file in /dev/shm
// each. An object lives while some process uses it, and its name is as new after that, also when
// those processes were killed.
//
// WHO USES AN OBJECT is what the kernel knows. The file has two bytes that are locked and never
// read, by locks that belong to an open file description:
//   guard    locked for writing by whoever opens the object or looks whether it can be removed, for
//            as long as that takes
//   use      locked for reading by every user
// A description lives, and keeps its lock, as long as one descriptor or one mapping of it is left,
// in this process or in a child that was forked from it; it ends with them, however they end. So a
// use is over when its descriptors are closed and its mappings unmapped. It is never unlocked by
// name: that would end it for forked children too. A process-wide lock would be no use here, since
// closing any descriptor of the file drops it.
//
// OPENING. 1. Open the file, or make an empty one. 2. Lock the guard. 3. See that the name still
// stands for this file; if not, start over. 4. If nobody has locked the use, the object is none,
// whatever the file holds: fill the file anew, or say that there is no such object. 5. Lock the
// use.
// 6. Unlock the guard. The use is locked under the guard alone, and by somebody who has filled the
// file or found it in use, so what is in use is always filled. Uses end without the guard, which
// can only turn an object that step 4 found in use into one that the caller is the first to use
// again: it has opened the object while that was in use.
//
// REMOVING, after a use has ended. Open the file, try to lock the guard, see that the name stands
// for the file and that nobody uses it; then the name goes, or, where only the file's owner may
// take it, the file's content. Whoever opened the file meanwhile meets step 3 or step 4. If the
// guard is taken or the process dies, the file stays, as one that nobody uses.
//
// OTHER USERS. Everybody may use every object, so the file is open to all, and whoever means harm
// can spoil what is in it, as on the reference platform. He gets no further than that:
// - A link, a pipe, a file of another size is not opened. A file that has a second name is refused,
//   since it might be somebody else's by its other one.
// - What he locks delays an opening for ten seconds, which then fails.
// - What he writes is taken for counts and bytes, and never for a length or a place.
// - What he cuts off is gone: whoever touches the object then gets SIGBUS. This system has no file
//   with a name that all may write to and nobody may shorten.
#ifndef QX_PLATFORM_POSIX_SHARED_NAMED_OBJECT_H
#define QX_PLATFORM_POSIX_SHARED_NAMED_OBJECT_H

#include <cstddef>

#include "../descriptors.h"
#include "object_path.h"
#include "platform/types.h"

namespace platform {

// What a new object's file is filled with: `m_content`, and zeros up to `m_size` bytes.
struct NewObject {
    u64 m_size;
    const void* m_content;
    std::size_t m_contentSize;
};

struct OpenedObject {
    OwnedDescriptor m_file;  // a use of the object, unless there was an error
    u64 m_size = 0;          // of the file, more than 0
    bool m_existed = false;
    u32 m_error = 0;
};

// `fresh` is null for an object that must exist. Errors: 2 no such object, 3 no place for objects,
// 4 no descriptors left, 5 no access, 6 the name stands for something else, 112 no space, 170
// somebody is at the object for too long. Blocks while others open the same object, up to ten
// seconds. A cancellation point nowhere.
OpenedObject OpenNamedObject(const ObjectPath& path, const NewObject* fresh) noexcept;

// To be called when a use has ended. Does not block.
void RemoveUnusedObject(const ObjectPath& path) noexcept;

}  // namespace platform

#endif
