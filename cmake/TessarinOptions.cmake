# Options of the build and the compiler settings that every target of this project shares.

# As a part of another project only the library is built, unless that project says otherwise.
option(TESSARIN_TOOL "Build the command line tsn" ${PROJECT_IS_TOP_LEVEL})
option(TESSARIN_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(TESSARIN_INSTALL "Install and package what is built" ${PROJECT_IS_TOP_LEVEL})
option(TESSARIN_DEBIAN "Install as packages of Debian do" OFF)
option(TESSARIN_FIBERS "Walk deep trees on stacks of Boost.Context; without it deep nests are refused earlier" ON)
option(TESSARIN_BENCH "Build the benchmarks" OFF)
option(TESSARIN_FUZZ "Build the fuzzers (Clang only)" OFF)
option(TESSARIN_WERROR "Treat warnings as errors" OFF)
set(TESSARIN_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them, or empty")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(TESSARIN_CCACHE ccache)
if(PROJECT_IS_TOP_LEVEL AND TESSARIN_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # A cache that cannot write its folder would fail every compilation.
  file(WRITE ${PROJECT_BINARY_DIR}/cache_probe.cpp "")
  execute_process(COMMAND ${TESSARIN_CCACHE} ${CMAKE_CXX_COMPILER} -c cache_probe.cpp -o cache_probe.o
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR} RESULT_VARIABLE cache_failure OUTPUT_QUIET ERROR_VARIABLE cache_error)
  if(cache_failure)
    message(STATUS "Building without the compiler cache: ${cache_error}")
  else()
    set(CMAKE_CXX_COMPILER_LAUNCHER ${TESSARIN_CCACHE})
  endif()
endif()

# tessarin_set_options(<target>): warnings and sanitizers.
function(tessarin_set_options target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    $<$<BOOL:${TESSARIN_WERROR}>:-Werror>
    # GCC 12 warns of overlapping copies inside its own std::string: -Wno-restrict.
    "$<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition;-Wno-restrict>")
  if(TESSARIN_SANITIZE)
    target_compile_options(${target} PUBLIC -fsanitize=${TESSARIN_SANITIZE} -fno-omit-frame-pointer)
    target_compile_options(${target} PRIVATE -fno-sanitize-recover=all)
    target_link_options(${target} PUBLIC -fsanitize=${TESSARIN_SANITIZE})
  endif()
endfunction()
