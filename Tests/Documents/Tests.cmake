# What the documents say of the tree is true.
add_test(NAME Documents.agreeWithTheTree
  COMMAND ${CMAKE_COMMAND} -D ROOT=${PROJECT_SOURCE_DIR} -P ${CMAKE_CURRENT_LIST_DIR}/Check.cmake)
set_tests_properties(Documents.agreeWithTheTree PROPERTIES LABELS unit)

find_program(TAVRIK_MD2MAN go-md2man NO_CMAKE_FIND_ROOT_PATH)
mark_as_advanced(TAVRIK_MD2MAN)
if(TAVRIK_MD2MAN)
  add_test(NAME Documents.pagesHoldWhatTheManualsSay
    COMMAND ${CMAKE_COMMAND} -D TOOL=${TAVRIK_MD2MAN} -D ROOT=${PROJECT_SOURCE_DIR} -D FOLDER=${CMAKE_CURRENT_BINARY_DIR}
      -P ${CMAKE_CURRENT_LIST_DIR}/Pages.cmake)
  set_tests_properties(Documents.pagesHoldWhatTheManualsSay PROPERTIES LABELS unit)
endif()
