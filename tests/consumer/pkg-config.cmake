# SPDX-License-Identifier: Apache-2.0
#
# Builds and runs a user's file with what pkg-config says:
# cmake -DCOMPILER=... -DPKG_CONFIG=... -DPKG_CONFIG_PATH=... -DRPATH=... -DSOURCE=... -DOUTPUT=... -P pkg-config.cmake
set(ENV{PKG_CONFIG_PATH} ${PKG_CONFIG_PATH})
execute_process(
  COMMAND ${PKG_CONFIG} --cflags --libs orvane
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND ${COMPILER} -std=c++20 ${SOURCE} -o ${OUTPUT} ${flags} -Wl,-rpath,${RPATH}
                        COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${OUTPUT} COMMAND_ERROR_IS_FATAL ANY)
