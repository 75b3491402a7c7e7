# SPDX-License-Identifier: Apache-2.0
#
# A type that has no coding is refused in words, not by the linker:
# cmake -DCOMPILER=... -DSTAGE=... -DSOURCE=... -P refused.cmake
execute_process(
  COMMAND ${COMPILER} -std=c++20 -fsyntax-only -I${STAGE}/include ${SOURCE}
  RESULT_VARIABLE failed
  ERROR_VARIABLE messages)
if(NOT failed OR NOT messages MATCHES "error: static[^\n]*orvane::decode and orvane::encode take a record of")
  message(FATAL_ERROR "the compiler did not say what decode takes:\n${messages}")
endif()
