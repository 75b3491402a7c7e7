# SPDX-License-Identifier: Apache-2.0
#
# Writes OUTPUT, a source file with the bytes of the files FILES (a list, in one argument):
# cmake -DOUTPUT=Assets.cpp "-DFILES=a.html;b.js" -P EmbedAssets.cmake
cmake_minimum_required(VERSION 3.22)

set(arrays "")
set(entries "")
set(index 0)
foreach(file IN LISTS FILES)
  get_filename_component(name ${file} NAME)
  file(READ ${file} bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  string(REGEX REPLACE "(................................................................................)" "\\1\n" bytes "${bytes}")
  # An array can't be empty: a zero that does not count ends it.
  string(APPEND arrays "constexpr unsigned char file${index}[] = {\n${bytes}0};\n")
  string(APPEND entries "      {\"${name}\", text(file${index})},\n")
  math(EXPR index "${index} + 1")
endforeach()

file(WRITE ${OUTPUT} "// SPDX-License-Identifier: Apache-2.0
//
// Made by EmbedAssets.cmake.
#include \"inspector/Assets.h\"

#include <array>
#include <cstddef>

namespace orvane::sandbox {

namespace {

${arrays}
template <std::size_t Size>
std::string_view text(const unsigned char (&bytes)[Size]) {
  return {reinterpret_cast<const char*>(bytes), Size - 1};
}

}  // namespace

std::span<const Asset> assets() {
  static const std::array<Asset, ${index}> all{{
${entries}  }};
  return all;
}

}  // namespace orvane::sandbox
")
