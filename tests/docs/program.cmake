# SPDX-License-Identifier: Apache-2.0
#
# The program that stands on a page, as a reader copies it: the first block of C++ that has a main.
#   cmake -DPAGE=<page> -DOUTPUT=<file> -P program.cmake
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/block.cmake)

file(READ ${PAGE} text)
set(program "")
while(NOT program MATCHES "int main\\(")
  take_block(text "```cpp\n" program)
  if(program STREQUAL "")
    message(FATAL_ERROR "${PAGE} has no program")
  endif()
endwhile()
file(WRITE ${OUTPUT} "${program}\n")
