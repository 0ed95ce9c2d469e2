#include "Corpus.hpp"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <random>
#include <string_view>

namespace tessarin::bench {

namespace {

using Word = std::string_view;

/// Words that no keyword is equal to.
constexpr Word nouns[] = {"pressure", "flow",  "voltage", "current", "speed",  "torque", "force",    "heat",  "mass",
                          "volume",   "area",  "angle",   "charge",  "valve",  "pump",   "spring",   "wall",  "fluid",
                          "shaft",    "motor", "tank",    "level",   "signal", "gain",   "rate",     "ratio", "load",
                          "friction", "leak",  "density", "energy",  "power",  "field",  "position", "slip",  "gap"};
constexpr Word qualifiers[] = {"nominal", "start", "max",   "min",  "ref",   "inlet", "out",   "left", "right",
                               "upper",   "lower", "total", "mean", "inner", "outer", "rotor", "side", "drop"};
constexpr Word units[] = {"m", "kg", "s", "A", "V", "K", "N*m", "rad/s", "W/(m*K)", "m^3/s", "Pa", "1/Ohm", "J/(kg*K)"};
constexpr Word domains[] = {"electrical.electrical", "rotational.shaft", "thermal.thermal", "hydraulic.port"};
constexpr Word functions[] = {"sqrt", "exp", "abs", "sin", "tanh", "tablelookup", "max", "min"};
constexpr Word prose[] = {"the",  "value", "of",   "this", "is",    "limited", "when", "a",     "small", "rises",
                          "flow", "and",   "heat", "from", "wall;", "see",     "also", "table", "(3)",   "note:"};

/// Parts of text. They stand in braces, since the elements of a list are made in their order everywhere, and arguments
/// of a function in an order that depends on the compiler.
using Parts = std::initializer_list<Word>;

std::string join(Parts parts) {
  std::string text;
  for (const Word part : parts) text.append(part);
  return text;
}

class ModelWriter {
public:
  ModelWriter(std::uint32_t seed, std::size_t size) : random_(seed), size_(size) {}

  CorpusFile write(std::string name);

private:
  // Text.
  void put(Word text) { out_.append(text.begin(), text.end()); }
  void put(Parts parts) {
    for (const Word part : parts) put(part);
  }
  /// A line of the parts, indented, with a comment now and then.
  void line(Parts parts) {
    out_.append(2 * depth_, u' ');
    put(parts);
    if (below(8) == 0) comment();
    out_ += u'\n';
  }
  void open(Parts parts) {
    line(parts);
    ++depth_;
  }
  void close() {
    --depth_;
    line({"end"});
  }
  [[nodiscard]] bool isFull() const { return out_.size() >= size_; }

  // Chance. The distributions of the standard library differ between machines.
  std::size_t below(std::size_t limit) { return random_() % limit; }
  template <std::size_t N>
  Word pick(const Word (&words)[N]) {
    return words[below(N)];
  }
  const std::string& pick(const std::vector<std::string>& names) { return names[below(names.size())]; }

  // Words.
  std::string newName();
  std::string declare(std::vector<std::string>& names) { return names.emplace_back(newName()); }
  std::string number();
  std::string withUnit() { return join({"{", number(), ", '", pick(units), "'}"}); }
  std::string operand();
  std::string expression(int depth);
  std::string condition(int depth);
  std::string array();
  std::string sentence(std::size_t words);
  void comment();
  void commentBlock();

  // Sections.
  void seedNames();
  void section();
  void declarations(Word keyword, std::vector<std::string>& names);
  void ports();
  void components();
  void nodes();
  void branches();
  void connections();
  void equations();
  void equation();
  void conditionalEquations();
  void letEquations();
  void events();
  void modecharts();
  void annotations();
  void conditionalSection();
  void forSection();
  void setup();
  void function();

  std::mt19937 random_;
  std::size_t size_;
  std::u16string out_;
  std::size_t depth_ = 0;
  std::size_t nameCount_ = 0;
  std::vector<std::string> values_; // parameters, variables and the like
  std::vector<std::string> nodes_;
  std::vector<std::string> components_;
};

std::string ModelWriter::newName() {
  std::string name(pick(nouns));
  if (below(3) != 0) name.append("_").append(pick(qualifiers));
  return join({name, "_", std::to_string(nameCount_++)});
}

std::string ModelWriter::number() {
  const std::string digits = std::to_string(below(1000));
  switch (below(5)) {
  case 0: return join({digits, ".", std::to_string(below(10'000))});
  case 1: return join({digits, "e-", std::to_string(below(12))});
  case 2: return join({digits, ".5e", std::to_string(below(9))});
  default: return digits;
  }
}

std::string ModelWriter::operand() {
  switch (below(12)) {
  case 0:
  case 1: return number();
  case 2: return join({pick(nodes_), ".", pick(nouns)});
  case 3: return join({pick(components_), ".", pick(nouns), "(", std::to_string(below(9) + 1), ")"});
  case 4: return join({pick(values_), "(", std::to_string(below(3) + 1), ":end)"});
  case 5: return join({pick(values_), "'"});
  case 6: return "time";
  case 7: return withUnit();
  default: return pick(values_);
  }
}

std::string ModelWriter::expression(int depth) {
  constexpr Word binary[] = {" + ", " - ", "*", "/", ".*", "./", "^", " + ", "*"};
  if (depth == 0) return operand();
  switch (below(6)) {
  case 0: return join({"(", expression(depth - 1), ")"});
  case 1: return join({"-", operand()});
  case 2: return join({pick(functions), "(", expression(depth - 1), ", ", operand(), ")"});
  case 3: return join({"der(", expression(depth - 1), ")"});
  default: return join({expression(depth - 1), pick(binary), expression(depth - 1)});
  }
}

std::string ModelWriter::condition(int depth) {
  constexpr Word relations[] = {" > ", " < ", " >= ", " <= ", " == ", " ~= "};
  std::string text = expression(depth);
  text.append(pick(relations)).append(expression(0));
  if (below(5) == 0) text.append(below(2) == 0 ? " && " : " || ").append(condition(0));
  return text;
}

std::string ModelWriter::array() {
  std::string text = "[";
  const std::size_t rows = below(3) + 1;
  for (std::size_t row = 0; row < rows; ++row) {
    if (row != 0) text += below(3) == 0 ? "; ... next row\n      " : "; ";
    text += number();
    for (std::size_t i = below(4); i != 0; --i) text.append(below(4) == 0 ? " " : ", ").append(number());
  }
  text += "]";
  return text;
}

std::string ModelWriter::sentence(std::size_t words) {
  std::string text(pick(prose));
  for (; words != 0; --words) text.append(" ").append(pick(prose));
  return text;
}

void ModelWriter::comment() {
  put({"  % ", sentence(below(8))});
  if (below(6) == 0) out_ += u" (\u00b5m, \u00b0C)";
}

void ModelWriter::commentBlock() {
  if (below(3) != 0) return put({"%% ", sentence(3), "\n"});
  put("%{\n");
  for (std::size_t i = below(5); i != 0; --i) put({"  ", sentence(10), "\n"});
  put("%}\n");
}

// ---- sections -----------------------------------------------------------------------------------------------------

void ModelWriter::declarations(Word keyword, std::vector<std::string>& names) {
  open({keyword, below(4) == 0 ? " (Access = private)" : ""});
  for (std::size_t i = below(8) + 1; i != 0; --i) {
    const std::string value = below(8) == 0 ? array() : below(4) == 0 ? expression(1) : withUnit();
    line({declare(names), below(12) == 0 ? " := " : " = ", value, ";"});
  }
  close();
}

void ModelWriter::ports() {
  open({below(2) == 0 ? "inputs" : "outputs"});
  line({declare(values_), ";"});
  line({declare(values_), " = ", withUnit(), ";"});
  close();
}

void ModelWriter::nodes() {
  open({"nodes"});
  for (std::size_t i = below(3) + 1; i != 0; --i) line({declare(nodes_), " = ", pick(domains), ";"});
  close();
}

void ModelWriter::components() {
  open({"components (ExternalAccess = none)"});
  for (std::size_t i = below(4) + 1; i != 0; --i) {
    line({declare(components_), " = library.", pick(nouns), "(", pick(nouns), " = ", expression(1), ", ",
          pick(qualifiers), " = ", withUnit(), ");"});
  }
  close();
}

void ModelWriter::branches() {
  open({"branches"});
  line({pick(values_), " : ", pick(nodes_), ".i -> ", pick(nodes_), ".i;"});
  line({pick(values_), " : * -> ", pick(nodes_), ".i;"});
  close();
}

void ModelWriter::connections() {
  open({"connections"});
  for (std::size_t i = below(4) + 1; i != 0; --i) {
    line({"connect(", pick(nodes_), ", ", pick(components_), ".p", below(4) == 0 ? ", *" : "", ")",
          below(2) == 0 ? ";" : ""});
  }
  close();
}

void ModelWriter::equation() {
  switch (below(10)) {
  case 0: return line({"assert(", condition(1), ", '", sentence(4), "')"});
  case 1: return line({pick(values_), " == ", expression(1), " + ... ", sentence(2), "\n    ", expression(1), ";"});
  default: return line({expression(1), " == ", expression(2), ";"});
  }
}

void ModelWriter::conditionalEquations() {
  open({"if ", condition(1)});
  equation();
  --depth_;
  if (below(2) == 0) {
    open({"elseif ", condition(0)});
    equation();
    --depth_;
  }
  open({"else"});
  equation();
  close();
}

void ModelWriter::letEquations() {
  open({"let"});
  for (std::size_t i = below(3) + 1; i != 0; --i) line({newName(), " = ", expression(2), ";"});
  line({"[", newName(), ", ~] = split(", operand(), ");"});
  --depth_;
  open({"in"});
  equation();
  equation();
  close();
}

void ModelWriter::equations() {
  open({"equations"});
  for (std::size_t i = below(10) + 1; i != 0; --i) {
    switch (below(8)) {
    case 0: conditionalEquations(); break;
    case 1: letEquations(); break;
    default: equation(); break;
    }
  }
  close();
}

void ModelWriter::events() {
  open({"events"});
  open({"when edge(", condition(1), ")"});
  line({pick(values_), " = ", expression(1), ";"});
  --depth_;
  open({"elsewhen initialevent"});
  line({pick(values_), " = 0;"});
  close();
  close();
}

void ModelWriter::modecharts() {
  open({"modecharts (Trace = true)"});
  open({newName(), " = modechart"});
  open({"modes"});
  open({"mode LOCKED"});
  open({"equations"});
  equation();
  close();
  close();
  open({"mode {FORWARD, REVERSE}"});
  open({"entry"});
  line({pick(values_), " = ", expression(1), ";"});
  close();
  close();
  close();
  open({"transitions"});
  line({"LOCKED->FORWARD : ", condition(1), ";"});
  line({"FORWARD->LOCKED->REVERSE : ", condition(0), ";"});
  close();
  open({"initial"});
  line({"LOCKED : ", condition(0), ";"});
  close();
  close();
  close();
}

void ModelWriter::annotations() {
  open({"annotations"});
  line({"Icon = '", pick(nouns), ".svg'"});
  line({"Layout = [Group(\"", sentence(1), "\", ", pick(values_), ", ", pick(values_), ")]"});
  line({"[", pick(values_), ", ", pick(values_), "] : Group = '", sentence(1), "', Editable = true;"});
  close();
}

void ModelWriter::conditionalSection() {
  open({"if ", condition(0)});
  declarations("parameters", values_);
  equations();
  --depth_;
  open({"elseif ", condition(0)});
  equations();
  --depth_;
  open({"else"});
  connections();
  close();
}

void ModelWriter::forSection() {
  open({"for k = 1:", operand()});
  open({"components"});
  const std::string name = newName();
  line({name, "(k) = library.", pick(nouns), "(n = 1/k);"});
  close();
  open({"connections"});
  line({"connect(", name, "(k).p, ", pick(nodes_), ")"});
  close();
  close();
}

void ModelWriter::section() {
  switch (below(16)) {
  case 0:
  case 1: return declarations("parameters", values_);
  case 2: return declarations("variables", values_);
  case 3: return declarations("intermediates", values_);
  case 4: return ports();
  case 5: return nodes();
  case 6: return components();
  case 7: return branches();
  case 8: return connections();
  case 9: return events();
  case 10: return modecharts();
  case 11: return annotations();
  case 12: return conditionalSection();
  case 13: return forSection();
  case 14: return commentBlock();
  default: return equations();
  }
}

void ModelWriter::setup() {
  open({"function setup"});
  open({"if ", pick(values_), " <= 0"});
  line({"error('library:model:Range', '", sentence(4), "');"});
  --depth_;
  open({"else"});
  line({pick(components_), ".c = value({2, 'm'}, 'mm');"});
  close();
  line({"[", pick(values_), "] = ", number(), "*", pick(values_), ";"});
  close();
}

void ModelWriter::function() {
  const std::string result = newName();
  const std::string input = newName();
  values_ = {input};
  open({"function ", result, " = ", newName(), "(", input, ", limit)"});
  open({"definitions"});
  line({result, " = if ", condition(1), ", ", expression(1), "; else ", expression(1), "; end;"});
  line({"assert(limit > 0, '", sentence(3), "')"});
  close();
  close();
}

/// The names that the first sections refer to.
void ModelWriter::seedNames() {
  open({"parameters"});
  for (int i = 0; i != 3; ++i) line({declare(values_), " = ", withUnit(), ";"});
  close();
  nodes();
  components();
}

CorpusFile ModelWriter::write(std::string name) {
  if (below(3) == 0) put({"import library.", pick(nouns), ".*;\n\n"});
  open({"component ", name});
  seedNames();
  while (!isFull()) section();
  if (below(2) == 0) setup();
  close();
  for (std::size_t i = below(3); i != 0; --i) {
    put("\n");
    function();
  }
  return {std::move(name), std::move(out_)};
}

} // namespace

CorpusFile makeFile(std::uint32_t seed, std::size_t size) {
  return ModelWriter(seed, size).write("model_" + std::to_string(seed));
}

std::vector<CorpusFile> makeCorpus(std::uint32_t seed, std::size_t fileSize, std::size_t totalSize) {
  std::vector<CorpusFile> corpus;
  for (std::size_t size = 0; size < totalSize; size += corpus.back().text.size()) {
    corpus.push_back(makeFile(seed++, fileSize));
  }
  return corpus;
}

std::vector<CorpusFile> makeMixedCorpus(std::uint32_t seed) {
  std::vector<CorpusFile> corpus;
  for (std::size_t fileSize = 1000; fileSize <= 10'000'000; fileSize *= 10) {
    for (CorpusFile& file : makeCorpus(seed, fileSize, std::max<std::size_t>(fileSize, 2'500'000))) {
      corpus.push_back(std::move(file));
    }
    seed += 1'000'000;
  }
  return corpus;
}

} // namespace tessarin::bench
