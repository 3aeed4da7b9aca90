# The packages: "cpack" in a build tree, or Scripts/package for those that go to users.

set(CPACK_PACKAGE_NAME tavrik-ostrel)
set(CPACK_PACKAGE_VENDOR Tavrik)
set(CPACK_PACKAGE_CONTACT "Tavrik <maintainers@tavrik.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Disk-and-memory maintenance utility")
set(CPACK_PACKAGE_DESCRIPTION "Frees disk space and memory, and keeps the application firewall's list.")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR TGZ)
set(CPACK_PACKAGE_FILE_NAME ${CPACK_PACKAGE_NAME}-${PROJECT_VERSION})
set(CPACK_COMPONENTS_ALL library development programs)

set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The library that the programs of the utility share.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, and what CMake and pkg-config need to find the library.")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_COMPONENT_PROGRAMS_DESCRIPTION "The command-line application and its helpers.")
set(CPACK_COMPONENT_PROGRAMS_DEPENDS library)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/Libs/Common)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libtavrikcommon${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtavrikcommon-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS qtbase5-dev)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME ostrel)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION utils)

# The folders that a package has below /usr are those of its system, whatever the umask of who builds it.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

include(CPack)
