# Every text in the sources has a finished entry in every language.
add_test(NAME Translations.areComplete
  COMMAND ${CMAKE_COMMAND} -D ROOT=${PROJECT_SOURCE_DIR} -D FOLDER=${PROJECT_BINARY_DIR}
    -P ${CMAKE_CURRENT_LIST_DIR}/Check.cmake)
set_tests_properties(Translations.areComplete PROPERTIES LABELS unit)
