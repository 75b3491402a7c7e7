# SPDX-License-Identifier: Apache-2.0
#
# Linux with musl, of which Debian has the C library alone. Its headers and those of LLVM's standard library are read; what
# comes from outside has been compiled for glibc, so that everything is compiled here, and no program linked.
set(orvane_processor ${CMAKE_HOST_SYSTEM_PROCESSOR})
set(orvane_folders /usr/include /usr/include/${orvane_processor}-linux-gnu)

# Read once more when the compiler is known: the folders that packages name are glibc's, too, and left out.
if(CMAKE_CXX_COMPILER_LOADED)
  list(APPEND CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES ${orvane_folders})
  return()
endif()
set(CMAKE_PROJECT_INCLUDE ${CMAKE_CURRENT_LIST_FILE})

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${orvane_processor})
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET ${orvane_processor}-linux-musl)

# The headers from outside, by links.
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES)
foreach(folder IN LISTS orvane_folders)
  file(RELATIVE_PATH name /usr ${folder})
  set(links ${CMAKE_BINARY_DIR}/outside/${name})
  file(MAKE_DIRECTORY ${links})
  foreach(header IN ITEMS CLI absl asio asio.hpp boost curl gmock gtest httplib.h nlohmann openssl simdjson.h sqlite3.h unicode
                          zconf.h zlib.h)
    if(EXISTS ${folder}/${header})
      file(CREATE_LINK ${folder}/${header} ${links}/${header} SYMBOLIC)
    endif()
  endforeach()
  list(APPEND CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${links})
endforeach()

# Debian's libc++ has been set up for glibc.
execute_process(COMMAND clang++ -print-resource-dir OUTPUT_VARIABLE orvane_clang OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(orvane_libcxx ${orvane_clang}/../../../include/c++/v1 ABSOLUTE)
string(JOIN " " CMAKE_CXX_FLAGS_INIT -D_LIBCPP_HAS_MUSL_LIBC -nostdlibinc -isystem ${orvane_libcxx} -isystem
       /usr/include/${orvane_processor}-linux-musl)
include(${CMAKE_CURRENT_LIST_DIR}/compile-only.cmake)
