# SPDX-License-Identifier: Apache-2.0
#
# Fails the build when a service has an operation in one form only: each that answers an Operation<T> has a form that takes
# a Completion<T> after the same parameters, and the other way round.
#   cmake -DHEADERS=<folder> -P forms.cmake
cmake_minimum_required(VERSION 3.20)

# Operations whose other form takes a handler of its own kind.
set(exceptions "fetchPages(TripPages pages, OnPage onPage)" "downloadFirmware()" "downloadFirmware(Progress progress)"
               "fetchPages(TripPages pages, TripPageHandler onPage)")

file(GLOB_RECURSE headers ${HEADERS}/*Service.h)
set(count 0)
foreach(header IN LISTS headers)
  file(READ ${header} text)
  string(REGEX REPLACE "//[^\n]*" "" text "${text}")
  string(REGEX REPLACE "\n private:.*" "" text "${text}")
  string(REGEX REPLACE "[ \n]+" " " text "${text}")
  string(REPLACE " = {}" "" text "${text}")
  string(REPLACE "( " "(" text "${text}")
  # Both take what stands in braces.
  string(REPLACE " SetOf<" " std::set<" text "${text}")
  string(REPLACE "(SetOf<" "(std::set<" text "${text}")

  set(values)
  string(REGEX MATCHALL "Operation<[^ ]+> [A-Za-z0-9]+\\([^;{]*\\) const" forms "${text}")
  # What it can't read it must not pass over.
  string(REGEX MATCHALL "Operation<" all "${text}")
  list(LENGTH all there)
  list(LENGTH forms read)
  if(NOT there EQUAL read)
    message(SEND_ERROR "${header}: ${there} operations, of which ${read} can be read")
  endif()
  foreach(form IN LISTS forms)
    string(REGEX MATCH "^Operation<([^ ]+)> ([A-Za-z0-9]+\\(.*\\)) const$" whole "${form}")
    list(APPEND values "${CMAKE_MATCH_1} ${CMAKE_MATCH_2}")
  endforeach()

  set(handlers)
  string(REGEX MATCHALL "RequestHandle [A-Za-z0-9]+\\([^;{]*Completion<[^ ]+> [A-Za-z0-9]+\\) const" forms "${text}")
  foreach(form IN LISTS forms)
    string(REGEX MATCH "^RequestHandle ([A-Za-z0-9]+\\(.*)Completion<([^ ]+)> [A-Za-z0-9]+\\) const$" whole "${form}")
    set(type ${CMAKE_MATCH_2})
    string(REGEX REPLACE ", $" "" call "${CMAKE_MATCH_1}")
    list(APPEND handlers "${type} ${call})")
  endforeach()

  foreach(form IN LISTS values handlers)
    math(EXPR count "${count} + 1")
    string(REGEX MATCH "^[^ ]+ (.*)$" whole "${form}")
    set(call "${CMAKE_MATCH_1}")
    if(NOT call IN_LIST exceptions AND NOT (form IN_LIST values AND form IN_LIST handlers))
      message(SEND_ERROR "${header}: one form only: ${form}")
    endif()
  endforeach()
endforeach()
# There are some fifty operations: fewer mean that this reads the headers no longer.
if(count LESS 100)
  message(FATAL_ERROR "only ${count} forms of operations were found")
endif()
