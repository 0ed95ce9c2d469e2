// Lists the states of models: what the equations take derivatives of, each with its first place.
#include "tessarin/parser/ast/Usage.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>

namespace {

using namespace tessarin::compiler::core;

ModelFile readModel(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot be read");
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const nvf::ustring text = nvf::decode_utf8(bytes);
  const nvf::SourceBuffer buffer(nvf::FileName(path), text);
  return ASTBuilder().buildModelFile(Parser(buffer).parse(), FileSource::open);
}

void listStates(const ModelFile& file) {
  std::set<nvf::ustring> seen;
  VariableVisitFcns functions;
  functions.opExpr = [&seen](const OpExpr& op) {
    if (op.opType() != OpExprType::Der || !seen.insert(to_string(op.operandAt(0))).second) return;
    const nvf::LineColumn place = expr_location(op.operandAt(0)).lineColumn(); // counted from 0
    std::cout << nvf::encode_utf8(to_string(op.operandAt(0))) << "  " << place.line() + 1 << ':' << place.column() + 1
              << '\n';
  };
  for (const EquationBlock& block : file.model().declarativeSections().semanticSections().equationBlocks()) {
    for (const EqnItem& item : block.eqnItems()) {
      if (const Expr* equation = item.getIf<Expr>()) visit_variables(*equation, functions, VisitPredicateFlags::All);
    }
  }
}

} // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    try {
      listStates(readModel(argv[i]));
    } catch (const std::exception& e) { // a fault of the source is an nvf::LocationException, with id and place
      std::cerr << argv[i] << ": " << e.what() << '\n';
      return 1;
    }
  }
}
