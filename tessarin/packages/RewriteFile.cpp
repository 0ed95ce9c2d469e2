#include "tessarin/packages/RewriteFile.hpp"

namespace tessarin::compiler::core {

namespace {

LocalTSNFunctions rewriteAll(const LocalTSNFunctions& functions, ExprTransformVisitor& visitor) {
  LocalTSNFunctions result = functions;
  for (const TSNFunction* function : inOrderOfName(functions)) {
    result.at(function->name().id()) = rewrite(*function, visitor);
  }
  return result;
}

} // namespace

ModelFile rewrite(const ModelFile& file, ExprTransformVisitor& visitor) {
  const Model model = rewrite(file.model(), visitor);
  return {model, file.importStmts(), rewriteAll(file.localTSNFunctions(), visitor)};
}
TSNFunctionFile rewrite(const TSNFunctionFile& file, ExprTransformVisitor& visitor) {
  const TSNFunction function = rewrite(file.tsnFunction(), visitor);
  return {function, file.importStmts(), rewriteAll(file.localTSNFunctions(), visitor)};
}
std::variant<ModelFile, TSNFunctionFile> rewrite(const std::variant<ModelFile, TSNFunctionFile>& file,
                                                 ExprTransformVisitor& visitor) {
  using File = std::variant<ModelFile, TSNFunctionFile>;
  return std::visit([&visitor](const auto& kind) -> File { return rewrite(kind, visitor); }, file);
}

ModelFile withModel(const ModelFile& file, const Model& model) {
  return {model, file.importStmts(), file.localTSNFunctions()};
}
TSNFunctionFile withFunction(const TSNFunctionFile& file, const TSNFunction& function) {
  return {function, file.importStmts(), file.localTSNFunctions()};
}

} // namespace tessarin::compiler::core
