# SPDX-License-Identifier: Apache-2.0
#
# Installs the build into an empty folder: cmake -DBUILD=... -DSTAGE=... -P stage.cmake
file(REMOVE_RECURSE ${STAGE})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${STAGE} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

file(GLOB_RECURSE headers ${STAGE}/include/*.h)
foreach(header IN LISTS headers)
  file(STRINGS ${header} private LIMIT_COUNT 1 REGEX "// Private header: not installed\\.")
  if(private)
    message(FATAL_ERROR "a private header was installed: ${header}")
  endif()
endforeach()
