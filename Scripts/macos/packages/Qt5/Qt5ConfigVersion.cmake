find_path(TAVRIK_QT_HEADERS QtCore/qconfig.h
  PATHS /usr/include/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu/qt5
  NO_DEFAULT_PATH)
if(NOT TAVRIK_QT_HEADERS)
  message(FATAL_ERROR "Qt's headers are missing; install qtbase5-dev")
endif()
file(STRINGS ${TAVRIK_QT_HEADERS}/QtCore/qconfig.h line REGEX "define QT_VERSION_STR ")
string(REGEX MATCH "[0-9.]+" PACKAGE_VERSION "${line}")
if(PACKAGE_VERSION VERSION_GREATER_EQUAL PACKAGE_FIND_VERSION)
  set(PACKAGE_VERSION_COMPATIBLE TRUE)
endif()
