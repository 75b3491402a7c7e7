# SPDX-License-Identifier: Apache-2.0
#
# A shared library offers its own names, and nobody else's: cmake -DNM=... -DSTAGE=... -P symbols.cmake
file(GLOB libraries ${STAGE}/lib*/lib*.so ${STAGE}/lib*/*/lib*.so)
if(NOT libraries)
  message(FATAL_ERROR "no shared library was installed in ${STAGE}")
endif()
foreach(library IN LISTS libraries)
  execute_process(
    COMMAND ${NM} --dynamic --defined-only --demangle ${library}
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  if(NOT symbols MATCHES " orvane::")
    message(FATAL_ERROR "${library} offers nothing")
  endif()
  string(REGEX MATCHALL "[^\n]* (simdjson|boost|icu_[0-9]+)::[^\n]*" foreign "${symbols}")
  if(foreign)
    list(JOIN foreign "\n  " foreign)
    message(FATAL_ERROR "${library} offers what is not its own:\n  ${foreign}")
  endif()
endforeach()
