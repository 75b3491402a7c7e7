# SPDX-License-Identifier: Apache-2.0
#
# What is in a package besides this project's own code, and what it needs: from the targets that are linked, and from what
# dpkg knows of their files. Of it are made an SPDX 2.3 document (https://spdx.github.io/spdx-spec/v2.3/), the notices that
# go with the package, and the packages that building against the static libraries takes.

# Each target from outside that something of this project links: name, SPDX licence, a header of its, its shared library (- where
# it is in its headers alone), and whether its headers have code that is compiled in. A target that is not here is an error.
set(orvane_outside
    "simdjson::simdjson|simdjson|Apache-2.0|simdjson.h|simdjson|inline"
    "Boost::url|Boost|BSL-1.0|boost/url.hpp|boost_url|inline"
    "Boost::headers|Boost|BSL-1.0|boost/version.hpp|-|inline"
    "ICU::i18n|ICU|Unicode-3.0|unicode/uversion.h|icui18n|inline"
    "ICU::uc|ICU|Unicode-3.0|unicode/uversion.h|icuuc|inline"
    "absl::time|Abseil|Apache-2.0|absl/time/time.h|absl_time|inline"
    "CURL::libcurl|curl|curl|curl/curl.h|curl|linked"
    "OpenSSL::SSL|OpenSSL|Apache-2.0|openssl/ssl.h|ssl|linked"
    "OpenSSL::Crypto|OpenSSL|Apache-2.0|openssl/crypto.h|crypto|linked"
    "ZLIB::ZLIB|zlib|Zlib|zlib.h|z|linked"
    "SQLite::SQLite3|SQLite|blessing|sqlite3.h|sqlite3|linked"
    "nlohmann_json::nlohmann_json|JSON for Modern C++|MIT|nlohmann/json.hpp|-|inline"
    "CLI11::CLI11|CLI11|BSD-3-Clause|CLI/CLI.hpp|-|inline"
    "Threads::Threads||||")

# orvane_linked(<result> <target>...): the targets from outside that these link, this project's own libraries left out unless
# they are static ones inside of a program.
function(orvane_linked result)
  set(found)
  set(pending ${ARGN})
  while(pending)
    list(POP_FRONT pending target)
    get_target_property(libraries ${target} LINK_LIBRARIES)
    foreach(library IN LISTS libraries)
      if(library MATCHES "^Orvane(::|Runtime|Testing|Static|$)")
        continue()
      elseif(library MATCHES "::")
        list(APPEND found ${library})
      elseif(TARGET ${library})
        list(APPEND pending ${library})
      endif()
    endforeach()
  endwhile()
  list(REMOVE_DUPLICATES found)
  set(${result} ${found} PARENT_SCOPE)
endfunction()

# orvane_package_of(<result> <file>): the Debian package that brought it.
function(orvane_package_of result file)
  # dpkg knows a file by the name that it was installed with, which may lack the /usr of a merged system.
  string(REGEX REPLACE "^/usr" "" short "${file}")
  foreach(name IN ITEMS ${file} ${short})
    execute_process(
      COMMAND ${ORVANE_DPKG_QUERY} -S ${name}
      OUTPUT_VARIABLE owner RESULT_VARIABLE status ERROR_QUIET)
    string(REGEX REPLACE "diversion [^\n]*\n" "" owner "${owner}")
    if(status EQUAL 0 AND owner MATCHES "^([^:, \n]+)")
      set(${result} ${CMAKE_MATCH_1} PARENT_SCOPE)
      return()
    endif()
  endforeach()
  message(FATAL_ERROR "no Debian package has brought ${file}: packages are made from what dpkg knows")
endfunction()

# orvane_materials(<prefix> <target>...): <prefix>_compiled and <prefix>_linked are lists of "package|name|licence",
# <prefix>_development the packages that have headers and linker names.
function(orvane_materials prefix)
  set(compiled)
  set(linked)
  set(development)
  orvane_linked(libraries ${ARGN})
  foreach(library IN LISTS libraries)
    set(row ${orvane_outside})
    list(FILTER row INCLUDE REGEX "^${library}\\|")
    if(NOT row)
      message(FATAL_ERROR "cmake/OrvaneBillOfMaterials.cmake does not know ${library}")
    endif()
    string(REPLACE "|" ";" row "${row}")
    list(GET row 1 name)
    if(name STREQUAL "")
      continue()
    endif()
    list(GET row 2 licence)
    list(GET row 3 header)
    list(GET row 4 stem)
    list(GET row 5 how)
    find_file(header_file ${header} NO_CACHE REQUIRED)
    orvane_package_of(headers ${header_file})
    unset(header_file)
    list(APPEND development ${headers})
    # Unicode's licence had another text before ICU 74.
    orvane_dpkg_field(version ${headers} Version)
    if(licence STREQUAL "Unicode-3.0" AND version VERSION_LESS 74)
      set(licence Unicode-DFS-2016)
    endif()
    if(how STREQUAL "inline")
      list(APPEND compiled "${headers}|${name}|${licence}")
    endif()
    if(NOT stem STREQUAL "-")
      find_library(link_file ${stem} NO_CACHE REQUIRED)
      orvane_package_of(linking ${link_file})
      file(REAL_PATH ${link_file} file)
      orvane_package_of(running ${file})
      unset(link_file)
      list(APPEND development ${linking})
      list(APPEND linked "${running}|${name}|${licence}")
    endif()
  endforeach()

  # What every C++ program has, by the compiler's own account.
  foreach(row IN ITEMS "libstdc++.so.6|GCC|GPL-3.0-or-later WITH GCC-exception-3.1"
                       "libgcc_s.so.1|GCC|GPL-3.0-or-later WITH GCC-exception-3.1" "libc.so.6|GNU C library|LGPL-2.1-or-later")
    string(REGEX MATCH "^([^|]+)(.*)" row "${row}")
    set(rest ${CMAKE_MATCH_2})
    execute_process(
      COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${CMAKE_MATCH_1}
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    file(REAL_PATH ${file} file)
    orvane_package_of(running ${file})
    list(APPEND linked "${running}${rest}")
  endforeach()
  foreach(list IN ITEMS compiled linked development)
    list(REMOVE_DUPLICATES ${list})
    list(SORT ${list})
    set(${prefix}_${list} ${${list}} PARENT_SCOPE)
  endforeach()
endfunction()

# orvane_dpkg_field(<result> <package> <field>)
function(orvane_dpkg_field result package field)
  execute_process(
    COMMAND ${ORVANE_DPKG_QUERY} -W -f "\${${field}}\n" ${package}
    OUTPUT_VARIABLE value COMMAND_ERROR_IS_FATAL ANY)
  # Of several architectures' the first; they have the same version.
  string(REGEX REPLACE "\n.*" "" value "${value}")
  set(${result} "${value}" PARENT_SCOPE)
endfunction()

# --- Notices ------------------------------------------------------------------------------------

# orvane_notices(<file> <prefix of orvane_materials>)
function(orvane_notices output prefix)
  set(text "Third-party notices\n===================\n\nOrvane is licensed under the Apache License, Version 2.0.\n")
  string(APPEND text "\nWhat this package needs when it runs; the licences are in /usr/share/doc/<package>/copyright:\n\n")
  foreach(row IN LISTS ${prefix}_linked)
    string(REGEX MATCH "^([^|]+)\\|([^|]+)\\|(.*)" row "${row}")
    string(APPEND text "  ${CMAKE_MATCH_1} (${CMAKE_MATCH_2}): ${CMAKE_MATCH_3}\n")
  endforeach()
  string(APPEND text "\nCode of these libraries' headers, and of GCC's standard library (GCC Runtime Library Exception), has been\n"
                     "compiled in:\n\n")
  set(texts)
  foreach(row IN LISTS ${prefix}_compiled)
    string(REGEX MATCH "^([^|]+)\\|([^|]+)\\|(.*)" row "${row}")
    set(package ${CMAKE_MATCH_1})
    set(name ${CMAKE_MATCH_2})
    set(licence ${CMAKE_MATCH_3})
    orvane_dpkg_field(version ${package} Version)
    string(APPEND text "  ${name} (${package} ${version}): ${licence}\n")
    set(copyright /usr/share/doc/${package}/copyright)
    if(NOT EXISTS ${copyright})
      message(FATAL_ERROR "there is no ${copyright}: packages can't be made on a system without its documentation")
    endif()
    file(SIZE ${copyright} size)
    string(APPEND texts "\n\n--- ${name}\n\n")
    if(size LESS 100000)
      file(READ ${copyright} copyright_text)
    else()
      # Boost's is two megabytes of files' names: who wrote which stands there, and what all of them say, here.
      execute_process(
        COMMAND awk -v RS= "/^License: ${licence}\\n/" ${copyright}
        OUTPUT_VARIABLE copyright_text COMMAND_ERROR_IS_FATAL ANY)
      if(copyright_text STREQUAL "")
        message(FATAL_ERROR "${copyright} does not have the text of ${licence}")
      endif()
      string(APPEND texts "Copyright: the authors of ${name}, as ${copyright} lists them.\n\n")
    endif()
    string(APPEND texts "${copyright_text}")
  endforeach()
  file(WRITE ${output} "${text}${texts}")
endfunction()

# --- SPDX ---------------------------------------------------------------------------------------

# orvane_json(<result> <text>): as a JSON string.
function(orvane_json result text)
  string(REPLACE "\\" "\\\\" text "${text}")
  string(REPLACE "\"" "\\\"" text "${text}")
  set(${result} "\"${text}\"" PARENT_SCOPE)
endfunction()

# orvane_spdx_object(<result> <name> <text>...): an object of strings; false and what begins with a bracket are JSON already.
function(orvane_spdx_object result)
  set(members)
  set(pairs ${ARGN})
  while(pairs)
    list(POP_FRONT pairs name text)
    if(NOT text MATCHES "^([[{]|false$)")
      orvane_json(text "${text}")
    endif()
    list(APPEND members "\"${name}\": ${text}")
  endwhile()
  list(JOIN members ", " members)
  set(${result} "{${members}}" PARENT_SCOPE)
endfunction()

# orvane_spdx_purl(<result> <namespace> <package> <version> <architecture>): https://github.com/package-url/purl-spec, type deb.
function(orvane_spdx_purl result namespace package version architecture)
  string(REPLACE "+" "%2B" package "${package}")
  string(REPLACE "+" "%2B" version "${version}")
  orvane_spdx_object(reference referenceCategory PACKAGE-MANAGER referenceType purl referenceLocator
                     "pkg:deb/${namespace}/${package}@${version}?arch=${architecture}${orvane_purl_distribution}")
  set(${result} "[${reference}]" PARENT_SCOPE)
endfunction()

# orvane_spdx_id(<result> <package>): letters, digits, dots and hyphens only.
function(orvane_spdx_id result package)
  string(REPLACE "+" "plus" package "${package}")
  set(${result} "SPDXRef-Package-${package}" PARENT_SCOPE)
endfunction()

# orvane_bill_of_materials(<file> <prefix of orvane_materials> <package> <purpose> <relationship to what it needs when it runs>
#                          <own package that it needs>...)
function(orvane_bill_of_materials output prefix package purpose relationship)
  set(version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
  file(STRINGS /etc/os-release system REGEX "^(ID|VERSION_ID)=")
  list(TRANSFORM system REPLACE "^[A-Z_]+=\"?([^\"]*)\"?$" "\\1")
  list(SORT system ORDER DESCENDING)
  list(JOIN system "-" system)
  set(orvane_purl_distribution "&distro=${system}")

  set(packages)
  set(relationships)
  orvane_spdx_id(self ${package})
  foreach(own IN ITEMS ${package} ${ARGN})
    orvane_spdx_id(id ${own})
    orvane_spdx_purl(references orvane ${own} ${version} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})
    set(members SPDXID ${id} name ${own} versionInfo ${version} supplier "Organization: Orvane")
    if(own STREQUAL package)
      list(APPEND members primaryPackagePurpose ${purpose})
    else()
      list(APPEND relationships "${self} DEPENDS_ON ${id}")
    endif()
    orvane_spdx_object(
      object ${members} downloadLocation NOASSERTION filesAnalyzed false homepage "https://orvane.example/" licenseConcluded
      Apache-2.0 licenseDeclared Apache-2.0 copyrightText "2026 Orvane contributors" externalRefs "${references}")
    list(APPEND packages "${object}")
  endforeach()

  set(seen)
  foreach(kind IN ITEMS compiled linked)
    foreach(row IN LISTS ${prefix}_${kind})
      string(REGEX MATCH "^([^|]+)\\|([^|]+)\\|(.*)" row "${row}")
      set(other ${CMAKE_MATCH_1})
      set(summary ${CMAKE_MATCH_2})
      set(licence ${CMAKE_MATCH_3})
      orvane_spdx_id(id ${other})
      if(kind STREQUAL "compiled")
        list(APPEND relationships "${self} STATIC_LINK ${id}")
      else()
        list(APPEND relationships "${self} ${relationship} ${id}")
      endif()
      if(other IN_LIST seen)
        continue()
      endif()
      list(APPEND seen ${other})
      foreach(field IN ITEMS Version Architecture Homepage)
        orvane_dpkg_field(${field} ${other} ${field})
      endforeach()
      orvane_dpkg_field(source ${other} source:Package)
      orvane_dpkg_field(source_version ${other} source:Version)
      orvane_spdx_purl(references debian ${other} ${Version} ${Architecture})
      if(Homepage STREQUAL "")
        set(Homepage NOASSERTION)
      endif()
      orvane_spdx_object(
        object SPDXID ${id} name ${other} versionInfo ${Version} supplier "Organization: Debian" downloadLocation NOASSERTION
        filesAnalyzed false homepage ${Homepage} licenseConcluded NOASSERTION licenseDeclared "${licence}" copyrightText NOASSERTION
        summary "${summary}" sourceInfo "Debian source package ${source} ${source_version}" externalRefs "${references}")
      list(APPEND packages "${object}")
    endforeach()
  endforeach()

  set(relations)
  orvane_spdx_object(object spdxElementId SPDXRef-DOCUMENT relationshipType DESCRIBES relatedSpdxElement ${self})
  list(APPEND relations "${object}")
  foreach(words IN LISTS relationships)
    separate_arguments(words UNIX_COMMAND "${words}")
    list(GET words 1 type)
    list(GET words 2 other)
    orvane_spdx_object(object spdxElementId ${self} relationshipType ${type} relatedSpdxElement ${other})
    list(APPEND relations "${object}")
  endforeach()
  list(JOIN packages ",\n    " packages)
  list(JOIN relations ",\n    " relations)

  # The same document has the same name, wherever and whenever it is made.
  string(SHA256 digest "${packages}${relations}")
  string(SUBSTRING ${digest} 0 16 digest)
  string(TIMESTAMP created "%Y-%m-%dT%H:%M:%SZ" UTC)
  file(
    WRITE ${output}
    "{\n  \"spdxVersion\": \"SPDX-2.3\",\n  \"dataLicense\": \"CC0-1.0\",\n  \"SPDXID\": \"SPDXRef-DOCUMENT\",\n"
    "  \"name\": \"${package}-${version}\",\n"
    "  \"documentNamespace\": \"https://orvane.example/spdx/${package}-${version}-${digest}\",\n"
    "  \"creationInfo\": {\"created\": \"${created}\", \"creators\": [\"Organization: Orvane\", \"Tool: orvane-cmake\"]},\n"
    "  \"packages\": [\n    ${packages}\n  ],\n  \"relationships\": [\n    ${relations}\n  ]\n}\n")
endfunction()
