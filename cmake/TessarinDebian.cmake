# Three packages as Debian wants them, by `cpack` (./dev package): the library under the name of its SONAME, what programs are
# built with, and the tool with the documents.
find_program(TESSARIN_GZIP gzip REQUIRED)

set(library_package libtessarin${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(maintainer "The Tessarin developers <developers@tessarin.invalid>")
set(debian_directory ${PROJECT_BINARY_DIR}/debian)

# tessarin_compress(<file> <output>): as small as it gets, and the same each time.
function(tessarin_compress file output)
  execute_process(COMMAND ${TESSARIN_GZIP} -9nc ${file} OUTPUT_FILE ${output} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

string(TIMESTAMP TESSARIN_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(CONFIGURE OUTPUT ${debian_directory}/changelog CONTENT
"tessarin (@PROJECT_VERSION@) unstable; urgency=medium

  * What has changed stands in /usr/share/doc/tessarin/CHANGELOG.md.

 -- @maintainer@  @TESSARIN_CHANGELOG_DATE@
" @ONLY)
tessarin_compress(${debian_directory}/changelog ${debian_directory}/changelog.gz)
tessarin_compress(${PROJECT_SOURCE_DIR}/docs/tsn.1 ${debian_directory}/tsn.1.gz)
install(FILES ${debian_directory}/tsn.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)

file(READ LICENSE license)
string(REGEX MATCH "Copyright[^\n]*" TESSARIN_COPYRIGHT "${license}")
string(REGEX REPLACE "^.*Copyright[^\n]*\n+" "" license "${license}")
string(STRIP "${license}" license)
string(REPLACE "\n\n" "\n.\n" license "${license}")
string(REPLACE "\n" "\n " TESSARIN_LICENSE "${license}")
file(CONFIGURE OUTPUT ${debian_directory}/copyright CONTENT
"Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: Tessarin

Files: *
Copyright: @TESSARIN_COPYRIGHT@
License: Expat
 @TESSARIN_LICENSE@
" @ONLY)
file(WRITE ${debian_directory}/triggers "activate-noawait ldconfig\n")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessarin)
set(CPACK_PACKAGE_VENDOR "The Tessarin developers")
set(CPACK_PACKAGE_CONTACT ${maintainer})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development tool)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${maintainer})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

# tessarin_package(<component> <name> <section> <depends> <summary> <description>)
macro(tessarin_package component name section depends summary description)
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}")
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}")
  install(FILES ${debian_directory}/copyright ${debian_directory}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name} COMPONENT ${component})
endmacro()

tessarin_package(library ${library_package} libs ""
  "language front end of Tessarin, library"
  "Turns sources of Tessarin, an equation-based language for models of\nphysical systems, into tokens, parse trees and syntax trees, or into\none precise message.")
tessarin_package(development libtessarin-dev libdevel
  "${library_package} (= ${PROJECT_VERSION}), libboost-dev (>= ${TESSARIN_BOOST_VERSION})"
  "language front end of Tessarin, headers"
  "What programs are built with that read sources of Tessarin: headers,\nand files for CMake and pkg-config.")
tessarin_package(tool tessarin devel "${library_package} (= ${PROJECT_VERSION})"
  "language front end of Tessarin, command line"
  "The program tsn looks at sources of Tessarin: tokens, trees, what they\ndeclare and use, what is wrong with them. With documents and examples.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY "=")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${debian_directory}/triggers)
include(CPack)
