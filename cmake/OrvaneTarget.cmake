# SPDX-License-Identifier: Apache-2.0
#
# How every C++ target of this project is compiled.

set(ORVANE_WARNINGS
    -Wall
    -Wextra
    -Wpedantic
    -Wcast-qual
    -Wconversion
    -Wextra-semi
    -Wformat=2
    -Wmissing-declarations
    -Wnon-virtual-dtor
    -Wold-style-cast
    -Woverloaded-virtual
    -Wshadow
    -Wsign-conversion
    -Wundef)

# orvane_compile_options(<target>): language level, visibility, arithmetic and warnings, all private to the target.
function(orvane_compile_options target)
  set_target_properties(
    ${target}
    PROPERTIES CXX_EXTENSIONS OFF
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON)
  target_compile_features(${target} PRIVATE cxx_std_20)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 $<$<BOOL:${ORVANE_WARNINGS_AS_ERRORS}>:/WX>)
    return()
  endif()
  # The stated unit conversions round after every operation: no fused multiply-add, no x87 extra precision.
  target_compile_options(${target} PRIVATE -ffp-contract=off)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i.86|x86|x86_64|AMD64|amd64)$" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
  endif()
  # Files beyond 2 GiB (POSIX large file support).
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64)
  endif()
  target_compile_options(${target} PRIVATE ${ORVANE_WARNINGS} $<$<BOOL:${ORVANE_WARNINGS_AS_ERRORS}>:-Werror>)
  # Log lines and faults name files as the repository does, wherever it was built.
  target_compile_options(${target} PRIVATE "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 reports overlapping copies inside std::string that do not happen (GCC bug 105651).
    target_compile_options(${target} PRIVATE $<$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>:-Wno-restrict>)
  endif()
endfunction()

# orvane_add_executables(<prefix> [LIBRARIES ...] [OPTIONS ...] [EXCEPT <name> ...]): one executable per .cpp of the current
# folder, but for those named.
function(orvane_add_executables prefix)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBRARIES;OPTIONS;EXCEPT")
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  foreach(exception IN LISTS arg_EXCEPT)
    list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/${exception}.cpp)
  endforeach()
  foreach(source IN LISTS sources)
    get_filename_component(name ${source} NAME_WE)
    set(target ${prefix}-${name})
    add_executable(${target} ${source})
    orvane_compile_options(${target})
    target_compile_options(${target} PRIVATE ${arg_OPTIONS})
    target_link_options(${target} PRIVATE ${arg_OPTIONS})
    target_link_libraries(${target} PRIVATE ${arg_LIBRARIES})
  endforeach()
endfunction()
