cmake_policy(VERSION 3.25)
# Compares the built library's ABI with the checked-in baseline and fails on
# a change that breaks programs linked against the baseline: a function
# removed, a parameter or return type changed, a public type's layout
# changed. Added functions are compatible and pass.
# Usage: cmake -DABIDIFF=<abidiff> -DBASELINE=<abi file> -DLIBRARY=<so> -DHEADERS=<dir> -P check_abi.cmake
execute_process(COMMAND ${ABIDIFF} --exported-interfaces-only --no-added-syms --headers-dir2 ${HEADERS} --drop-private-types
                        ${BASELINE} ${LIBRARY}
                RESULT_VARIABLE rc OUTPUT_VARIABLE report ERROR_VARIABLE report)
# abidiff's status is a bit set: 1 error, 2 usage error, 4 some change,
# 8 an incompatible change.
if(NOT rc MATCHES "^[0-9]+$")
  message(FATAL_ERROR "abidiff did not run: ${rc}\n${report}")
endif()
math(EXPR failing "${rc} & 11")
if(failing)
  message(FATAL_ERROR "the ABI differs from ${BASELINE} incompatibly (abidiff status ${rc}):\n${report}\n"
                      "If the break is deliberate, raise the minor version and run tools/abi-baseline.")
endif()
message(STATUS "ABI compatible with ${BASELINE}")
