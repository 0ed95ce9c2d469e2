// The expressions that are written as a name. Private to the builder.
#pragma once

#include "tessarin/parser/builder/TreeBuilder.hpp"

namespace tessarin::compiler::core {

/// What a node of kind `Subsref` is: the form of the reserved name that it begins with, or else a variable.
Expr buildReference(const TreeBuilder& builder, NodeView tree);

} // namespace tessarin::compiler::core
