include(${CMAKE_CURRENT_LIST_DIR}/../Version.cmake)

find_path(TAVRIK_QT_HEADERS QtCore/qconfig.h
  PATHS /usr/include/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu/qt5
  NO_DEFAULT_PATH)
if(NOT TAVRIK_QT_HEADERS)
  message(FATAL_ERROR "Qt's headers are missing; install qtbase5-dev")
endif()
tavrik_check_version(${TAVRIK_QT_HEADERS}/QtCore/qconfig.h QT_VERSION_STR)
