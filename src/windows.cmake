# How the DLL is linked: by a module definition that is made from the list of exports.
target_link_libraries(qxcore_dependencies INTERFACE ole32 rpcrt4 ws2_32 wtsapi32)

set(definition ${CMAKE_CURRENT_BINARY_DIR}/w64qxcore6.def)
set(object_list ${CMAKE_CURRENT_BINARY_DIR}/objects.txt)
file(GENERATE OUTPUT ${object_list}
  CONTENT "$<JOIN:$<TARGET_OBJECTS:w64qxcore6_objects>,\n>\n")
add_custom_command(OUTPUT ${definition}
  COMMAND ${CMAKE_COMMAND} -DNM=${CMAKE_NM} -DLIST=${PROJECT_SOURCE_DIR}/exports.txt
    -DOBJECTS=${object_list} -DOUTPUT=${definition}
    -P ${PROJECT_SOURCE_DIR}/cmake/module_definition.cmake
  DEPENDS $<TARGET_OBJECTS:w64qxcore6_objects> ${PROJECT_SOURCE_DIR}/exports.txt
    ${PROJECT_SOURCE_DIR}/cmake/module_definition.cmake
  VERBATIM)
target_sources(w64qxcore6 PRIVATE ${definition})
set_target_properties(w64qxcore6 PROPERTIES PREFIX "")

# ICU's files stand beside the library, as a user would put them.
file(GLOB icu_files ${QXCORE_WINDOWS_DEPS}/icu/bin/*.dll)
file(COPY ${icu_files} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
