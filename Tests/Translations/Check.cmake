# cmake -D ROOT=... -D FOLDER=... -P Check.cmake
#
# Brings copies of the catalogues up to date with the sources; then nothing in them is new, unfinished or gone.

cmake_minimum_required(VERSION 3.20)

string(RANDOM LENGTH 12 suffix)
set(folder ${FOLDER}/translations-${suffix})
file(GLOB catalogues ${ROOT}/Resources/Translations/*.ts)
list(LENGTH catalogues count)
if(count EQUAL 0)
  message(FATAL_ERROR "There are no catalogues")
endif()
file(COPY ${catalogues} DESTINATION ${folder})
execute_process(COMMAND ${ROOT}/Scripts/update-translations ${folder}
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
  message(SEND_ERROR "Scripts/update-translations ended with ${result}:\n${output}")
endif()

foreach(catalogue IN LISTS catalogues)
  get_filename_component(name ${catalogue} NAME)
  file(READ ${catalogue} before)
  file(READ ${folder}/${name} after)
  string(REGEX MATCHALL "<source>[^<]*</source>[^<]*<translation type=\"unfinished\">" unfinished "${after}")
  if(unfinished)
    message(SEND_ERROR "${name} lacks a finished entry for:\n${unfinished}")
  elseif(NOT before STREQUAL after)
    message(SEND_ERROR "${name} is not what Scripts/update-translations makes of it")
  endif()
endforeach()
file(REMOVE_RECURSE ${folder})
