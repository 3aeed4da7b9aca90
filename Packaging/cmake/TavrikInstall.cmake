# Where things go when the project is installed.

include(CMakePackageConfigHelpers)

# Programs find the library beside them, wherever the tree is moved to.
file(RELATIVE_PATH fromProgramsToLibraries "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
if(APPLE)
  set(CMAKE_INSTALL_RPATH "@loader_path/${fromProgramsToLibraries}")
else()
  set(CMAKE_INSTALL_RPATH "$ORIGIN/${fromProgramsToLibraries}")
endif()

# tavrik_install_library(TARGET FOLDER HEADERS...)
#
# The library, its headers in include/Tavrik/FOLDER, its CMake package and its pkg-config file, all named
# after the target.
function(tavrik_install_library target folder)
  set(packageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/${target})
  set(pkgconfigFolder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

  install(TARGETS ${target} EXPORT ${target}Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
  install(FILES ${ARGN} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Tavrik/${folder} COMPONENT development)
  install(EXPORT ${target}Targets NAMESPACE Tavrik:: DESTINATION ${packageFolder} COMPONENT development)

  configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/Packaging/cmake/${target}Config.cmake.in
    ${PROJECT_BINARY_DIR}/${target}Config.cmake
    INSTALL_DESTINATION ${packageFolder}
    PATH_VARS CMAKE_INSTALL_INCLUDEDIR)
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/${target}ConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
  install(FILES
    ${PROJECT_BINARY_DIR}/${target}Config.cmake
    ${PROJECT_BINARY_DIR}/${target}ConfigVersion.cmake
    DESTINATION ${packageFolder}
    COMPONENT development)

  file(RELATIVE_PATH fromPkgconfigToPrefix "/prefix/${pkgconfigFolder}" "/prefix")
  string(REGEX REPLACE "/$" "" fromPkgconfigToPrefix ${fromPkgconfigToPrefix})
  configure_file(${PROJECT_SOURCE_DIR}/Packaging/${target}.pc.in ${PROJECT_BINARY_DIR}/${target}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${target}.pc DESTINATION ${pkgconfigFolder} COMPONENT development)
endfunction()
