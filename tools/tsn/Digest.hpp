// The digest of an expression as text.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"

#include <string>

namespace tessarin::tool {

/// The bytes that the expression feeds into a digest, in hexadecimal, two digits a byte. They do not depend on where
/// the expression stands.
std::string hexDigest(const compiler::core::Expr& expr);

} // namespace tessarin::tool
