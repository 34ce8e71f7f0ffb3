cmake_policy(VERSION 3.25)
# Installs the built tree into a scratch prefix, then configures, builds and
# runs the same small consumer twice: through find_package(zolvex-m) and
# through pkg-config.
set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

foreach(mode cmake pkgconfig)
  set(build ${WORK_DIR}/consumer-${mode})
  run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${build} -DCONSUMER_MODE=${mode}
      -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
  run(${CMAKE_COMMAND} --build ${build})
  # The consumer finds the libraries through its RUNPATH into the prefix. It
  # is not instrumented itself, so a sanitizer build's runtime cannot be
  # first in its library list.
  run(${CMAKE_COMMAND} -E env ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0 ${build}/consumer)
  message(STATUS "consumer built and ran through ${mode}")
endforeach()
