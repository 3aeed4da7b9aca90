# What every target of the project is compiled with.

find_program(TAVRIK_CCACHE ccache)
mark_as_advanced(TAVRIK_CCACHE)
if(TAVRIK_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${TAVRIK_CCACHE})
endif()

add_library(TavrikOptions INTERFACE)
target_compile_options(TavrikOptions INTERFACE
  -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<BOOL:${TAVRIK_DEVELOPER}>:-Werror>)
target_compile_definitions(TavrikOptions INTERFACE QT_NO_FOREACH QT_DEPRECATED_WARNINGS)

if(TAVRIK_SANITIZE)
  target_compile_options(TavrikOptions INTERFACE
    -fsanitize=${TAVRIK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  target_link_options(TavrikOptions INTERFACE -fsanitize=${TAVRIK_SANITIZE})
endif()
