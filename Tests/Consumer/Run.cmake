# cmake -D WAY=package|pkgconfig -D TREE=... -D SOURCE=... -D COMPILER=... -D FLAGS=... -P Run.cmake
#
# Installs the build tree into a fresh folder, builds a stranger's project against what is there and runs it.

cmake_minimum_required(VERSION 3.20)

string(RANDOM LENGTH 12 suffix)
set(folder ${TREE}/consumer-${WAY}-${suffix})
set(prefix "${folder}/an installed tree")
set(binaries "${folder}/build")

# step(COMMAND...): runs it; when it fails, shows what it said and ends the test.
function(step)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    file(REMOVE_RECURSE ${folder})
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(find_and_run)
  step(${CMAKE_COMMAND} -G Ninja -S ${SOURCE} -B ${binaries}
    -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_CXX_COMPILER=${COMPILER} -D CMAKE_CXX_FLAGS=${FLAGS}
    -D CMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)
  step(${CMAKE_COMMAND} --build ${binaries})
  step(${binaries}/consumer)
  file(MAKE_DIRECTORY ${folder}/t)
  step(${CMAKE_COMMAND} -E env TMPDIR=${folder}/t ${binaries}/hello)
  if(NOT output MATCHES "ada says: Hello, bus")
    file(REMOVE_RECURSE ${folder})
    message(FATAL_ERROR "The first program did not hear itself:\n${output}")
  endif()
endfunction()

function(pkgconfig_and_run)
  file(GLOB_RECURSE package ${prefix}/*/TavrikCommon.pc)
  get_filename_component(packages "${package}" DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} ${packages}:$ENV{PKG_CONFIG_PATH})
  step(pkg-config --variable=libdir TavrikCommon)
  separate_arguments(libraries UNIX_COMMAND "${output}")
  step(pkg-config --cflags --libs TavrikCommon)
  separate_arguments(flags UNIX_COMMAND "${output}")
  file(MAKE_DIRECTORY ${binaries})
  step(${COMPILER} ${FLAGS} -std=c++17 ${SOURCE}/main.cpp -o ${binaries}/consumer ${flags})
  step(${CMAKE_COMMAND} -E env "LD_LIBRARY_PATH=${libraries}" "DYLD_LIBRARY_PATH=${libraries}"
    ${binaries}/consumer)
endfunction()

step(${CMAKE_COMMAND} --install ${TREE} --prefix ${prefix})
if(WAY STREQUAL "package")
  find_and_run()
else()
  pkgconfig_and_run()
endif()
file(REMOVE_RECURSE ${folder})
