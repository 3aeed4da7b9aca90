include(${CMAKE_CURRENT_LIST_DIR}/../Headers.cmake)

tavrik_link_headers(folder boost)
foreach(component IN ITEMS headers ${Boost_FIND_COMPONENTS})
  tavrik_header_target(Boost::${component} ${folder})
  set(Boost_${component}_FOUND TRUE)
endforeach()
