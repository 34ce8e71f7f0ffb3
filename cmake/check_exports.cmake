cmake_policy(VERSION 3.25)
# Fails unless the dynamic symbols LIBRARY defines are exactly the functions
# HEADER declares with API_MACRO, so a forgotten export or a leaked internal
# symbol is caught.
# Usage: cmake -DNM=<nm> -DLIBRARY=<so> -DHEADER=<h> -DAPI_MACRO=<macro> -P check_exports.cmake

file(READ "${HEADER}" header_text)
# Declarations start a line with the macro; this skips the macro's #define.
string(REGEX MATCHALL "\n${API_MACRO} [^;(]*[ *]([A-Za-z0-9_]+)[ ]*\\(" declarations "${header_text}")
set(declared "")
foreach(declaration IN LISTS declarations)
    string(REGEX REPLACE ".*[ *]([A-Za-z0-9_]+)[ ]*\\($" "\\1" name "${declaration}")
    list(APPEND declared "${name}")
endforeach()

execute_process(COMMAND "${NM}" -D --defined-only "${LIBRARY}"
    OUTPUT_VARIABLE nm_output RESULT_VARIABLE nm_result)
if(NOT nm_result EQUAL 0)
    message(FATAL_ERROR "${NM} failed on ${LIBRARY}")
endif()
string(REGEX MATCHALL "[^\n]+" nm_lines "${nm_output}")
set(exported "")
foreach(line IN LISTS nm_lines)
    # The version script's node (ZOLVEX_M_0.38) is an absolute symbol, no export.
    if(line MATCHES " A [^ ]+$")
        continue()
    endif()
    string(REGEX REPLACE "^.* ([^ ]+)$" "\\1" name "${line}")
    string(REGEX REPLACE "@.*$" "" name "${name}")
    list(APPEND exported "${name}")
endforeach()

list(SORT declared)
list(REMOVE_DUPLICATES declared)
list(SORT exported)
list(REMOVE_DUPLICATES exported)
if(declared STREQUAL "")
    message(FATAL_ERROR "no ${API_MACRO} declarations found in ${HEADER}")
endif()
if(NOT declared STREQUAL exported)
    message(FATAL_ERROR "exports differ from header\n  declared: ${declared}\n  exported: ${exported}")
endif()
message(STATUS "exports match: ${exported}")
