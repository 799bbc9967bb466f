install(TARGETS w64qxcore6 EXPORT w64qxcore6-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/qxcore.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/qxcore DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT w64qxcore6-targets NAMESPACE w64qxcore6:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/w64qxcore6)

configure_package_config_file(cmake/w64qxcore6-config.cmake.in
  ${PROJECT_BINARY_DIR}/w64qxcore6-config.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/w64qxcore6)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/w64qxcore6-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/w64qxcore6-config.cmake
  ${PROJECT_BINARY_DIR}/w64qxcore6-config-version.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/w64qxcore6)

# The file finds the prefix from where it is, so that an installation can be moved.
file(RELATIVE_PATH QXCORE_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/w64qxcore6.pc.in ${PROJECT_BINARY_DIR}/w64qxcore6.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/w64qxcore6.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_CONTACT "The w64qxcore6 maintainers <maintainers@w64qxcore6.invalid>")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
include(CPack)
