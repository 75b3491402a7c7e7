# SPDX-License-Identifier: Apache-2.0
#
# The program that stands on a page, as a reader copies it: the first block of C++ that has a main.
#   cmake -DPAGE=<page> -DOUTPUT=<file> -P program.cmake
cmake_minimum_required(VERSION 3.22)

file(READ ${PAGE} text)
set(program "")
while(NOT program MATCHES "int main\\(")
  string(FIND "${text}" "```cpp\n" start)
  if(start EQUAL -1)
    message(FATAL_ERROR "${PAGE} has no program")
  endif()
  math(EXPR start "${start} + 7")
  string(SUBSTRING "${text}" ${start} -1 text)
  string(FIND "${text}" "\n```" end)
  string(SUBSTRING "${text}" 0 ${end} program)
endwhile()
file(WRITE ${OUTPUT} "${program}\n")
