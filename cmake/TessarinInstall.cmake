# What `cmake --install` puts where: the components `library`, `development` and `tool`. A user needs nothing of this source
# tree afterwards.
include(CMakePackageConfigHelpers)

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/Tessarin)

# The library, its headers, and how CMake and pkg-config find them.
install(TARGETS tessarin EXPORT TessarinTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  FILE_SET tables DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT TessarinTargets NAMESPACE Tessarin:: DESTINATION ${package_directory} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TessarinConfig.cmake.in TessarinConfig.cmake
  INSTALL_DESTINATION ${package_directory})
# While the major number is 0, each minor version has an interface of its own; so it is with the SONAME.
write_basic_package_version_file(TessarinConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/TessarinConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/TessarinConfigVersion.cmake
  DESTINATION ${package_directory} COMPONENT development)

cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE TESSARIN_PREFIX_FROM_PC)
configure_file(${PROJECT_SOURCE_DIR}/cmake/tessarin.pc.in tessarin.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tessarin.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The tool finds the library beside it, wherever both are moved to.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR}
  OUTPUT_VARIABLE library_from_tool)
set_target_properties(tsn PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_tool}")
install(TARGETS tsn RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
install(FILES ${PROJECT_SOURCE_DIR}/tools/tsn/completion/tsn.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME tsn COMPONENT tool)

# Documents and examples, all in one folder.
set(documents_directory ${CMAKE_INSTALL_DATAROOTDIR}/doc/tessarin)
install(FILES README.md CHANGELOG.md DESTINATION ${documents_directory} COMPONENT tool)
install(DIRECTORY docs DESTINATION ${documents_directory} COMPONENT tool FILES_MATCHING PATTERN *.md)
install(DIRECTORY examples DESTINATION ${documents_directory} COMPONENT tool)

if(TESSARIN_DEBIAN)
  include(TessarinDebian)
else()
  install(FILES LICENSE DESTINATION ${documents_directory} COMPONENT library)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/tsn.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
endif()
