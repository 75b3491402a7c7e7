# SPDX-License-Identifier: Apache-2.0
#
# Install rules: libraries, public headers in their folders, the CMake package and the pkg-config files.
#
# Without ORVANE_INSTALL, as in a project that has Orvane as a subproject, nothing is installed by default, but the rules are
# there: they let that project export a library of its own that links Orvane, and `cmake --install … --component
# Orvane_Development` (and Orvane_Runtime) installs what such a package needs.
include(CMakePackageConfigHelpers)

set(orvane_optional)
if(NOT ORVANE_INSTALL)
  set(orvane_optional EXCLUDE_FROM_ALL)
endif()

set(orvane_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Orvane)
set(orvane_components Orvane)
if(ORVANE_BUILD_RUNTIME)
  list(APPEND orvane_components Runtime)
endif()
if(ORVANE_BUILD_TESTING)
  list(APPEND orvane_components Testing)
endif()

# An export set for each library of each kind: a component that nobody asks for is not read, and its dependencies are not
# looked for.
foreach(component IN LISTS orvane_components)
  foreach(kind IN LISTS orvane_kinds)
    get_target_property(target Orvane::${component} ALIASED_TARGET)
    if(NOT kind STREQUAL orvane_kind)
      string(APPEND target ${kind})
    endif()
    install(
      TARGETS ${target}
      EXPORT Orvane${component}${kind}Targets
      RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Orvane_Runtime ${orvane_optional}
      LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
              COMPONENT Orvane_Runtime
              NAMELINK_COMPONENT Orvane_Development
              ${orvane_optional}
      ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Orvane_Development ${orvane_optional})
    install(
      EXPORT Orvane${component}${kind}Targets
      NAMESPACE Orvane::
      DESTINATION ${orvane_package_dir}
      COMPONENT Orvane_Development ${orvane_optional})
  endforeach()
endforeach()

foreach(header IN LISTS orvane_public_headers)
  get_filename_component(folder ${header} DIRECTORY)
  install(
    FILES ${PROJECT_SOURCE_DIR}/${header}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder}
    COMPONENT Orvane_Development ${orvane_optional})
endforeach()

# Apart: a Debian package tells its licence in a way of its own.
install(
  FILES ${PROJECT_SOURCE_DIR}/LICENSE
  DESTINATION ${CMAKE_INSTALL_DATADIR}/licenses/orvane
  COMPONENT Orvane_Licence ${orvane_optional})

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/OrvaneConfig.cmake.in ${PROJECT_BINARY_DIR}/OrvaneConfig.cmake
  INSTALL_DESTINATION ${orvane_package_dir})
# Below 1.0 a minor version may break what it touches.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(
  FILES ${PROJECT_BINARY_DIR}/OrvaneConfig.cmake ${PROJECT_BINARY_DIR}/OrvaneConfigVersion.cmake
  DESTINATION ${orvane_package_dir}
  COMPONENT Orvane_Development ${orvane_optional})

# --- pkg-config ---------------------------------------------------------------------------------

# orvane_closure(<result> <target>...): imported libraries and what they need in turn, each before what it needs.
function(orvane_closure result)
  set(found)
  set(pending ${ARGN})
  while(pending)
    list(POP_FRONT pending library)
    string(REGEX REPLACE "^\\$<LINK_ONLY:(.*)>$" "\\1" library "${library}")
    if(NOT TARGET ${library} OR library STREQUAL "Threads::Threads")
      continue()
    endif()
    # Last where it is needed last.
    list(REMOVE_ITEM found ${library})
    list(APPEND found ${library})
    get_target_property(needed ${library} INTERFACE_LINK_LIBRARIES)
    if(needed)
      list(APPEND pending ${needed})
    endif()
  endwhile()
  set(${result} ${found} PARENT_SCOPE)
endfunction()

# orvane_link_flags(<result> <target>...): how a linker is told of imported libraries, with the folders that it does not
# know. Their own modules are not required instead, since those would hand on their defines and include paths.
function(orvane_link_flags result)
  set(flags)
  orvane_closure(libraries ${ARGN})
  foreach(library IN LISTS libraries)
    get_target_property(type ${library} TYPE)
    if(type STREQUAL "INTERFACE_LIBRARY")
      continue()
    endif()
    get_target_property(location ${library} LOCATION)
    get_filename_component(folder "${location}" DIRECTORY)
    get_filename_component(name "${location}" NAME)
    if(name MATCHES "^lib([^/]+)\\.(a|so|dylib|tbd)([.0-9]*)$")
      set(name ${CMAKE_MATCH_1})
      if(NOT folder IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES AND NOT "-L${folder}" IN_LIST flags)
        list(APPEND flags "-L${folder}")
      endif()
      list(APPEND flags "-l${name}")
    else()
      list(APPEND flags "${location}")
    endif()
  endforeach()
  list(JOIN flags " " flags)
  set(${result} "${flags}" PARENT_SCOPE)
endfunction()

# The folders may be given whole, each for itself. Otherwise they are found from the file's own place, however many levels
# deep the folder of libraries is, so that an installation can be moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(module_prefix ${CMAKE_INSTALL_PREFIX})
  set(module_libdir ${CMAKE_INSTALL_LIBDIR})
else()
  file(RELATIVE_PATH module_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" module_prefix "${module_prefix}")
  set(module_prefix "\${pcfiledir}/${module_prefix}")
  set(module_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(module_includedir ${CMAKE_INSTALL_INCLUDEDIR})
else()
  set(module_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()

set(orvane_description_Orvane "${PROJECT_DESCRIPTION}")
set(orvane_description_Runtime "Default transport, tokens and stores for Orvane")
set(orvane_description_Testing "Test doubles for applications that use Orvane")

# orvane_module(<name> <its library's argument for the linker>): configured from the variables that the caller has set.
function(orvane_module module module_link)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/orvane.pc.in ${PROJECT_BINARY_DIR}/${module}.pc @ONLY)
  install(
    FILES ${PROJECT_BINARY_DIR}/${module}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT Orvane_Development ${orvane_optional})
endfunction()

# A static archive needs its libraries at every link, so that they stand where --static is not asked for. Where there are both
# kinds, a linker takes the shared one for -lOrvane, and the static one has modules of its own (orvane-static), which name the
# archive's file; beside the shared one they stand for programs that are static as a whole.
foreach(component IN LISTS orvane_components)
  get_target_property(module_library Orvane::${component} ALIASED_TARGET)
  set(module_description "${orvane_description_${component}}")
  set(module orvane)
  set(base)
  if(NOT component STREQUAL "Orvane")
    string(TOLOWER "orvane-${component}" module)
    set(base orvane)
  endif()
  orvane_link_flags(needed ${orvane_libraries_${component}})
  string(STRIP "${needed} -pthread" needed)

  set(module_requires)
  if(base)
    set(module_requires "${base} = ${PROJECT_VERSION}")
  endif()
  set(module_cflags)
  set(module_libs)
  set(module_private)
  if(orvane_kind STREQUAL "Static")
    set(module_cflags " -DORVANE_STATIC")
    set(module_libs " ${needed}")
  elseif("Static" IN_LIST orvane_kinds)
    set(module_private "Cflags.private: -DORVANE_STATIC\nLibs.private: ${needed}\n")
  endif()
  orvane_module(${module} -l${module_library})

  if(orvane_kind STREQUAL "Shared" AND "Static" IN_LIST orvane_kinds)
    if(base)
      set(module_requires "${base}-static = ${PROJECT_VERSION}")
    endif()
    string(APPEND module_description " (static)")
    set(module_cflags " -DORVANE_STATIC")
    set(module_libs " ${needed}")
    set(module_private)
    orvane_module(${module}-static "\${libdir}/${CMAKE_STATIC_LIBRARY_PREFIX}${module_library}${CMAKE_STATIC_LIBRARY_SUFFIX}")
  endif()
endforeach()
