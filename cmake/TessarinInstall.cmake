# What `cmake --install` and CPack put where. A user needs nothing of this source tree afterwards.
include(CMakePackageConfigHelpers)

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/Tessarin)

# The library, its headers, and how CMake and pkg-config find them.
install(TARGETS tessarin EXPORT TessarinTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET tables DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT TessarinTargets NAMESPACE Tessarin:: DESTINATION ${package_directory})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TessarinConfig.cmake.in TessarinConfig.cmake
  INSTALL_DESTINATION ${package_directory})
# While the major number is 0, each minor version has an interface of its own; so it is with the SONAME.
write_basic_package_version_file(TessarinConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TessarinConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/TessarinConfigVersion.cmake
  DESTINATION ${package_directory})

cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE TESSARIN_PREFIX_FROM_PC)
configure_file(${PROJECT_SOURCE_DIR}/cmake/tessarin.pc.in tessarin.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tessarin.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The tool finds the library beside it, wherever both are moved to.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR}
  OUTPUT_VARIABLE library_from_tool)
set_target_properties(tsn PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_tool}")
install(TARGETS tsn RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/docs/tsn.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PROJECT_SOURCE_DIR}/tools/tsn/completion/tsn.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME tsn)

# Documents and examples.
install(FILES README.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.md)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessarin)
set(CPACK_PACKAGE_VENDOR "The Tessarin developers")
set(CPACK_PACKAGE_CONTACT "The Tessarin developers <developers@tessarin.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libboost-dev (>= ${TESSARIN_BOOST_VERSION})")
include(CPack)
