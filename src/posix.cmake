# How the shared object is linked.
target_link_libraries(qxcore_dependencies INTERFACE Threads::Threads ${CMAKE_DL_LIBS})

# Loaded when the registry is first used.
target_include_directories(w64qxcore6_objects SYSTEM PRIVATE ${SQLite3_INCLUDE_DIRS})

# A unique global symbol would pin the library in memory after dlclose.
target_compile_options(w64qxcore6_objects PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)

# The jump between a call of the heap and the C library is a tenth of an allocation's time.
set_source_files_properties(core/memory_exports.cpp platform/posix/task_allocator.cpp PROPERTIES
  COMPILE_OPTIONS -fno-plt)

set(linker_script ${CMAKE_CURRENT_BINARY_DIR}/w64qxcore6.ver)
qxcore_write_linker_script(${PROJECT_SOURCE_DIR}/exports.txt ${linker_script})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/exports.txt)

target_link_options(w64qxcore6 PRIVATE
  -Wl,--version-script=${linker_script}
  -Wl,--as-needed -Wl,-Bsymbolic-functions -Wl,-z,defs -Wl,-O1 -Wl,--hash-style=gnu)
set_target_properties(w64qxcore6 PROPERTIES
  LINK_DEPENDS "${linker_script};${PROJECT_SOURCE_DIR}/exports.txt"
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})
if(QXCORE_SANITIZE)
  # The sanitizers' runtime stays undefined in a shared library.
  set_property(TARGET w64qxcore6 APPEND_STRING PROPERTY LINK_FLAGS " -Wl,-z,undefs")
endif()
