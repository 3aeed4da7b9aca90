# cmake -D TOOL=go-md2man -D MANUAL=... -D PAGE=... -D VERSION=... -P MakePage.cmake

cmake_minimum_required(VERSION 3.20)

file(READ ${MANUAL} text)
if(NOT text MATCHES "^# ([^\n]+)\\(([1-8])\\)\n")
  message(FATAL_ERROR "${MANUAL} does not begin with its name and section")
endif()
set(section ${CMAKE_MATCH_2})
string(TOUPPER "${CMAKE_MATCH_1}" name)
# Not by an expression: there "^" is the beginning of every line.
string(FIND "${text}" "\n" end)
string(SUBSTRING "${text}" ${end} -1 text)
string(PREPEND text "% \"${name}\" \"${section}\" \"\" \"Tavrik Ostrel ${VERSION}\" \"User's manual\"")
file(WRITE ${PAGE}.md "${text}")
execute_process(COMMAND ${TOOL} -in ${PAGE}.md -out ${PAGE} RESULT_VARIABLE result)
file(REMOVE ${PAGE}.md)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${TOOL} ended with ${result}")
endif()
