cmake_policy(VERSION 3.25)
# Compares the built library's ABI with the checked-in baseline and fails on
# any change but added functions: a function removed, a parameter or return
# type changed, a public type's layout changed.
# Usage: cmake -DABIDIFF=<abidiff> -DBASELINE=<abi file> -DLIBRARY=<so> -DHEADERS=<dir> -P check_abi.cmake
execute_process(COMMAND ${ABIDIFF} --exported-interfaces-only --no-added-syms --headers-dir2 ${HEADERS} --drop-private-types
                        ${BASELINE} ${LIBRARY}
                RESULT_VARIABLE rc OUTPUT_VARIABLE report ERROR_VARIABLE report)
# abidiff's status is a bit set: 1 error, 2 usage error, 4 a change, 8 a
# change known to be incompatible. Added functions are left out of the
# comparison (--no-added-syms), so any other change fails: a changed
# parameter type counts only as a change (4), yet breaks callers.
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "the ABI differs from ${BASELINE} (abidiff status ${rc}):\n${report}\n"
                      "If the break is deliberate, raise the minor version and run tools/abi-baseline.")
endif()
message(STATUS "ABI compatible with ${BASELINE}")
