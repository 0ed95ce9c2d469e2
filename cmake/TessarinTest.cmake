find_package(GTest REQUIRED)
include(GoogleTest)

# tessarin_add_test(<name> SOURCES <file>... [LIBRARIES <target>...]): a GoogleTest executable, each test known to CTest.
# TESSARIN_TEST_DATA is the directory of the golden files in the source tree.
function(tessarin_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  tessarin_set_options(${name})
  target_link_libraries(${name} PRIVATE tessarin Threads::Threads GTest::gtest_main ${ARG_LIBRARIES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE TESSARIN_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
