# Installs the library into a prefix of its own, builds the clients against that prefix alone, moves
# it, and runs them.
#   cmake -DBUILD=<the library's build> -DSOURCE=<this folder> -DDIRECTORY=<scratch>
#     -DOPTIONS=<cache options>... -DLIBDIR=<folder of libraries> -DRUN=<what runs a program>...
#     -P check_client.cmake
file(REMOVE_RECURSE ${DIRECTORY})
set(prefix ${DIRECTORY}/prefix)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${DIRECTORY}/first
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${DIRECTORY}/first ${prefix})
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${DIRECTORY}/build -G Ninja ${OPTIONS}
    -Dw64qxcore6_ROOT=${prefix} -DCLIENT_PREFIX=${prefix} -DCLIENT_LIBDIR=${LIBDIR}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${DIRECTORY}/build COMMAND_ERROR_IS_FATAL ANY)

# Windows looks for libraries beside the program.
file(GLOB libraries ${prefix}/bin/*.dll ${BUILD}/bin/icu*.dll)
file(COPY ${libraries} DESTINATION ${DIRECTORY}/build)
set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
file(MAKE_DIRECTORY ${DIRECTORY}/registry)
set(ENV{W64QXCORE6_REGISTRY} ${DIRECTORY}/registry)
file(GLOB clients RELATIVE ${DIRECTORY}/build
  ${DIRECTORY}/build/c_client* ${DIRECTORY}/build/cpp_client* ${DIRECTORY}/build/pkg_config_client*)
list(LENGTH clients number)
if(number LESS 2)
  message(FATAL_ERROR "the clients are missing: ${clients}")
endif()
foreach(client IN LISTS clients)
  message(STATUS "running ${client}")
  execute_process(COMMAND ${RUN} ./${client} ./tally.component
    WORKING_DIRECTORY ${DIRECTORY}/build COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(REMOVE_RECURSE ${DIRECTORY})
