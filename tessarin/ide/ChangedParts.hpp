// The smallest parts in which two expressions differ. Private to the library.
#pragma once

#include "tessarin/ide/Diff.hpp"
#include "tessarin/parser/ast/Expr.hpp"

#include <vector>

namespace tessarin::ide {

/// Appends the parts of `after` that have taken the place of parts of `before`, from left to right. Where the shapes
/// differ, the part is the whole.
void addChangedParts(std::vector<DiffPart>& parts, const compiler::core::Expr& before,
                     const compiler::core::Expr& after);

} // namespace tessarin::ide
