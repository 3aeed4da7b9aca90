# tavrik_headers(target folder...) makes an imported target of the folders alone, or of links to them.

# /usr/include itself would lend the system's headers of the wrong system: what is wanted of it is linked to.
function(tavrik_link_headers result)
  set(folder ${CMAKE_BINARY_DIR}/borrowed)
  file(MAKE_DIRECTORY ${folder})
  foreach(name IN LISTS ARGN)
    if(NOT EXISTS /usr/include/${name})
      message(FATAL_ERROR "/usr/include/${name} is missing; install its development package")
    endif()
    file(CREATE_LINK /usr/include/${name} ${folder}/${name} SYMBOLIC)
  endforeach()
  set(${result} ${folder} PARENT_SCOPE)
endfunction()

function(tavrik_header_target name)
  if(NOT TARGET ${name})
    add_library(${name} INTERFACE IMPORTED)
    target_include_directories(${name} SYSTEM INTERFACE ${ARGN})
  endif()
endfunction()
