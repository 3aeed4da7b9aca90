# tavrik_completions(TARGET): installs what completes the command line of a program in bash, zsh and fish, as the
# program itself prints it. A program for another system cannot be asked.
function(tavrik_completions target)
  if(CMAKE_CROSSCOMPILING)
    return()
  endif()
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/completions)
  file(MAKE_DIRECTORY ${folder})
  set(scripts)
  foreach(shell IN ITEMS bash zsh fish)
    set(script ${folder}/${target}.${shell})
    add_custom_command(OUTPUT ${script}
      COMMAND ${target} --completions ${shell} > ${script}
      DEPENDS ${target}
      VERBATIM)
    list(APPEND scripts ${script})
  endforeach()
  add_custom_target(${target}-completions ALL DEPENDS ${scripts})
  set(share ${CMAKE_INSTALL_DATADIR})
  install(FILES ${folder}/${target}.bash DESTINATION ${share}/bash-completion/completions RENAME ${target}
    COMPONENT programs)
  install(FILES ${folder}/${target}.zsh DESTINATION ${share}/zsh/site-functions RENAME _${target}
    COMPONENT programs)
  install(FILES ${folder}/${target}.fish DESTINATION ${share}/fish/vendor_completions.d COMPONENT programs)
endfunction()
