find_package(GTest REQUIRED)
include(GoogleTest)

# tessarin_add_test(<name> SOURCES <file>... [LIBRARIES <target>...]): a GoogleTest executable, each test known to CTest.
# TESSARIN_TEST_DATA is the directory of the golden files in the source tree. A file of tests that no test of its directory
# lists is an error: it would never run.
function(tessarin_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  tessarin_set_options(${name})
  target_link_libraries(${name} PRIVATE tessarin Threads::Threads GTest::gtest_main ${ARG_LIBRARIES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE TESSARIN_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
  tessarin_label_large_tests(${name} ${ARG_SOURCES})
  set_property(DIRECTORY APPEND PROPERTY TESSARIN_TEST_SOURCES ${ARG_SOURCES})
  cmake_language(DEFER CALL tessarin_require_all_tests)
endfunction()

# Labels each LARGE_TEST of the sources (tests/support/large.hpp) as the program is linked, when its tests are listed too.
function(tessarin_label_large_tests name)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ REGEX "^[^/]")
  list(JOIN ARGN "," sources)
  set(labels ${CMAKE_CURRENT_BINARY_DIR}/${name}_labels.cmake)
  add_custom_command(TARGET ${name} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -DSOURCES=${sources} -DOUTPUT=${labels} -P ${PROJECT_SOURCE_DIR}/cmake/TessarinMarkLarge.cmake
    VERBATIM)
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${name}_include_labels.cmake "include(\"${labels}\" OPTIONAL)\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}_include_labels.cmake)
endfunction()

# Fails where the current directory holds a file of tests that is in no test.
function(tessarin_require_all_tests)
  get_property(listed DIRECTORY PROPERTY TESSARIN_TEST_SOURCES)
  file(GLOB present RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS *_tests.cpp)
  list(REMOVE_ITEM present ${listed})
  if(present)
    message(FATAL_ERROR "No test in ${CMAKE_CURRENT_SOURCE_DIR} lists ${present}.")
  endif()
endfunction()
