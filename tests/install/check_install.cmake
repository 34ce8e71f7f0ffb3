cmake_policy(VERSION 3.25)
# Installs the built tree into a scratch prefix, then, with no
# LD_LIBRARY_PATH: runs the installed zolvexm (its RUNPATH must find the
# libraries), and configures, builds and runs every example twice, through
# find_package(zolvex-m) and through pkg-config.
set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})

# Programs that are not instrumented themselves cannot put a sanitizer
# build's runtime first in their library list: it is preloaded (PRELOAD).
set(clean_env ${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ASAN_OPTIONS=detect_leaks=0)
if(PRELOAD)
  list(APPEND clean_env LD_PRELOAD=${PRELOAD})
endif()

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
run(${clean_env} ${prefix}/bin/zolvexm version)
message(STATUS "installed zolvexm runs without LD_LIBRARY_PATH")

file(STRINGS ${EXAMPLES_DIR}/CMakeLists.txt examples_line REGEX "^set\\(examples ")
string(REGEX REPLACE "^set\\(examples (.*)\\)$" "\\1" examples "${examples_line}")
separate_arguments(examples)
foreach(mode cmake pkg-config)
  set(build ${WORK_DIR}/examples-${mode})
  run(${clean_env} PKG_CONFIG_PATH=${prefix}/lib/pkgconfig
      ${CMAKE_COMMAND} -S ${EXAMPLES_DIR} -B ${build} -DZOLVEX_M_EXAMPLES_WITH=${mode}
      -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
  run(${CMAKE_COMMAND} --build ${build})
  foreach(example IN LISTS examples)
    run(${clean_env} ${build}/${example})
  endforeach()
  message(STATUS "examples built and ran through ${mode}: ${examples}")
endforeach()
