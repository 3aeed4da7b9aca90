include(${CMAKE_CURRENT_LIST_DIR}/../Version.cmake)
tavrik_check_version(/usr/include/CLI/Version.hpp CLI11_VERSION)
