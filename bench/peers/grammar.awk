# The rules of our grammar as a textbook writes them for Bison: each reduction makes a node, `new Node`, and nothing else.
# Actions, checks and the prologue are dropped; tokens with their numbers, precedences and rules stay as they are.
#
#   awk -f grammar.awk grammar.yy > peer.y

BEGIN {
  print "%{\n#include \"peer.hpp\"\n#include <cstdio>\nint yylex();\nextern int yylineno;\nstatic void yyerror(const char* text) { std::fprintf(stderr, \"line %d: %s\\n\", yylineno, text); }\n%}\n%define parse.error detailed"
  print "%define api.value.type {Node*}\n%define lr.default-reduction most\n%start File\n"
  part = "head"
}
part == "head" && /^%%/ { part = "rules"; print; next }
part == "head" && /^%token/ { inTokens = 1 }
part == "head" && inTokens { print; if (/;$/) inTokens = 0; next }
part == "head" && /^%(left|precedence)/ { sub(/ *\/\/.*/, ""); print; next }
part == "head" { next }
part == "rules" && /^%%/ { print; exit }
/^\/\// || /^$/ { next }
/^;/ || /^[A-Za-z_0-9]+:$/ { print; next }
{
  # One alternative: its symbols, with the action in the middle of one rule as a symbol of its own.
  rest = $0; line = ""; n = 0; head = substr($0, 1, 2); rest = substr($0, 3)
  while (match(rest, /^ *("([^"\\]|\\.)*"|%empty|[A-Za-z_][A-Za-z_0-9]*|\{[^}]*\})/)) {
    symbol = substr(rest, RSTART, RLENGTH); sub(/^ */, "", symbol); rest = substr(rest, RSTART + RLENGTH)
    if (symbol ~ /^\{/) {
      if (rest ~ /^ *$/ || rest !~ /^ *[A-Z]/) break
      symbol = "{ $$ = nullptr; }"
    }
    line = line " " symbol
    if (symbol != "%empty") ++n
  }
  ++rule
  children = ""
  for (i = 1; i <= n; ++i) children = children ", $" i
  print head line " { $$ = new Node(" rule children "); " (rule <= 3 ? "root = $$; YYACCEPT; " : "") "}"
}
