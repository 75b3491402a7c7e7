# SPDX-License-Identifier: Apache-2.0
#
# Install rules: libraries, public headers in their folders, the CMake package and the pkg-config files.
include(CMakePackageConfigHelpers)

set(orvane_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Orvane)
set(orvane_installed_targets Orvane)
if(ORVANE_BUILD_RUNTIME)
  list(APPEND orvane_installed_targets OrvaneRuntime)
endif()
if(ORVANE_BUILD_TESTING)
  list(APPEND orvane_installed_targets OrvaneTesting)
endif()

install(
  TARGETS ${orvane_installed_targets}
  EXPORT OrvaneTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Orvane_Runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Orvane_Runtime NAMELINK_COMPONENT Orvane_Development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Orvane_Development)

# A private header says so in its first lines; it is built and tested, not installed.
file(GLOB_RECURSE orvane_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} Orvane/*.h)
set(orvane_public_headers)
set(orvane_private_headers)
foreach(header IN LISTS orvane_headers)
  file(STRINGS ${header} head LIMIT_COUNT 10)
  if(head MATCHES "// Private header: not installed\\.")
    list(APPEND orvane_private_headers ${header})
  else()
    list(APPEND orvane_public_headers ${header})
  endif()
endforeach()
if(NOT ORVANE_BUILD_RUNTIME)
  list(FILTER orvane_public_headers EXCLUDE REGEX "^Orvane/Runtime[./]")
endif()
if(NOT ORVANE_BUILD_TESTING)
  list(FILTER orvane_public_headers EXCLUDE REGEX "^Orvane/Testing[./]")
endif()
foreach(header IN LISTS orvane_public_headers)
  get_filename_component(folder ${header} DIRECTORY)
  install(
    FILES ${PROJECT_SOURCE_DIR}/${header}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder}
    COMPONENT Orvane_Development)
endforeach()

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/OrvaneConfig.cmake.in ${PROJECT_BINARY_DIR}/OrvaneConfig.cmake
  INSTALL_DESTINATION ${orvane_package_dir})
# Below 1.0 a minor version may break what it touches.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(
  EXPORT OrvaneTargets
  NAMESPACE Orvane::
  DESTINATION ${orvane_package_dir}
  COMPONENT Orvane_Development)
install(
  FILES ${PROJECT_BINARY_DIR}/OrvaneConfig.cmake ${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake
  DESTINATION ${orvane_package_dir}
  COMPONENT Orvane_Development)

# From where the pkg-config files are to the prefix: the folder of libraries may be several levels deep.
file(RELATIVE_PATH module_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" module_prefix "${module_prefix}")
foreach(target IN LISTS orvane_installed_targets)
  set(module orvane)
  set(module_description ${PROJECT_DESCRIPTION})
  set(module_requires)
  set(module_requires_private "simdjson, icu-i18n, icu-uc")
  set(module_libs_private "-lboost_url")
  if(target STREQUAL "OrvaneRuntime")
    set(module orvane-runtime)
    set(module_description "Default transport, tokens and stores for Orvane")
    set(module_requires "orvane = ${PROJECT_VERSION}")
    set(module_requires_private "libcurl, libcrypto")
    set(module_libs_private)
  elseif(target STREQUAL "OrvaneTesting")
    set(module orvane-testing)
    set(module_description "Test doubles for applications that use Orvane")
    set(module_requires "orvane = ${PROJECT_VERSION}")
    set(module_requires_private)
    set(module_libs_private)
  endif()
  set(module_library ${target})
  set(module_cflags)
  if(NOT BUILD_SHARED_LIBS)
    # A static archive needs its libraries at every link, not only with --static.
    set(module_cflags -DORVANE_STATIC)
    string(JOIN ", " module_requires ${module_requires} ${module_requires_private})
    set(module_libs_extra "${module_libs_private} -pthread")
    set(module_requires_private)
    set(module_libs_private)
  else()
    set(module_libs_extra)
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/orvane.pc.in ${PROJECT_BINARY_DIR}/${module}.pc @ONLY)
  install(
    FILES ${PROJECT_BINARY_DIR}/${module}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT Orvane_Development)
endforeach()
