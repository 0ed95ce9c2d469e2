// The expressions of a setup function, off the flat tree. Private to the conversion.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"
#include "tessarin/parser/parse/FlatTree.hpp"

#include <optional>

namespace tessarin::compiler::core {

/// As `to_setup_expr`.
std::optional<Expr> convertSetupExpr(NodeView tree);

} // namespace tessarin::compiler::core
