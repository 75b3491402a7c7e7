# SPDX-License-Identifier: Apache-2.0
#
# Compiles a user's file against the installed headers and nothing else, and reads which headers it drew in:
# cmake -DCOMPILER=... -DSTAGE=... -DSOURCE=... -P headers.cmake
execute_process(
  COMMAND ${COMPILER} -std=c++20 -pedantic-errors -fsyntax-only -I${STAGE}/include ${SOURCE}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${COMPILER} -std=c++20 -M -I${STAGE}/include ${SOURCE}
  OUTPUT_VARIABLE dependencies COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCHALL "[^ \\\n]+" dependencies "${dependencies}")
if(NOT dependencies MATCHES "${STAGE}/include/Orvane/Orvane\\.h")
  message(FATAL_ERROR "the installed headers were not read")
endif()
list(FILTER dependencies EXCLUDE REGEX "^${STAGE}/include/Orvane/")
list(FILTER dependencies INCLUDE REGEX
     "/(boost|curl|gmock|gtest|httplib|nlohmann|openssl|simdjson|sqlite3|unicode)[./]")
if(dependencies)
  list(JOIN dependencies "\n  " dependencies)
  message(FATAL_ERROR "headers from outside reach users:\n  ${dependencies}")
endif()
