# SPDX-License-Identifier: Apache-2.0
#
# Each component asks for what it needs itself and nothing else: on a machine without libcurl, all but the Runtime is there.
# cmake -DSTAGE=... -DSHARED=... -DSOURCE=... -DBUILD=... -DOPTIONS=... -P components.cmake
function(check ask expected)
  file(REMOVE_RECURSE ${BUILD})
  execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${BUILD} ${OPTIONS} -DCMAKE_PREFIX_PATH=${STAGE} "-DASK=${ask}" ${ARGN}
    OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "asked for '${ask}' ${ARGN}; wanted '${expected}', and CMake said:\n${output}")
  endif()
endfunction()

set(no_curl -DCMAKE_DISABLE_FIND_PACKAGE_CURL=ON)
set(no_simdjson -DCMAKE_DISABLE_FIND_PACKAGE_simdjson=ON)
check("" "got Orvane.Runtime.Testing")
check("COMPONENTS;Orvane" "got Orvane\\." ${no_curl})
check("COMPONENTS;Testing" "got Orvane.Testing\\." ${no_curl})
check("COMPONENTS;Runtime" "got Orvane.Runtime\\.")
check("COMPONENTS;Charts" "Charts")
if(SHARED)
  # A shared library has found its own.
  check("" "got Orvane.Runtime.Testing" ${no_curl} ${no_simdjson})
else()
  check("" "CURL" ${no_curl})
  check("COMPONENTS;Runtime" "CURL" ${no_curl})
  check("COMPONENTS;Orvane;OPTIONAL_COMPONENTS;Runtime;Testing" "got Orvane.Testing\\." ${no_curl})
  check("COMPONENTS;Testing" "simdjson" ${no_simdjson})
endif()
