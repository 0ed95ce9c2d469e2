// From the parse tree of a setup function to its value.
//
// A setup function is parsed by the grammar of all statements, which accepts much that it may not hold: loops, command
// lines, functions with several results. What is left are assignments to dotted names, calls of diagnostic functions
// that the caller knows, and `if`. Anything else raises a message of the setup family.
//
// These messages have no arguments and no place of their own. The place is the first entry of the exception's stack:
// the file and the line, from 0, of the innermost statement or expression that is refused.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"
#include "tessarin/parser/setup/SimpleSetupStmt.hpp"

#include <functional>
#include <optional>
#include <variant>
#include <vector>

namespace tessarin::compiler::core {

/// An expression of the statement language as one of the declarative language; nothing where it holds a form that has
/// no place in a setup function, such as a string, an imaginary number, a cell array or a function handle.
TESSARIN_EXPORT std::optional<Expr> to_setup_expr(const ParseTree& tree);

/// What a call of a diagnostic function becomes.
using SetupDiagnostic = std::variant<SimpleSetupErrorStmt, SimpleSetupWarningStmt>;
/// Makes the statement for a call: from its arguments, which are texts without their quotes and with doubled quotes
/// reduced, and its range. It may refuse them with a `nvf::MessageException`; the place of the call is added to it.
using SetupDiagnosticFunction = std::function<SetupDiagnostic(const std::vector<ustring>&, const nvf::Range&)>;
/// The diagnostic function of a name, or nothing where the caller knows none. Like these functions it must not be
/// empty.
using SetupDiagnosticLookup = std::function<std::optional<SetupDiagnosticFunction>(const nvf::CxId&)>;

/// The setup function whose tree `Model::setupFunctionParseTree()` keeps; the empty list where there is none, that is,
/// for an empty tree. Lists do not hold lists, and a list of one statement is that statement. Throws a
/// `nvf::MessageException` for the first statement that has no place in a setup function, and passes on what
/// `diagnostics` throws.
TESSARIN_EXPORT SimpleSetupStmt to_simple_setup_stmt(const ParseTree& tree, const SetupDiagnosticLookup& diagnostics);

} // namespace tessarin::compiler::core
