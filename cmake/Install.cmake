include(CMakePackageConfigHelpers)

install(TARGETS ZK_Base EXPORT ZK_BaseTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT ZK_BaseTargets NAMESPACE ZK:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ZK_Base)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZK_BaseConfig.cmake.in ${CMAKE_BINARY_DIR}/ZK_BaseConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ZK_Base)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/ZK_BaseConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/ZK_BaseConfig.cmake ${CMAKE_BINARY_DIR}/ZK_BaseConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/ZK_Base)
file(RELATIVE_PATH ZK_PREFIX_OF_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${CMAKE_CURRENT_LIST_DIR}/zk_base.pc.in ${CMAKE_BINARY_DIR}/zk_base.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/zk_base.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(ZK_BUILD_SIMULATOR AND NOT ZK_SIMULATOR)
  install(TARGETS zk_simulator RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/simulator/scenarios DESTINATION ${CMAKE_INSTALL_DATADIR}/zk_base)
endif()
