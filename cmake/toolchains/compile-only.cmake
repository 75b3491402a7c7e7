# SPDX-License-Identifier: Apache-2.0
#
# A program is an empty file once all of it has been compiled. What it would be linked with is found where this machine's own is.
set(CMAKE_LIBRARY_ARCHITECTURE ${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_CXX_LINK_EXECUTABLE "<CMAKE_COMMAND> -E touch <TARGET>")
