# The tools of macOS that programs use where the machine has none are fixed when the programs are built, because
# one of them is run as root.
#
# ostrel_program(NAME [PARTS LIBRARY...])
#
# NAME, from main.cpp, runs from the build tree with the build tree's stand-ins. What is installed is a second
# program of the same parts that knows nothing of the build tree. On macOS they are one.

# A collection of resources with the firewall's script in it, as it is configured for one firewall tool.
function(ostrel_script_collection collection tool)
  set(folder ${collection}.d)
  string(REPLACE "'" "'\\''" TAVRIK_FIREWALL_TOOL "${tool}")
  configure_file(${PROJECT_SOURCE_DIR}/Resources/Scripts/Firewall ${folder}/Scripts/Firewall @ONLY)
  configure_file(${PROJECT_SOURCE_DIR}/Resources/Scripts.qrc ${folder}/Scripts.qrc COPYONLY)
  add_custom_command(OUTPUT ${collection}
    COMMAND ${TAVRIK_RCC} --binary --no-compress -o ${collection} ${folder}/Scripts.qrc
    DEPENDS ${folder}/Scripts/Firewall ${folder}/Scripts.qrc
    VERBATIM)
endfunction()

# The program's resources below :/tools: the collection for the system's tool and, where the stand-ins lie in
# STANDINS, that name and the collection for the stand-in.
function(ostrel_tool_resources target standIns)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target}Tools)
  ostrel_script_collection(${folder}/system.rcc ${TAVRIK_FIREWALL_TOOL})
  set(names system.rcc)
  if(standIns)
    ostrel_script_collection(${folder}/standin.rcc ${standIns}/socketfilterfw)
    file(CONFIGURE OUTPUT ${folder}/standins CONTENT "${standIns}")
    list(APPEND names standin.rcc standins)
  endif()
  list(TRANSFORM names REPLACE "(.+)" "<file>\\1</file>" OUTPUT_VARIABLE entries)
  list(JOIN entries "" entries)
  file(CONFIGURE OUTPUT ${folder}/tools.qrc
    CONTENT "<RCC><qresource prefix=\"/tools\">${entries}</qresource></RCC>\n")
  list(TRANSFORM names PREPEND ${folder}/)
  # A collection is used where it lies, so it must not be compressed.
  add_custom_command(OUTPUT ${folder}/tools.cpp
    COMMAND ${TAVRIK_RCC} -name tools --no-compress -o ${folder}/tools.cpp ${folder}/tools.qrc
    DEPENDS ${folder}/tools.qrc ${names}
    VERBATIM)
  target_sources(${target} PRIVATE ${folder}/tools.cpp)
endfunction()

function(ostrel_program name)
  cmake_parse_arguments(ARG "" "" "PARTS" ${ARGN})
  add_executable(${name} main.cpp)
  set(installed ${name})
  if(APPLE)
    ostrel_tool_resources(${name} "")
  else()
    set(installed ${name}Installed)
    add_executable(${installed} main.cpp)
    set_target_properties(${installed} PROPERTIES
      OUTPUT_NAME ${name}
      RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/installed)
    target_link_libraries(${installed} PRIVATE ${ARG_PARTS} TavrikOptions)
    ostrel_tool_resources(${name} ${PROJECT_BINARY_DIR}/Tools/StandIns/bin)
    ostrel_tool_resources(${installed} ${CMAKE_INSTALL_FULL_LIBEXECDIR}/tavrik/standins)
    add_dependencies(${name} TavrikStandIns)
  endif()
  target_link_libraries(${name} PRIVATE ${ARG_PARTS} TavrikOptions)
  install(TARGETS ${installed} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
endfunction()
