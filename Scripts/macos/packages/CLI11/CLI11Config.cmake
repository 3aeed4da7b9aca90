include(${CMAKE_CURRENT_LIST_DIR}/../Headers.cmake)

tavrik_link_headers(folder CLI)
tavrik_header_target(CLI11::CLI11 ${folder})
