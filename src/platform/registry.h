// The native registry: trees of keys, each with values.
#ifndef QX_PLATFORM_REGISTRY_H
#define QX_PLATFORM_REGISTRY_H

#include <registry_native.h>

#include "platform/security.h"
#include "platform/types.h"

namespace platform {

// The back end defines HKEY, a pointer to an open key, and FILETIME.
//
// Every operation returns a number of platform/errors.h, 0 on success, and leaves the last error
// alone. Each reads or writes a store outside the process, so each may block on its disk, and waits
// for other processes that are in its way, for some seconds at the most (then 170).
//
// A path is terminated text. `\` separates its components and nothing else does; null and the
// empty path mean the key itself. Names compare without case. A null value name is the empty name,
// which is the key's default value. Numbers that any operation may give:
//   2    no such key or value, or no store
//   5    the store or the rights of the handle do not allow it
//   6    not an open key
//   14   no memory
//   87   a name that is too long (255 units for a key, 16383 for a value), a bad pointer
//   112  the disk is full
//   126  what the store rests on is not installed
//   170  another process was in the way for too long
//   206  the store's path is too long
//   1009 the store is damaged, or is a file of something else
//   1016 the store's disk failed
//   1018 the key was deleted while it was open

// Predefined keys, always open: the native values, which PredefinedKey makes handles of.
enum PredefinedRoot : u32 {
    kHkeyClassesRoot = 0x80000000,   // HKEY_CLASSES_ROOT
    kHkeyCurrentUser = 0x80000001,   // HKEY_CURRENT_USER
    kHkeyLocalMachine = 0x80000002,  // HKEY_LOCAL_MACHINE
    kHkeyInvalid = 0xFFFFFFFF,       // INVALID_HANDLE_VALUE
};

// Sign-extended to pointer width.
inline HKEY PredefinedKey(PredefinedRoot root) noexcept {
    return reinterpret_cast<HKEY>(static_cast<std::intptr_t>(static_cast<i32>(root)));
}

// The view bits of an access mask choose between the two trees of a root. Without one the 64-bit
// view is meant. The current user's root has one tree.
enum KeyAccess : u32 {
    kKeyQueryValue = 0x1,        // KEY_QUERY_VALUE
    kKeySetValue = 0x2,          // KEY_SET_VALUE
    kKeyEnumerateSubKeys = 0x8,  // KEY_ENUMERATE_SUB_KEYS
    kKeyRead = 0x20019,          // KEY_READ
    kKeyAllAccess = 0xF003F,     // KEY_ALL_ACCESS
    kKeyWow64View64 = 0x100,     // KEY_WOW64_64KEY
    kKeyWow64View32 = 0x200,     // KEY_WOW64_32KEY
};

enum ValueType : u32 {
    kRegNone = 0,      // REG_NONE
    kRegSz = 1,        // REG_SZ
    kRegExpandSz = 2,  // REG_EXPAND_SZ
    kRegBinary = 3,    // REG_BINARY
    kRegDword = 4,     // REG_DWORD
    kRegMultiSz = 7,   // REG_MULTI_SZ
    kRegQword = 11,    // REG_QWORD
};

// Opens a key that exists. Its absence is told (2) before a lack of rights (5).
// `options` is 0. The caller owns `*opened`, which is set on success only.
u32 RegOpenKeyExW(HKEY key, const char16_t* path, u32 options, u32 access, HKEY* opened) noexcept;

// Opens a key and makes what is missing along the path. `reserved` and `options` are 0, `className`
// is null. `attributes` may be null. `disposition` receives 1 for a key that was made and 2 for one
// that was there. 3 if the store's directory is missing.
u32 RegCreateKeyExW(HKEY key, const char16_t* path, u32 reserved, const char16_t* className,
                    u32 options, u32 access, const SECURITY_ATTRIBUTES* attributes, HKEY* opened,
                    u32* disposition) noexcept;

// A predefined key stays open; closing it is a success.
u32 RegCloseKey(HKEY key) noexcept;

// Reads a value. `reserved` is null. `type`, `data` and `size` may be null, but 87 for data without
// a size. `*size` goes in as the bytes at `data` and comes out as the bytes stored; 234 if they do
// not fit: then type and size are set all the same.
u32 RegQueryValueExW(HKEY key, const char16_t* name, u32* reserved, u32* type, void* data,
                     u32* size) noexcept;

// Opens a key with kKeyRead and the view bits, reads a value of it as RegQueryValueExW does, and
// closes the key. Whatever keeps the key from being opened is told first.
u32 ReadRegistryValue(HKEY key, const char16_t* path, u32 view, const char16_t* name, u32* type,
                      void* data, u32* size) noexcept;

// Opens a key with kKeyAllAccess and the view bits, or makes it as RegCreateKeyExW does, writes
// exactly `size` bytes as a value of it, and closes the key. The key is made also if the value is
// then refused. A value that exists keeps the spelling of its name and its place in the order.
u32 WriteRegistryValue(HKEY key, const char16_t* path, u32 view,
                       const SECURITY_ATTRIBUTES* attributes, const char16_t* name, u32 type,
                       const void* data, u32 size) noexcept;

// Deletes a key that has no keys below it, with its values. 5 if it has some, and for a root.
// `view` is a view bit or 0, `reserved` 0.
u32 RegDeleteKeyExW(HKEY key, const char16_t* path, u32 view, u32 reserved) noexcept;

u32 RegDeleteValueW(HKEY key, const char16_t* name) noexcept;

// The name of the key number `index` below a key, in the order of the folded names. `*length` goes
// in as the capacity in units and comes out as the units without the terminator; 234 if it does
// not fit, with the length left alone. 259 behind the last. The pointers from `reserved` on are
// null, but `written`, which may receive the time of the last change (zero on a back end that
// keeps none).
//
// Stepping through the indexes in order costs the same for each step. A step goes on behind the
// entry of the step before it, also if entries came or went meanwhile.
u32 RegEnumKeyExW(HKEY key, u32 index, char16_t* name, u32* length, u32* reserved,
                  char16_t* className, u32* classLength, FILETIME* written) noexcept;

// The value number `index` of a key, in the order in which the values were first set. Name as for
// RegEnumKeyExW; type, data and size as for RegQueryValueExW, and set also with 234.
u32 RegEnumValueW(HKEY key, u32 index, char16_t* name, u32* length, u32* reserved, u32* type,
                  void* data, u32* size) noexcept;

}  // namespace platform

#endif
