# SPDX-License-Identifier: Apache-2.0
#
# An overlay port: it builds the sources that it stands in, a clone or a release's tarball, and fetches nothing.
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../../../.." ABSOLUTE)

vcpkg_check_features(
  OUT_FEATURE_OPTIONS
  FEATURE_OPTIONS
  FEATURES
  runtime
  ORVANE_BUILD_RUNTIME
  testing
  ORVANE_BUILD_TESTING
  tools
  ORVANE_BUILD_TOOLS)

vcpkg_cmake_configure(
  SOURCE_PATH
  "${SOURCE_PATH}"
  OPTIONS
  ${FEATURE_OPTIONS}
  -DORVANE_BUILD_BENCHMARKS=OFF
  -DORVANE_BUILD_EXAMPLES=OFF
  -DORVANE_BUILD_TESTS=OFF
  -DORVANE_INSTALL=ON)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME orvane CONFIG_PATH lib/cmake/Orvane)
vcpkg_fixup_pkgconfig()
if("tools" IN_LIST FEATURES)
  vcpkg_copy_tools(TOOL_NAMES orvane orvane-sandbox AUTO_CLEAN)
endif()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE")
