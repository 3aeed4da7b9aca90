# What is installed is what strangers build against.
if(TAVRIK_INSTALL)
  if(TAVRIK_SANITIZE)
    set(consumerFlags -fsanitize=${TAVRIK_SANITIZE})
  endif()
  foreach(way IN ITEMS package pkgconfig)
    add_test(NAME Consumer.${way}
      COMMAND ${CMAKE_COMMAND} -D WAY=${way}
        -D TREE=${PROJECT_BINARY_DIR}
        -D SOURCE=${CMAKE_CURRENT_LIST_DIR}
        -D COMPILER=${CMAKE_CXX_COMPILER}
        -D FLAGS=${consumerFlags}
        -P ${CMAKE_CURRENT_LIST_DIR}/Run.cmake)
    set_tests_properties(Consumer.${way} PROPERTIES LABELS install TIMEOUT 300)
  endforeach()
endif()
