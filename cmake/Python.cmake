# The Python package, put together in build/*/python: what is made from the headers, links to the rest of its source, to
# the library and to the simulator. Debian's interpreter comes first: it has Debian's packages.
find_program(ZK_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(ZK_PYTHON python3)
execute_process(COMMAND ${ZK_PYTHON} -c "import pycparser" RESULT_VARIABLE ZK_WITHOUT_PYCPARSER
                OUTPUT_QUIET ERROR_QUIET)
if(ZK_WITHOUT_PYCPARSER)
  if(ZK_BUILD_PYTHON STREQUAL AUTO)
    message(WARNING "The Python package is not built: ${ZK_PYTHON} has no pycparser, see scripts/setup --python")
    return()
  endif()
  message(FATAL_ERROR "The Python package needs python3-pycparser, see scripts/setup --python")
endif()

set(ZK_PYTHON_DIR ${PROJECT_BINARY_DIR}/python)
set(package ${ZK_PYTHON_DIR}/zk_base)
file(MAKE_DIRECTORY ${package})
file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/python/zk_base/*)
list(FILTER sources EXCLUDE REGEX __pycache__)
foreach(source ${sources})
  get_filename_component(name ${source} NAME)
  file(CREATE_LINK ${source} ${package}/${name} SYMBOLIC)
endforeach()

set(info ${ZK_PYTHON_DIR}/zk_base-${PROJECT_VERSION}.dist-info)
configure_file(python/METADATA.in ${info}/METADATA @ONLY)
configure_file(python/entry_points.txt ${info}/entry_points.txt COPYONLY)

file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h)
add_custom_command(OUTPUT ${package}/interface.py ${package}/interface.pyi
                   COMMAND ${ZK_PYTHON} -B ${PROJECT_SOURCE_DIR}/python/generate_interface.py ${CMAKE_C_COMPILER}
                           ${PROJECT_SOURCE_DIR}/include ${package}
                   DEPENDS ${headers} ${PROJECT_SOURCE_DIR}/python/generate_interface.py
                           ${PROJECT_SOURCE_DIR}/python/zk_base/_types.py
                   COMMENT "Making the Python interface from the headers" VERBATIM)
add_custom_target(zk_python ALL DEPENDS ${package}/interface.py
                  COMMAND ${CMAKE_COMMAND} -E create_symlink $<TARGET_FILE:ZK_Base> ${package}/libZK_Base.so.1 VERBATIM)
add_dependencies(zk_python ZK_Base)
if(TARGET zk_simulator)
  add_custom_command(TARGET zk_python POST_BUILD VERBATIM
                     COMMAND ${CMAKE_COMMAND} -E create_symlink $<TARGET_FILE:zk_simulator> ${package}/zk_simulator)
  add_dependencies(zk_python zk_simulator)
endif()

set(ZK_PYTHON_INSTALL_DIR lib/python3/dist-packages CACHE STRING "Where the Python package is installed")
install(FILES ${sources} ${package}/interface.py ${package}/interface.pyi
        DESTINATION ${ZK_PYTHON_INSTALL_DIR}/zk_base COMPONENT python)
install(DIRECTORY ${info} DESTINATION ${ZK_PYTHON_INSTALL_DIR} COMPONENT python)

if(TARGET zk_simulator)
  string(TOLOWER py3-none-linux_${CMAKE_SYSTEM_PROCESSOR} tag)
  add_custom_target(zk_wheel COMMAND ${ZK_PYTHON} ${PROJECT_SOURCE_DIR}/python/make_wheel.py ${ZK_PYTHON_DIR}
                                     ${PROJECT_VERSION} ${tag} ${PROJECT_BINARY_DIR} VERBATIM)
  add_dependencies(zk_wheel zk_python)
endif()
