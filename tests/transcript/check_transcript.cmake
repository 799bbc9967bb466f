# Runs of the same calls print the same: no address, no time, nothing that was not written.
#   cmake -DPROGRAM=<program, in front of it what runs it> -DARGUMENTS=<argument>...
#     -DCOMPONENT=<library> -DDIRECTORY=<scratch> -DRUNS=<number> -P check_transcript.cmake
set(ENV{QX_TRANSCRIPT} word)
set(ENV{TZ} UTC)
foreach(run RANGE 1 ${RUNS})
  file(REMOVE_RECURSE ${DIRECTORY})
  file(MAKE_DIRECTORY ${DIRECTORY})
  set(ENV{W64QXCORE6_REGISTRY} ${DIRECTORY})
  execute_process(
    COMMAND ${PROGRAM} --component ${COMPONENT} ${ARGUMENTS}
    OUTPUT_VARIABLE text_${run} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${DIRECTORY})
endforeach()
if(NOT text_1 STREQUAL text_${RUNS})
  file(WRITE ${DIRECTORY}.1 "${text_1}")
  file(WRITE ${DIRECTORY}.2 "${text_${RUNS}}")
  message(FATAL_ERROR "the runs differ: ${DIRECTORY}.1 and ${DIRECTORY}.2")
endif()
if(NOT text_1 MATCHES "QXRegistrySetValue")
  message(FATAL_ERROR "the transcript is empty")
endif()
