# The target `documentation`: Doxygen over the public headers and the documents. Any warning fails it.
find_package(Doxygen)
if(NOT DOXYGEN_FOUND)
  return()
endif()

set(TESSARIN_DOCUMENTATION_DIRECTORY ${PROJECT_BINARY_DIR}/documentation)
get_target_property(documented_files tessarin HEADER_SET)
list(FILTER documented_files INCLUDE REGEX [[\.hpp$]])
file(GLOB documents CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
list(APPEND documented_files ${documents})
foreach(page README CONTRIBUTING CHANGELOG SECURITY)
  list(APPEND documented_files ${PROJECT_SOURCE_DIR}/${page}.md)
endforeach()
list(TRANSFORM documented_files PREPEND "\"")
list(TRANSFORM documented_files APPEND "\"")
list(JOIN documented_files " \\\n  " TESSARIN_DOCUMENTATION_INPUT)
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in Doxyfile @ONLY)

add_custom_target(documentation
  COMMAND ${CMAKE_COMMAND} -E make_directory ${TESSARIN_DOCUMENTATION_DIRECTORY}
  COMMAND Doxygen::doxygen ${CMAKE_CURRENT_BINARY_DIR}/Doxyfile
  COMMENT "Writing the reference documentation to ${TESSARIN_DOCUMENTATION_DIRECTORY}/html"
  VERBATIM)
