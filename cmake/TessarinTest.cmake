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
  set_property(DIRECTORY APPEND PROPERTY TESSARIN_TEST_SOURCES ${ARG_SOURCES})
  cmake_language(DEFER CALL tessarin_require_all_tests)
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
