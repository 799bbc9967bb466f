# Writes the module definition of the DLL: those of the listed names that the objects define. The list
# is longer than what is there as long as the library grows.
# Usage: cmake -DNM=... -DLIST=exports.txt -DOBJECTS=FILE -DOUTPUT=FILE -P module_definition.cmake,
# where OBJECTS names a file with an object on each line.
file(STRINGS "${OBJECTS}" objects)
execute_process(COMMAND "${NM}" --defined-only --extern-only --format=posix ${objects}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS "${LIST}" names)
set(lines "")
foreach(name IN LISTS names)
  if(symbols MATCHES "\n${name} ([TDRB]) ")
    if(CMAKE_MATCH_1 STREQUAL "T")
      string(APPEND lines "  ${name}\n")
    else()
      string(APPEND lines "  ${name} DATA\n")
    endif()
  endif()
endforeach()
file(WRITE "${OUTPUT}" "LIBRARY w64qxcore6.dll\nEXPORTS\n${lines}")
