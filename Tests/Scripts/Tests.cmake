# What ./check prints of a run of ctest.
add_test(NAME Scripts.shortenTheOutputOfTests COMMAND ${CMAKE_CURRENT_LIST_DIR}/Check.sh)
set_tests_properties(Scripts.shortenTheOutputOfTests PROPERTIES LABELS unit)
