// A text through the stages of the library, with the choices that all fronts share.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/warning.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/setup/SimpleSetupStmt.hpp"

#include <optional>

namespace tessarin::ide {

/// Takes a text through all stages up to the syntax tree; values are read back as values, so that a printed file prints
/// the same again. Throws the first fault; warnings go to `nvf::Warning::get()`. Safe from any thread.
TESSARIN_EXPORT compiler::core::TSNFile buildFile(const nvf::SourceBuffer& source);
/// The same, and gives the warnings of the family `check` to `silent`: they are about what the library takes without a
/// word for something else than it looks like. An empty sink is given nothing.
TESSARIN_EXPORT compiler::core::TSNFile buildFile(const nvf::SourceBuffer& source, const nvf::WarningSink& silent);

/// Of a model the statements of its setup function, the empty list where it has none; of a function nothing. The
/// diagnostics are `error` and `warning`: their last argument is the text, and there may be an id before it. Throws a
/// `nvf::MessageException` for what a setup function cannot hold. Safe from any thread.
TESSARIN_EXPORT std::optional<compiler::core::SimpleSetupStmt> setupFunctionOf(const compiler::core::TSNFile& file);

} // namespace tessarin::ide
