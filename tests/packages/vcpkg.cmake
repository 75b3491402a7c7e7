# SPDX-License-Identifier: Apache-2.0
#
# Runs a port's steps without vcpkg: cmake -DPORTFILE=... -DFOLDER=... -DFEATURES=... -P vcpkg.cmake
# Of each function of vcpkg's that a portfile calls there is a stand-in here; an argument that it does not know is an error.
# https://learn.microsoft.com/vcpkg/maintainers/functions
cmake_minimum_required(VERSION 3.22)
set(PORT orvane)
set(CURRENT_PACKAGES_DIR ${FOLDER}/installed)
set(build ${FOLDER})

# known(<prefix>): nothing was left over by cmake_parse_arguments, and nothing lacks its value.
function(known prefix)
  if(${prefix}_UNPARSED_ARGUMENTS OR ${prefix}_KEYWORDS_MISSING_VALUES)
    message(FATAL_ERROR "vcpkg: ${${prefix}_UNPARSED_ARGUMENTS} ${${prefix}_KEYWORDS_MISSING_VALUES}")
  endif()
endfunction()

function(vcpkg_check_features)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "OUT_FEATURE_OPTIONS" "FEATURES;INVERTED_FEATURES")
  known(arg)
  set(options)
  while(arg_FEATURES)
    list(POP_FRONT arg_FEATURES feature option)
    if(feature IN_LIST FEATURES)
      list(APPEND options -D${option}=ON)
    else()
      list(APPEND options -D${option}=OFF)
    endif()
  endwhile()
  set(${arg_OUT_FEATURE_OPTIONS} ${options} PARENT_SCOPE)
endfunction()

function(vcpkg_cmake_configure)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "SOURCE_PATH" "OPTIONS")
  known(arg)
  # Compiled as the preset dev does it, from a folder as deep: where that has been built, the compiler's cache may have
  # everything. vcpkg warns of options that nothing reads.
  execute_process(
    COMMAND
      ${CMAKE_COMMAND} -G Ninja -S ${arg_SOURCE_PATH} -B ${build} ${arg_OPTIONS} -DCMAKE_BUILD_TYPE=Debug
      "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g1 -D_GLIBCXX_ASSERTIONS" -DORVANE_WARNINGS_AS_ERRORS=ON -DBUILD_SHARED_LIBS=OFF
      -DCMAKE_INSTALL_PREFIX=${CURRENT_PACKAGES_DIR} -DCMAKE_INSTALL_LIBDIR=lib
    ERROR_VARIABLE warnings COMMAND_ERROR_IS_FATAL ANY)
  if(warnings MATCHES "not used by the project")
    message(FATAL_ERROR "${warnings}")
  endif()
endfunction()

function(vcpkg_cmake_install)
  execute_process(COMMAND ${CMAKE_COMMAND} --build ${build} --target install COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(vcpkg_cmake_config_fixup)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "PACKAGE_NAME;CONFIG_PATH" "")
  known(arg)
  file(COPY ${CURRENT_PACKAGES_DIR}/${arg_CONFIG_PATH}/ DESTINATION ${CURRENT_PACKAGES_DIR}/share/${arg_PACKAGE_NAME})
  file(REMOVE_RECURSE ${CURRENT_PACKAGES_DIR}/${arg_CONFIG_PATH})
  get_filename_component(parent ${CURRENT_PACKAGES_DIR}/${arg_CONFIG_PATH} DIRECTORY)
  file(GLOB others ${parent}/*)
  if(NOT others)
    file(REMOVE_RECURSE ${parent})
  endif()
  # The files find the installation from where they are: two levels below it now, and not three.
  file(GLOB files ${CURRENT_PACKAGES_DIR}/share/${arg_PACKAGE_NAME}/*.cmake)
  if(NOT files)
    message(FATAL_ERROR "vcpkg: nothing is in ${arg_CONFIG_PATH}")
  endif()
  foreach(file IN LISTS files)
    file(READ ${file} text)
    string(REPLACE "\${CMAKE_CURRENT_LIST_DIR}/../../../" "\${CMAKE_CURRENT_LIST_DIR}/../../" text "${text}")
    string(REPLACE "get_filename_component(_IMPORT_PREFIX \"\${CMAKE_CURRENT_LIST_FILE}\" PATH)\n"
                   "get_filename_component(_IMPORT_PREFIX \"\${CMAKE_CURRENT_LIST_DIR}\" ABSOLUTE)\n" text "${text}")
    string(REGEX REPLACE "(_IMPORT_PREFIX \"[^\n]*ABSOLUTE\\)\n)get_filename_component\\(_IMPORT_PREFIX[^\n]*\n" "\\1" text
                         "${text}")
    file(WRITE ${file} "${text}")
  endforeach()
endfunction()

function(vcpkg_fixup_pkgconfig)
  file(GLOB modules ${CURRENT_PACKAGES_DIR}/lib/pkgconfig/*.pc)
  if(NOT modules)
    message(FATAL_ERROR "vcpkg: no pkg-config file was installed")
  endif()
endfunction()

function(vcpkg_copy_tools)
  cmake_parse_arguments(PARSE_ARGV 0 arg "AUTO_CLEAN" "" "TOOL_NAMES")
  known(arg)
  foreach(tool IN LISTS arg_TOOL_NAMES)
    file(COPY ${CURRENT_PACKAGES_DIR}/bin/${tool} DESTINATION ${CURRENT_PACKAGES_DIR}/tools/${PORT})
    file(REMOVE ${CURRENT_PACKAGES_DIR}/bin/${tool})
  endforeach()
endfunction()

function(vcpkg_install_copyright)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "COMMENT" "FILE_LIST")
  known(arg)
  file(COPY ${arg_FILE_LIST} DESTINATION ${CURRENT_PACKAGES_DIR}/share/${PORT})
  file(RENAME ${CURRENT_PACKAGES_DIR}/share/${PORT}/LICENSE ${CURRENT_PACKAGES_DIR}/share/${PORT}/copyright)
endfunction()

get_filename_component(port_folder ${PORTFILE} DIRECTORY)
set(CMAKE_CURRENT_LIST_DIR ${port_folder})
include(${PORTFILE})

# What vcpkg would complain of after the build.
foreach(folder IN ITEMS lib/cmake debug/include debug/share)
  if(EXISTS ${CURRENT_PACKAGES_DIR}/${folder})
    message(FATAL_ERROR "vcpkg: ${folder} is left")
  endif()
endforeach()
foreach(file IN ITEMS share/orvane/copyright share/orvane/usage include/Orvane/Orvane.h lib/libOrvane.a)
  if(NOT EXISTS ${CURRENT_PACKAGES_DIR}/${file})
    message(FATAL_ERROR "vcpkg: there is no ${file}")
  endif()
endforeach()
