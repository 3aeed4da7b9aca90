# tavrik_check_version(header name) holds the version that a header defines as a text against the one asked for.
macro(tavrik_check_version header name)
  file(STRINGS ${header} line REGEX "define ${name} ")
  string(REGEX MATCH "\"([0-9._]+)\"" _ "${line}")
  string(REPLACE "_" "." PACKAGE_VERSION "${CMAKE_MATCH_1}")
  if(PACKAGE_VERSION VERSION_GREATER_EQUAL PACKAGE_FIND_VERSION)
    set(PACKAGE_VERSION_COMPATIBLE TRUE)
  endif()
endmacro()
