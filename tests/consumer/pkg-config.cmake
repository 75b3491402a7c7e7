# SPDX-License-Identifier: Apache-2.0
#
# Builds and runs a user's files with what pkg-config says, which is Orvane's own and nobody else's:
# cmake -DGENERATOR=... -DCOMPILER=... -DPKG_CONFIG=... -DSTAGE=... -DLIBDIR=... -DSHARED=... -DSOURCE=... -DBUILD=... -DOPTIONS=...
#       -P pkg-config.cmake
set(here ${CMAKE_CURRENT_LIST_DIR})
set(definition " -DORVANE_STATIC")
if(SHARED)
  set(definition)
endif()

# flags_of(<result> <folder of .pc files> <argument>...)
function(flags_of result modules)
  set(ENV{PKG_CONFIG_PATH} ${modules})
  execute_process(
    COMMAND ${PKG_CONFIG} ${ARGN}
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  string(STRIP "${flags}" flags)
  set(${result} "${flags}" PARENT_SCOPE)
endfunction()

function(expect_flags flags expected)
  if(NOT flags STREQUAL expected)
    message(FATAL_ERROR "pkg-config says\n  ${flags}\ninstead of\n  ${expected}")
  endif()
endfunction()

set(modules ${STAGE}/${LIBDIR}/pkgconfig)
foreach(program IN ITEMS main:orvane "runtime:orvane-testing;orvane-runtime")
  string(REGEX MATCH "^([a-z]+):(.*)$" program "${program}")
  set(source ${here}/${CMAKE_MATCH_1}.cpp)
  set(names ${CMAKE_MATCH_2})
  # The folder as it is, not as the file spells it: "lib/pkgconfig/../..".
  flags_of(prefix ${modules} --variable=includedir orvane)
  flags_of(cflags ${modules} --cflags ${names})
  expect_flags("${cflags}" "-I${prefix}${definition}")
  flags_of(libs ${modules} --libs ${names})
  separate_arguments(flags UNIX_COMMAND "${cflags} ${libs}")
  execute_process(COMMAND ${COMPILER} -std=c++20 ${source} -o ${BUILD}-program ${flags} -Wl,-rpath,${STAGE}/${LIBDIR}
                          COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${BUILD}-program COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# Folders given whole, as some distributions do, each somewhere else.
file(REMOVE_RECURSE ${BUILD}-absolute)
execute_process(
  COMMAND
    ${CMAKE_COMMAND} -G ${GENERATOR} -S ${SOURCE} -B ${BUILD}-absolute ${OPTIONS} -DORVANE_BUILD_TESTS=OFF -DORVANE_BUILD_TOOLS=OFF
    -DORVANE_BUILD_EXAMPLES=OFF -DORVANE_BUILD_BENCHMARKS=OFF -DCMAKE_INSTALL_PREFIX=/opt/orvane
    -DCMAKE_INSTALL_LIBDIR=/srv/libraries/arch -DCMAKE_INSTALL_INCLUDEDIR=/srv/headers
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
flags_of(cflags ${BUILD}-absolute --cflags orvane-runtime)
expect_flags("${cflags}" "-I/srv/headers${definition}")
flags_of(libs ${BUILD}-absolute --libs-only-L orvane-runtime)
expect_flags("${libs}" "-L/srv/libraries/arch")
