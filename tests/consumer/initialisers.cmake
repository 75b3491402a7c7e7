# SPDX-License-Identifier: Apache-2.0
#
# Nothing of the library runs before main: cmake -DNM=... -DSTAGE=... -P initialisers.cmake
file(GLOB libraries ${STAGE}/lib*/lib*.a ${STAGE}/lib*/*/lib*.a)
if(NOT libraries)
  message(FATAL_ERROR "no static library was installed in ${STAGE}")
endif()
foreach(library IN LISTS libraries)
  execute_process(
    COMMAND ${NM} --defined-only ${library}
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  if(NOT symbols MATCHES "N6orvane")
    message(FATAL_ERROR "${library} holds nothing")
  endif()
  string(REGEX MATCHALL "[^\n]*_GLOBAL__sub_I[^\n]*" initialisers "${symbols}")
  # Those that sanitisers add of their own run before any other.
  list(FILTER initialisers EXCLUDE REGEX "_GLOBAL__sub_I_000")
  if(initialisers)
    list(JOIN initialisers "\n  " initialisers)
    message(FATAL_ERROR "${library} initialises objects before main:\n  ${initialisers}")
  endif()
endforeach()
