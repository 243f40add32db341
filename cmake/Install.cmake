# What `cmake --install` puts under a prefix, by component: each is a package of its own, see Package.cmake.
include(CMakePackageConfigHelpers)

set(ZK_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZK_Base)
set(ZK_DOC_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc)

install(TARGETS ZK_Base EXPORT ZK_BaseTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT ZK_BaseTargets NAMESPACE ZK:: DESTINATION ${ZK_PACKAGE_DIR} COMPONENT development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZK_BaseConfig.cmake.in ${PROJECT_BINARY_DIR}/ZK_BaseConfig.cmake
                              INSTALL_DESTINATION ${ZK_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZK_BaseConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZK_BaseConfig.cmake ${PROJECT_BINARY_DIR}/ZK_BaseConfigVersion.cmake
        DESTINATION ${ZK_PACKAGE_DIR} COMPONENT development)
file(RELATIVE_PATH ZK_PREFIX_OF_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${CMAKE_CURRENT_LIST_DIR}/zk_base.pc.in ${PROJECT_BINARY_DIR}/zk_base.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zk_base.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples ${PROJECT_SOURCE_DIR}/docs DESTINATION ${ZK_DOC_DIR}/libzk-base-dev
        COMPONENT development PATTERN CMakeLists.txt EXCLUDE PATTERN reference EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${ZK_DOC_DIR}/libzk-base-dev COMPONENT development)

# The manual page of a program is what the program says of itself, with a file of further sections if there is one.
find_program(HELP2MAN help2man)
function(zk_manual program component summary)
  if(NOT HELP2MAN OR (CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR))
    return()
  endif()
  set(page ${PROJECT_BINARY_DIR}/${program}.1)
  list(TRANSFORM ARGN PREPEND --include= OUTPUT_VARIABLE sections)
  add_custom_command(OUTPUT ${page}.gz
                     COMMAND ${HELP2MAN} --no-info --name ${summary} ${sections} --output ${page}
                             "${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${program}>"
                     COMMAND gzip -9nf ${page}
                     DEPENDS ${program} ${ARGN} VERBATIM)
  add_custom_target(${program}_manual ALL DEPENDS ${page}.gz)
  install(FILES ${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
endfunction()

if(ZK_BUILD_SIMULATOR AND NOT ZK_SIMULATOR)
  install(TARGETS zk_simulator RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT simulator)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/simulator/scenarios DESTINATION ${CMAKE_INSTALL_DATADIR}/zk_base
          COMPONENT simulator)
  install(FILES ${PROJECT_SOURCE_DIR}/simulator/README.md ${PROJECT_SOURCE_DIR}/docs/simulator.md
          DESTINATION ${ZK_DOC_DIR}/zk-simulator COMPONENT simulator)
  zk_manual(zk_simulator simulator "simulated controller of a robot arm")
endif()

if(TARGET zk)
  install(TARGETS zk RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/tools/schemas DESTINATION ${CMAKE_INSTALL_DATADIR}/zk_base COMPONENT tools)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/README.md DESTINATION ${ZK_DOC_DIR}/zk-tools COMPONENT tools)
  if(NOT CMAKE_CROSSCOMPILING OR CMAKE_CROSSCOMPILING_EMULATOR)
    add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/zk.bash ${PROJECT_BINARY_DIR}/zk.fish ${PROJECT_BINARY_DIR}/zk.sections
                       COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:zk> completion bash > zk.bash
                       COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:zk> completion fish > zk.fish
                       COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:zk> completion man > zk.sections
                       WORKING_DIRECTORY ${PROJECT_BINARY_DIR} DEPENDS zk VERBATIM)
    add_custom_target(zk_completion ALL DEPENDS ${PROJECT_BINARY_DIR}/zk.bash)
    install(FILES ${PROJECT_BINARY_DIR}/zk.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
            RENAME zk COMPONENT tools)
    install(FILES ${PROJECT_BINARY_DIR}/zk.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
            COMPONENT tools)
  endif()
  zk_manual(zk tools "look at robot arms, move them, compute on their models" ${PROJECT_BINARY_DIR}/zk.sections)
endif()
