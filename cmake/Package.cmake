# Debian packages and a tarball, by CPack: see scripts/package.
set(CPACK_PACKAGE_NAME zk-base)
set(CPACK_PACKAGE_VENDOR "The ZK Base authors")
set(CPACK_PACKAGE_CONTACT "The ZK Base authors <maintainers@zk-base.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development simulator)
if(TARGET zk_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
if(TARGET zk)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)  # the library, which no package has yet

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libzk-base1)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "client library for six- and seven-axis robot arms
It connects to the controllers of the arms, moves them, streams set-points,
receives their state, and computes forward and inverse kinematics.")

# CPack adds scripts that call ldconfig, which the trigger makes needless.
file(WRITE ${PROJECT_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
file(WRITE ${PROJECT_BINARY_DIR}/shlibs "libZK_Base 1 libzk-base1 (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/triggers ${PROJECT_BINARY_DIR}/shlibs)
file(WRITE ${PROJECT_BINARY_DIR}/overrides "libzk-base1: maintscript-calls-ldconfig *\n")
install(FILES ${PROJECT_BINARY_DIR}/overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME libzk-base1
        COMPONENT library EXCLUDE_FROM_ALL)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzk-base-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libzk-base1 (= ${PROJECT_VERSION}), libcjson-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS zk-simulator)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "client library for robot arms: headers, examples, documents
The headers are for C and C++. The library is found by CMake and pkg-config.")

set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME zk-simulator)
set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SECTION devel)
set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION "simulated controller of a robot arm
It speaks the protocol of a controller, moves the joints of a simulated arm
within their limits, and shows faults on demand: for work and for tests
without an arm.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME zk-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libzk-base1 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS zk-simulator)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "look at robot arms and move them, from the command line
zk shows the state of an arm, moves it after checks, computes on its model,
and serves a page that shows arms as they move.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-zk-base)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "libzk-base1 (= ${PROJECT_VERSION}), python3 (>= 3.9), python3:any, python3-numpy")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS zk-simulator)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS python3-pytest)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS OFF)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "client library for robot arms: Python
Arms whose moves Ctrl-C stops, kinematics on arrays of numpy, the simulated
controller, and fixtures for pytest.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/python/postinst ${PROJECT_BINARY_DIR}/python/prerm)
file(WRITE ${PROJECT_BINARY_DIR}/python/postinst
     "#!/bin/sh\nset -e\nif [ \"$1\" = configure ]; then py3compile -p python3-zk-base; fi\n")
file(WRITE ${PROJECT_BINARY_DIR}/python/prerm "#!/bin/sh\nset -e\npy3clean -p python3-zk-base\n")
file(CHMOD ${PROJECT_BINARY_DIR}/python/postinst ${PROJECT_BINARY_DIR}/python/prerm
     FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# What Debian asks of every package.
string(TIMESTAMP ZK_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
execute_process(COMMAND gzip -9nkf ${PROJECT_BINARY_DIR}/changelog COMMAND_ERROR_IS_FATAL ANY)
foreach(lower IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${lower} component)
  set(place DESTINATION ${ZK_DOC_DIR}/${CPACK_DEBIAN_${component}_PACKAGE_NAME} COMPONENT ${lower} EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_BINARY_DIR}/changelog.gz ${place})
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE RENAME copyright ${place})
endforeach()

include(CPack)
