# SPDX-License-Identifier: Apache-2.0
#
# Debian packages by CPack: liborvane0.1 (the shared libraries), liborvane-dev (what building against them takes, and the
# static ones) and orvane-tools. ./dev package builds them.
find_program(ORVANE_DPKG_QUERY dpkg-query)
if(NOT ORVANE_WITH_STATIC_LIBS OR NOT ORVANE_BUILD_RUNTIME OR NOT ORVANE_BUILD_TOOLS OR NOT ORVANE_DPKG_QUERY)
  return()
endif()
include(${CMAKE_CURRENT_LIST_DIR}/OrvaneBillOfMaterials.cmake)
set(library_package liborvane${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(packages ${PROJECT_BINARY_DIR}/packages)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvane)
set(CPACK_PACKAGE_VENDOR Orvane)
set(CPACK_PACKAGE_CONTACT "Orvane maintainers <maintainers@orvane.example>")
set(CPACK_PACKAGE_DIRECTORY ${packages})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL Orvane_Runtime Orvane_Development Orvane_Tools)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
execute_process(
  COMMAND dpkg --print-architecture
  OUTPUT_VARIABLE CPACK_DEBIAN_PACKAGE_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The client's libraries are found where they are built.
get_target_property(library_folder Orvane BINARY_DIR)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${library_folder})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(about "A C++20 client library for telematics and usage-based-insurance\nprogrammes: typed, asynchronous, cancellable access to \
one backend's\nusers, vehicles, trips, scores and what belongs to them.")

# orvane_package(<component> <package> <section> <summary> <what it holds>)
function(orvane_package component package section summary contents)
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_COMPONENT_${key}_DESCRIPTION "${summary}\n${about}\n\n${contents}" PARENT_SCOPE)

  # What is in it, and on what terms.
  orvane_notices(${packages}/${package}/THIRD-PARTY-NOTICES materials_${package})
  execute_process(
    COMMAND gzip --best --no-name --force --keep ${packages}/${package}/THIRD-PARTY-NOTICES COMMAND_ERROR_IS_FATAL ANY)
  install(
    FILES ${packages}/${package}/THIRD-PARTY-NOTICES.gz ${packages}/${package}/${package}.spdx.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
    COMPONENT ${component} EXCLUDE_FROM_ALL)

  # What Debian wants of every package: its licence, and its changes.
  configure_file(${PROJECT_SOURCE_DIR}/packaging/debian/copyright ${packages}/${package}/copyright COPYONLY)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/debian/changelog.in ${packages}/${package}/changelog @ONLY)
  execute_process(
    COMMAND gzip --best --no-name --force --keep ${packages}/${package}/changelog COMMAND_ERROR_IS_FATAL ANY)
  install(
    FILES ${packages}/${package}/copyright
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
    COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(
    FILES ${packages}/${package}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
    RENAME changelog.Debian.gz
    COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

# When the changes of this version were made; the clock's time where nobody has said.
set(moment "$ENV{SOURCE_DATE_EPOCH}")
if(moment STREQUAL "")
  string(TIMESTAMP moment "%s" UTC)
endif()
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C TZ=UTC date --rfc-email --date=@${moment}
  OUTPUT_VARIABLE changelog_date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)

set(libraries Orvane OrvaneRuntime)
if(TARGET OrvaneTesting)
  list(APPEND libraries OrvaneTesting)
endif()
orvane_materials(materials_${library_package} ${libraries})
orvane_materials(materials_liborvane-dev ${libraries})
orvane_materials(materials_orvane-tools orvane-cli orvane-sandbox)
orvane_bill_of_materials(${packages}/${library_package}/${library_package}.spdx.json materials_${library_package}
                         ${library_package} LIBRARY DYNAMIC_LINK)
orvane_bill_of_materials(${packages}/liborvane-dev/liborvane-dev.spdx.json materials_liborvane-dev liborvane-dev LIBRARY
                         DEPENDS_ON ${library_package})
orvane_bill_of_materials(${packages}/orvane-tools/orvane-tools.spdx.json materials_orvane-tools orvane-tools APPLICATION
                         DYNAMIC_LINK ${library_package})

orvane_package(Orvane_Runtime ${library_package} libs "client library for usage-based insurance (shared libraries)"
               "This package holds the shared libraries.")
orvane_package(Orvane_Development liborvane-dev libdevel "client library for usage-based insurance (development)"
               "This package holds headers, static libraries, a CMake package and\npkg-config files.")
orvane_package(
  Orvane_Tools orvane-tools devel "command-line client and local backend for Orvane"
  "This package holds orvane, which calls a backend from a shell, and\norvane-sandbox, a backend on one's own machine.")

# Which of the library's own names came with which version, for those who build packages against it (deb-symbols(5)).
# What templates make for Orvane's types depends on the compiler.
find_program(ORVANE_GENSYMBOLS dpkg-gensymbols)
if(ORVANE_GENSYMBOLS)
  set(elf_files)
  foreach(library IN LISTS libraries)
    list(APPEND elf_files -e$<TARGET_FILE:${library}>)
  endforeach()
  # Since dpkg 1.22 it wants to know of which source package this is.
  file(WRITE ${packages}/source/debian/control
       "Source: orvane\nMaintainer: ${CPACK_PACKAGE_CONTACT}\n\nPackage: ${library_package}\nArchitecture: any\n")
  add_custom_command(
    OUTPUT ${packages}/symbols
    COMMAND ${ORVANE_GENSYMBOLS} -q -c0 -p${library_package} -v${PROJECT_VERSION} ${elf_files} -O${packages}/symbols.all
    COMMAND grep -E "^[^ ]|^ ORVANE_|^ _Z(Th[^_]*_|Tv[^N]*_|T[ISTV])?NK?6orvane" ${packages}/symbols.all >
            ${packages}/symbols
    DEPENDS ${libraries}
    WORKING_DIRECTORY ${packages}/source
    VERBATIM)
  add_custom_target(orvane-symbols ALL DEPENDS ${packages}/symbols)
  list(APPEND CPACK_DEBIAN_ORVANE_RUNTIME_PACKAGE_CONTROL_EXTRA ${packages}/symbols)
endif()

# For tools that know no symbols files; and the linker's cache is brought up to date by dpkg.
set(shlibs)
foreach(library IN LISTS libraries)
  get_target_property(soversion ${library} SOVERSION)
  string(APPEND shlibs "lib${library} ${soversion} ${library_package} (>= ${PROJECT_VERSION})\n")
endforeach()
file(WRITE ${packages}/shlibs "${shlibs}")
file(WRITE ${packages}/triggers "activate-noawait ldconfig\n")
list(APPEND CPACK_DEBIAN_ORVANE_RUNTIME_PACKAGE_CONTROL_EXTRA ${packages}/shlibs ${packages}/triggers)
set(CPACK_DEBIAN_ORVANE_DEVELOPMENT_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION}-1)")
# What the static libraries hand on to a program's link.
list(JOIN materials_liborvane-dev_development ", " CPACK_DEBIAN_ORVANE_DEVELOPMENT_PACKAGE_RECOMMENDS)
set(CPACK_DEBIAN_ORVANE_DEVELOPMENT_PACKAGE_SUGGESTS orvane-tools)
set(CPACK_DEBIAN_ORVANE_TOOLS_PACKAGE_DEPENDS "${library_package} (= ${PROJECT_VERSION}-1)")

# CPack strips what can be run, and not archives.
install(
  CODE "file(GLOB archives \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/libOrvane*.a\")
        execute_process(COMMAND ${CMAKE_STRIP} --strip-debug --remove-section=.comment --enable-deterministic-archives
                                \${archives} COMMAND_ERROR_IS_FATAL ANY)"
  COMPONENT Orvane_Development EXCLUDE_FROM_ALL)

# Debian's manuals are packed.
install(
  CODE "file(GLOB manuals \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_MANDIR}/man1/orvane*.1\")
        execute_process(COMMAND gzip --best --no-name --force \${manuals} COMMAND_ERROR_IS_FATAL ANY)"
  COMPONENT Orvane_Tools EXCLUDE_FROM_ALL)

include(CPack)
