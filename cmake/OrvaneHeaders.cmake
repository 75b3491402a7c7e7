# SPDX-License-Identifier: Apache-2.0
#
# Which headers users see, in the build tree as after installation: orvane_public_headers, below the project's root.
#
# A private header says so in its first lines; it is built and tested, and reaches nobody.
file(GLOB_RECURSE orvane_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/Orvane/*.h)
set(orvane_public_headers)
foreach(header IN LISTS orvane_headers)
  file(STRINGS ${PROJECT_SOURCE_DIR}/${header} head LIMIT_COUNT 2)
  if(NOT head MATCHES "// Private header: not installed\\.")
    list(APPEND orvane_public_headers ${header})
  endif()
endforeach()
if(NOT ORVANE_BUILD_RUNTIME)
  list(FILTER orvane_public_headers EXCLUDE REGEX "^Orvane/Runtime[./]")
endif()
if(NOT ORVANE_BUILD_TESTING)
  list(FILTER orvane_public_headers EXCLUDE REGEX "^Orvane/Testing[./]")
endif()

# The build tree's include directory: links to these headers and nothing else, so that a project which has Orvane as a
# subproject sees what it would see of an installation.
set(orvane_build_include ${PROJECT_BINARY_DIR}/include)
file(GLOB_RECURSE orvane_links ${orvane_build_include}/*.h)
foreach(link IN LISTS orvane_links)
  file(RELATIVE_PATH header ${orvane_build_include} ${link})
  if(NOT header IN_LIST orvane_public_headers)
    file(REMOVE ${link})
  endif()
endforeach()
foreach(header IN LISTS orvane_public_headers)
  if(WIN32)
    configure_file(${PROJECT_SOURCE_DIR}/${header} ${orvane_build_include}/${header} COPYONLY)
  elseif(NOT EXISTS ${orvane_build_include}/${header})
    get_filename_component(folder ${orvane_build_include}/${header} DIRECTORY)
    file(MAKE_DIRECTORY ${folder})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${header} ${orvane_build_include}/${header} SYMBOLIC)
  endif()
endforeach()
