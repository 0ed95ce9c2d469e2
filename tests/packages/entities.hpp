// Packages built by hand.
#pragma once

#include "tessarin/packages/Directory.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"

#include "ast/builders.hpp"

#include <memory>
#include <utility>
#include <vector>

namespace tessarin::test {

using Entity = std::shared_ptr<core::PackageEntity>;

inline core::TSNFunction function(std::string_view name, std::string_view output = "y") {
  const core::FunctionEqnItem item = declaration(output, number("1"));
  const core::DefinitionsBlock block(nvf::Expressions<core::FunctionEqnItem>{item}, {}, nvf::Location());
  return {ident(name), idents({output}), {}, nvf::Expressions1<core::DefinitionsBlock>{block}, core::FileSource::open};
}
inline core::LocalTSNFunctions functions(std::initializer_list<std::string_view> names) {
  core::LocalTSNFunctions result;
  for (const std::string_view name : names) result.emplace(id(name), function(name));
  return result;
}
inline core::ImportStmt import(const char* name, bool isUnqualified = false) {
  return {core::Name(name), isUnqualified, nvf::Location()};
}
inline core::Model emptyModel(std::string_view name) {
  return {core::ModelType::COMPONENT, ident(name),       std::nullopt,   {}, {},
          core::FileSource::open,     core::ParseTree(), nvf::Location()};
}

inline Entity directory(nvf::ustring name, std::vector<Entity> entities) {
  return std::make_shared<core::Directory>(std::move(name), std::move(entities));
}
inline Entity modelFile(std::string_view name, const std::vector<core::ImportStmt>& imports = {},
                        std::initializer_list<std::string_view> locals = {}) {
  return std::make_shared<core::ModelFile>(emptyModel(name), imports, functions(locals));
}
inline Entity functionFile(std::string_view name, const std::vector<core::ImportStmt>& imports = {},
                           std::initializer_list<std::string_view> locals = {}) {
  return std::make_shared<core::TSNFunctionFile>(function(name), imports, functions(locals));
}

} // namespace tessarin::test
