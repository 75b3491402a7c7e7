# SPDX-License-Identifier: Apache-2.0
#
# Clang with LLVM's standard library. What comes from outside in C++ (simdjson, Abseil, Boost.URL, GoogleTest) Debian has
# compiled with GCC's, so that all is compiled here, and nothing linked.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_FLAGS_INIT -stdlib=libc++)
include(${CMAKE_CURRENT_LIST_DIR}/compile-only.cmake)
