# tessarin_empty_parser(<name> [<option of Bison>...]): a library with the automaton of the grammar without its actions,
# `tessarin::compiler::core::empty::TSNParser` in empty_grammar.hpp. See tests/support/EmptyActions.hpp.
function(tessarin_empty_parser name)
  set(grammar ${PROJECT_SOURCE_DIR}/tessarin/parser/parse/grammar.yy)
  set(directory ${CMAKE_CURRENT_BINARY_DIR}/${name})
  file(MAKE_DIRECTORY ${directory})
  add_custom_command(
    OUTPUT ${directory}/empty_grammar.cpp ${directory}/empty_grammar.hpp
    COMMAND ${BISON_EXECUTABLE} -Wno-conflicts-sr -Wno-conflicts-rr -Fapi.namespace={tessarin::compiler::core::empty} ${ARGN}
      -o ${directory}/empty_grammar.cpp --header=${directory}/empty_grammar.hpp ${grammar}
    DEPENDS ${grammar}
    VERBATIM)
  add_library(${name} STATIC ${directory}/empty_grammar.cpp ${directory}/empty_grammar.hpp)
  target_compile_definitions(${name} PUBLIC TESSARIN_EMPTY_ACTIONS)
  target_include_directories(${name} PUBLIC ${directory} ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PUBLIC tessarin)
endfunction()
