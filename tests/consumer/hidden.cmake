# SPDX-License-Identifier: Apache-2.0
#
# Somebody's shared library with a static Orvane inside offers none of its names. Where that library is compiled to offer all
# that it has, what its own compiler made of Orvane's inline functions and templates (weak symbols) is its own.
# cmake -DNM=... -DLIBRARY=... -DKINDS=... -P hidden.cmake
execute_process(
  COMMAND ${NM} --dynamic --defined-only ${LIBRARY}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
if(NOT symbols MATCHES " pluginStarts")
  message(FATAL_ERROR "${LIBRARY} does not offer its own function")
endif()
# Functions, variables, tables and type names of namespace orvane (Itanium C++ ABI, section 5.1). What the standard library's
# templates make of Orvane's types is the other library's own.
string(REGEX MATCHALL "[^\n]* [${KINDS}] _Z(T[A-Z]|GV|Z)*NK?6orvane[^\n]*" offered "${symbols}")
if(offered)
  list(JOIN offered "\n  " offered)
  message(FATAL_ERROR "${LIBRARY} offers what is Orvane's:\n  ${offered}")
endif()
