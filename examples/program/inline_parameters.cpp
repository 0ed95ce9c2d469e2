// Prints models with the values of their constant parameters in the place of the names. A parameter is constant where
// its value has no names in it, or only those of constant parameters.
#include "tessarin/tessarin.hpp"

#include <map>

namespace {

using namespace tessarin;

/// The values by name. Parameters in conditional sections are not looked at: there may be two of one name.
using Constants = std::map<nvf::CxId, Expr>;

Constants constantParameters(const Model& model) {
  Constants constants;
  for (const DeclarationBlock& block : model.declarativeSections().declarationBlocks()) {
    if (block.type() != MemberType::PARAMETER) continue;
    for (const DeclarationItem& item : block.declarations()) {
      const auto* declaration = item.getIf<IdListValuePair>();
      if (declaration == nullptr || declaration->ids().size() != 1) continue;
      const auto* name = declaration->ids().front().getIf<Ident>();
      if (name != nullptr && used_ids(declaration->value()).empty())
        constants.emplace(name->id(), declaration->value());
    }
  }
  // The variable of a loop hides a parameter of its name.
  walk(model, [&constants](const ForLoop& loop) { constants.erase(loop.idValuePair().ident().id()); });
  return constants;
}

/// Puts values in the place of names that no `let` around them declares.
class Inliner : public ExprTransformVisitor {
public:
  using ExprTransformVisitor::operator();
  explicit Inliner(Constants constants) : constants_(std::move(constants)) {}
  Expr operator()(const Variable& variable) override {
    const auto constant = constants_.find(variable.id().id());
    if (constant != constants_.end() && variable.isID() && !letStack().simpleLookup(variable)) return constant->second;
    return ExprTransformVisitor::operator()(variable);
  }

private:
  Constants constants_;
};

/// What is inlined makes further parameters constant; each round inlines one more level.
Model inlined(Model model) {
  while (true) {
    Inliner inliner(constantParameters(model));
    Model next = rewrite(model, inliner);
    if (next == model) return model;
    model = next;
  }
}

} // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    try {
      const TSNFile file = parseFile(argv[i]);
      if (const auto* model = std::get_if<ModelFile>(&file)) std::cout << withModel(*model, inlined(model->model()));
    } catch (const nvf::Failure& failure) {
      std::cerr << failure.what() << '\n';
      return 1;
    }
  }
}
