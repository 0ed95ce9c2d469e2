# Runs Bison on the grammar and fails where the automaton is not the one that the rest of the library relies on.
#
#   cmake -DBISON=… -DGRAMMAR=… -DSOURCE=… -DHEADER=… -P CheckAutomaton.cmake
#
# The numbers of states and rules are part of the grammar's contract: actions are attached to rules by number, and messages
# depend on what a state expects. A change of any of them shows that the language has changed.

get_filename_component(directory "${SOURCE}" DIRECTORY)
set(report "${directory}/grammar.report")
set(xml "${directory}/grammar.xml")

execute_process(
  COMMAND "${BISON}" -Wno-conflicts-sr -Wno-conflicts-rr --report=state "--report-file=${report}" "--xml=${xml}"
    -o "${SOURCE}" "--header=${HEADER}" "${GRAMMAR}"
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "Bison refuses the grammar")
endif()

# refuse(<text>): fails, and leaves nothing behind that a later build could take for the result.
function(refuse text)
  file(REMOVE "${SOURCE}" "${HEADER}")
  message(FATAL_ERROR "${text}")
endfunction()

# expect(<what> <expected> <regular expression>...): counts the lines of the XML form that match.
function(expect what expected pattern)
  file(STRINGS "${xml}" lines REGEX "${pattern}")
  list(LENGTH lines count)
  if(NOT count EQUAL expected)
    refuse("the automaton has ${count} ${what}, not ${expected}")
  endif()
endfunction()

expect("states" 801 "<state number=")
expect("non-terminals" 165 "<nonterminal symbol-number=")
expect("rules" 426 "<rule number=")
# Terminals count from 0; the undefined one is not listed.
expect("terminals with the number 131" 1 "<terminal symbol-number=\"131\"")
expect("terminals with the number 132" 0 "<terminal symbol-number=\"132\"")

# The conflicts that the head of the grammar explains.
file(STRINGS "${report}" conflicts REGEX "^State [0-9]+ conflicts: ")
set(shift_reduce 0)
set(reduce_reduce "")
foreach(line IN LISTS conflicts)
  if(line MATCHES "([0-9]+) shift/reduce")
    math(EXPR shift_reduce "${shift_reduce} + ${CMAKE_MATCH_1}")
  endif()
  if(line MATCHES "([0-9]+) reduce/reduce")
    list(APPEND reduce_reduce ${CMAKE_MATCH_1})
  endif()
endforeach()
if(NOT shift_reduce EQUAL 96 OR NOT reduce_reduce STREQUAL "4")
  string(CONCAT text "the grammar has ${shift_reduce} shift/reduce conflicts, not 96, and the reduce/reduce conflicts of its "
    "states are \"${reduce_reduce}\", not \"4\"")
  refuse("${text}")
endif()

# Bison says of the constructor of the parser's stack that it throws nothing. It allocates: where memory ends, the process would.
set(wrong "stack (size_type n = 200) YY_NOEXCEPT")
file(READ "${HEADER}" text)
string(FIND "${text}" "${wrong}" at)
if(at EQUAL -1)
  refuse("the parser's stack is another one than this was written for")
endif()
string(REPLACE "${wrong}" "stack (size_type n = 200)" text "${text}")
file(WRITE "${HEADER}" "${text}")
