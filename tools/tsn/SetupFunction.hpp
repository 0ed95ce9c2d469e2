// The setup function of a file, with the diagnostics that the tool knows.
#pragma once

#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/setup/SimpleSetupStmt.hpp"

#include <optional>

namespace tessarin::tool {

/// Of a model the statements of its setup function, the empty list where it has none; of a function nothing. The
/// diagnostics are `error` and `warning`: their last argument is the text, and there may be an id before it. Throws a
/// `nvf::MessageException` for what a setup function cannot hold.
std::optional<compiler::core::SimpleSetupStmt> setupFunctionOf(const compiler::core::TSNFile& file);

} // namespace tessarin::tool
