# An installation contains the shared libraries, their headers, a CMake package, a pkg-config file and the program. It can
# be moved as a whole.

include(CMakePackageConfigHelpers)

get_property(libraries GLOBAL PROPERTY TARN_LIBRARIES)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME})

install(TARGETS ${libraries} EXPORT ${PROJECT_NAME}Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT libraries NAMELINK_COMPONENT development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT ${PROJECT_NAME}Targets NAMESPACE TARN:: DESTINATION ${package_dir} COMPONENT development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/${PROJECT_NAME}Config.cmake.in ${PROJECT_NAME}Config.cmake
                              INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
# Before 1.0 a minor release may change the interface.
write_basic_package_version_file(${PROJECT_NAME}ConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${PROJECT_NAME}Config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/${PROJECT_NAME}ConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)

file(RELATIVE_PATH pkgconfig_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${CMAKE_CURRENT_LIST_DIR}/tarn-physical-dependency.pc.in tarn-physical-dependency.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tarn-physical-dependency.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)

if(TARGET zev)
  file(RELATIVE_PATH bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(zev PROPERTIES INSTALL_RPATH "\$ORIGIN/${bin_to_lib}")
  install(TARGETS zev RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/flow ${PROJECT_SOURCE_DIR}/examples/heating
          DESTINATION ${CMAKE_INSTALL_DATADIR}/tarn/examples)
endif()

include(DebianPackages)
