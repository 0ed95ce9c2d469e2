#include "tessarin/packages/WalkFile.hpp"

namespace tessarin::compiler::core {

namespace {

template <class File>
std::vector<AstNode> nodesAround(const File& file, AstNode main) {
  std::vector<AstNode> nodes(file.importStmts().begin(), file.importStmts().end());
  nodes.push_back(main);
  for (const TSNFunction* function : inOrderOfName(file.localTSNFunctions())) nodes.emplace_back(*function);
  return nodes;
}

} // namespace

std::vector<AstNode> nodesOf(const ModelFile& file) {
  return nodesAround(file, file.model());
}
std::vector<AstNode> nodesOf(const TSNFunctionFile& file) {
  return nodesAround(file, file.tsnFunction());
}
std::vector<AstNode> nodesOf(const std::variant<ModelFile, TSNFunctionFile>& file) {
  return std::visit([](const auto& kind) { return nodesOf(kind); }, file);
}

} // namespace tessarin::compiler::core
