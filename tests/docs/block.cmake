# SPDX-License-Identifier: Apache-2.0

# take_block(<text> <head> <block>): from a page's text what stands between a head, which ends with the line that begins the block, and the
# block's end; the text goes on behind it. Empty where there is no such head. Text and block are names of variables.
function(take_block text_name head block_name)
  set(${block_name} "" PARENT_SCOPE)
  set(rest "${${text_name}}")
  string(FIND "${rest}" "${head}" start)
  if(start EQUAL -1 OR head STREQUAL "")
    return()
  endif()
  string(LENGTH "${head}" length)
  math(EXPR start "${start} + ${length}")
  string(SUBSTRING "${rest}" ${start} -1 rest)
  string(FIND "${rest}" "\n```" end)
  string(SUBSTRING "${rest}" 0 ${end} found)
  string(SUBSTRING "${rest}" ${end} -1 rest)
  set(${block_name} "${found}" PARENT_SCOPE)
  set(${text_name} "${rest}" PARENT_SCOPE)
endfunction()
