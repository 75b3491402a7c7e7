# SPDX-License-Identifier: Apache-2.0
#
# Each component asks for what it needs itself and nothing else: on a machine without libcurl, all but the Runtime is there.
# cmake -DGENERATOR=... -DSTAGE=... -DSHARED=... -DSOURCE=... -DBUILD=... -DOPTIONS=... -P components.cmake
# check <what is asked for> <what is got, or needed for it> [option...]
function(check ask expected)
  file(REMOVE_RECURSE ${BUILD})
  execute_process(
    COMMAND ${CMAKE_COMMAND} -G ${GENERATOR} -S ${SOURCE} -B ${BUILD} ${OPTIONS} -DCMAKE_PREFIX_PATH=${STAGE} "-DASK=${ask}" ${ARGN}
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  # A refusal names what is lacking; CMake itself speaks of the option that takes it away.
  set(refused FALSE)
  if(NOT expected MATCHES "^got ")
    set(refused TRUE)
    set(expected "(find_package for module |could not find |component )${expected}")
  endif()
  if(NOT output MATCHES "${expected}" OR (refused AND status EQUAL 0) OR (NOT refused AND NOT status EQUAL 0))
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
