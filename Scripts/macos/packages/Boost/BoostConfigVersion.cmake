include(${CMAKE_CURRENT_LIST_DIR}/../Version.cmake)
tavrik_check_version(/usr/include/boost/version.hpp BOOST_LIB_VERSION)
