# The rules of flex for the words that our grammar names: `awk -f scanner.awk grammar.yy`
/^  [A-Z_]+ [0-9]+ "[a-z]+"[;]?$/ {
  word = $3; gsub(/[";]/, "", word)
  if ($2 >= 306 && $2 <= 386 && word != "string" && word != "number" && word != "comment" && word != "whitespace") {
    print "\"" word "\"  return word(" $2 ");"
  }
}
