set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# What scripts/windows-deps has built.
if(DEFINED ENV{QXCORE_WINDOWS_DEPS})
  set(QXCORE_WINDOWS_DEPS $ENV{QXCORE_WINDOWS_DEPS} CACHE PATH "Cross-built libraries")
else()
  set(QXCORE_WINDOWS_DEPS ${CMAKE_CURRENT_LIST_DIR}/../build/windows-deps CACHE PATH
    "Cross-built libraries")
endif()
set(CMAKE_FIND_ROOT_PATH ${QXCORE_WINDOWS_DEPS}/icu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# The compiler's runtime is linked in, so that a program needs nothing but our library and ICU's.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -static)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine)
