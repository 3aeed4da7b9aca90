# What the documents say of the tree is true.
add_test(NAME Documents.agreeWithTheTree
  COMMAND ${CMAKE_COMMAND} -D ROOT=${PROJECT_SOURCE_DIR} -P ${CMAKE_CURRENT_LIST_DIR}/Check.cmake)
set_tests_properties(Documents.agreeWithTheTree PROPERTIES LABELS unit)
