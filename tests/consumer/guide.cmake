# SPDX-License-Identifier: Apache-2.0
#
# The first program of the guide, from the page itself: its two files and its commands' steps, against a staged installation.
#   cmake -DPAGE=<page> -DSTAGE=<folder> -DBUILD=<folder> -DGENERATOR=<name> -DOPTIONS=<option;…> -P guide.cmake
cmake_minimum_required(VERSION 3.22)

include(${CMAKE_CURRENT_LIST_DIR}/../docs/block.cmake)

file(READ ${PAGE} page)
file(REMOVE_RECURSE ${BUILD})
foreach(name IN ITEMS CMakeLists.txt main.cpp)
  set(text "${page}")
  string(REGEX MATCH "`${name}`:\n\n```[a-z]+\n" head "${text}")
  take_block(text "${head}" block)
  if(block STREQUAL "")
    message(FATAL_ERROR "${PAGE} shows no ${name}")
  endif()
  file(WRITE ${BUILD}/${name} "${block}\n")
endforeach()

foreach(command IN ITEMS "-S;${BUILD};-B;${BUILD}/build;-G;${GENERATOR};-DCMAKE_PREFIX_PATH=${STAGE};${OPTIONS}" "--build;${BUILD}/build")
  execute_process(COMMAND ${CMAKE_COMMAND} ${command} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
# Without its settings it says what is missing, and does not go on.
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env --unset=ORVANE_BASE_URL --unset=ORVANE_TOKEN ${BUILD}/build/hello
  RESULT_VARIABLE result
  ERROR_VARIABLE said)
if(NOT result EQUAL 1 OR NOT said MATCHES "baseURL")
  message(FATAL_ERROR "it ended with ${result} and said: ${said}")
endif()
