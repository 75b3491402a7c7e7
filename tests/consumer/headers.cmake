# SPDX-License-Identifier: Apache-2.0
#
# Compiles a user's file against the installed headers and nothing else, and reads which headers it drew in:
# cmake -DCOMPILER=... -DSTAGE=... -DSOURCE=... -P headers.cmake
#
# They compile in surroundings that are not the library's own: with macros that X11 and Windows define, without exceptions,
# and with libc++ where there is one. Without run-time type information they say why they can't.
set(read_all ${COMPILER} -std=c++20 -pedantic-errors -fsyntax-only -I${STAGE}/include)
set(umbrellas -include Orvane/Orvane.h -include Orvane/Runtime.h -include Orvane/Testing.h)
set(hostile_macros -DStatus=int -DBool=int -DNone=0L -DSuccess=0 -DAlways=2 "-Dmin(a,b)=a" "-Dmax(a,b)=b" -DERROR=0
                   -DDELETE=0 -DIN= -DOUT= -DOPTIONAL= -Dinterface=struct -Dsmall=char)

execute_process(COMMAND ${read_all} ${SOURCE} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${read_all} ${hostile_macros} ${umbrellas} -x c++ /dev/null COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${read_all} -fno-exceptions ${umbrellas} -x c++ /dev/null COMMAND_ERROR_IS_FATAL ANY)

execute_process(
  COMMAND ${read_all} -fno-rtti ${umbrellas} -x c++ /dev/null
  RESULT_VARIABLE status ERROR_VARIABLE refusal)
if(status EQUAL 0 OR NOT refusal MATCHES "Orvane needs run-time type information")
  message(FATAL_ERROR "without run-time type information the compiler said:\n${refusal}")
endif()

execute_process(
  COMMAND ${COMPILER} -stdlib=libc++ -fsyntax-only -include string -x c++ /dev/null
  RESULT_VARIABLE status OUTPUT_QUIET ERROR_QUIET)
if(status EQUAL 0)
  message(STATUS "read with libc++ as well")
  execute_process(COMMAND ${read_all} -stdlib=libc++ ${SOURCE} COMMAND_ERROR_IS_FATAL ANY)
endif()

execute_process(
  COMMAND ${COMPILER} -std=c++20 -M -I${STAGE}/include ${SOURCE}
  OUTPUT_VARIABLE dependencies COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCHALL "[^ \\\n]+" dependencies "${dependencies}")
if(NOT dependencies MATCHES "${STAGE}/include/Orvane/Orvane\\.h")
  message(FATAL_ERROR "the installed headers were not read")
endif()
list(FILTER dependencies EXCLUDE REGEX "^${STAGE}/include/Orvane/|/c\\+\\+/")
list(FILTER dependencies INCLUDE REGEX
     "/(absl|boost|curl|gmock|gtest|httplib|nlohmann|openssl|simdjson|sqlite3|unicode)[./]")
if(dependencies)
  list(JOIN dependencies "\n  " dependencies)
  message(FATAL_ERROR "headers from outside reach users:\n  ${dependencies}")
endif()
