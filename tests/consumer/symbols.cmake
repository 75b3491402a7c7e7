# SPDX-License-Identifier: Apache-2.0
#
# A shared library offers its own names, and nobody else's, and finds what it stands on where it has been put:
# cmake -DNM=... -DSTAGE=... -P symbols.cmake
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
  string(REGEX MATCHALL "[^\n]* (absl|simdjson|boost|icu_[0-9]+)::[^\n]*" foreign "${symbols}")
  if(foreign)
    list(JOIN foreign "\n  " foreign)
    message(FATAL_ERROR "${library} offers what is not its own:\n  ${foreign}")
  endif()

  # Linux tells what a library would be loaded with.
  find_program(LDD ldd)
  if(LDD)
    set(ENV{LD_LIBRARY_PATH})
    execute_process(
      COMMAND ${LDD} ${library}
      OUTPUT_VARIABLE needed COMMAND_ERROR_IS_FATAL ANY)
    if(needed MATCHES "not found")
      message(FATAL_ERROR "${library} does not find what it needs:\n${needed}")
    endif()
  endif()
endforeach()
