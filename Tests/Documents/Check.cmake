# cmake -D ROOT=... -P Check.cmake

cmake_minimum_required(VERSION 3.20)

set(readmePath ${ROOT}/README.md)
file(READ ${readmePath} readme)

# README shows the first program as it is built.
file(READ ${ROOT}/Docs/examples/hello.cpp hello)
string(FIND "${readme}" "```cpp\n${hello}```\n" position)
if(position EQUAL -1)
  message(SEND_ERROR "README.md does not show Docs/examples/hello.cpp as it is")
endif()

# It names every option and every preset that there is.
file(STRINGS ${ROOT}/CMakeLists.txt options REGEX "^(option|set)\\(TAVRIK_")
file(STRINGS ${ROOT}/CMakePresets.json presets REGEX "\"configurePreset\":")
set(names)
foreach(line IN LISTS options presets)
  if(line MATCHES "(TAVRIK_[A-Z_]+)|\"configurePreset\": \"([a-z]+)\"")
    list(APPEND names "${CMAKE_MATCH_1}${CMAKE_MATCH_2}")
  endif()
endforeach()
list(REMOVE_DUPLICATES names)
list(LENGTH names count)
if(count LESS 10)
  message(SEND_ERROR "Options and presets were not found where they should be: ${names}")
endif()
foreach(name IN LISTS names)
  if(NOT readme MATCHES "\n\\| `${name}` \\|")
    message(SEND_ERROR "README.md does not list ${name}")
  endif()
endforeach()

# Links lead somewhere.
file(GLOB documents ${ROOT}/*.md ${ROOT}/Docs/*.md)
foreach(document IN LISTS documents)
  get_filename_component(folder ${document} DIRECTORY)
  file(STRINGS ${document} lines REGEX "\\]\\([^)]+\\)")
  # A list does not take brackets well.
  string(REPLACE "](" "@(" lines "${lines}")
  string(REGEX MATCHALL "@\\([^)#: ]+" links "${lines}")
  foreach(link IN LISTS links)
    string(REPLACE "@(" "" link "${link}")
    if(NOT EXISTS ${folder}/${link})
      message(SEND_ERROR "${document}: ${link} is not there")
    endif()
  endforeach()
endforeach()
