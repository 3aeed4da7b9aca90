include(${CMAKE_CURRENT_LIST_DIR}/../Headers.cmake)

tavrik_link_headers(folder glog gflags)
tavrik_header_target(glog::glog ${folder})
target_compile_definitions(glog::glog INTERFACE GLOG_CUSTOM_PREFIX_SUPPORT)
