// Rewriting of whole files: what `ast/Rewrite.hpp` offers for a model or a function, for all that a file holds.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/ast/Rewrite.hpp"

#include <variant>

namespace tessarin::compiler::core {

/// Rewrites the model or function and the local functions, in order of name. With a function in place of the visitor it
/// works as well, see Rewrite.hpp. Throws what the visitor throws.
/// @{
TESSARIN_EXPORT ModelFile rewrite(const ModelFile& file, ExprTransformVisitor& visitor);
TESSARIN_EXPORT TSNFunctionFile rewrite(const TSNFunctionFile& file, ExprTransformVisitor& visitor);
TESSARIN_EXPORT std::variant<ModelFile, TSNFunctionFile> rewrite(const std::variant<ModelFile, TSNFunctionFile>& file,
                                                                 ExprTransformVisitor& visitor);
/// @}

/// The file with another model or function; its imports and local functions stay.
/// @{
TESSARIN_EXPORT ModelFile withModel(const ModelFile& file, const Model& model);
TESSARIN_EXPORT TSNFunctionFile withFunction(const TSNFunctionFile& file, const TSNFunction& function);
/// @}

} // namespace tessarin::compiler::core
