// Fragments of the language in strings: one expression, one equation, one branch, and so on.
//
// The grammar knows whole files only. So a fragment is put into a small model named `dummy`, the whole pipeline runs on
// that text, and the piece is taken out of the model. Places in messages and in the pieces are those in that text,
// whose file has no name; the parser warns that the model's name differs from it.
//
// A fragment that does not parse raises one `nvf::MessageException` about the fragment as a whole, without a place, as
// said beside each function. The same message is raised where the text parses and the piece is not there, as for a
// blank fragment. What the builder refuses stays a `nvf::LocationException`, except in the text of a reference.
//
// A fragment can close the model early and go on with text of its own; what the grammar makes of the whole text is the
// result.
//
// The overloads for `std::string` throw a `std::logic_error` where the string is not ASCII. A `ustring` may hold
// anything. All functions may be called from any thread.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/ast/Annotation.hpp"
#include "tessarin/parser/ast/Branch.hpp"
#include "tessarin/parser/ast/Connection.hpp"
#include "tessarin/parser/ast/Declaration.hpp"
#include "tessarin/parser/ast/EqnItem.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"

#include <string>
#include <vector>

namespace tessarin::compiler::core {

// ---- names of base classes: the parser's errors pass as they are ----

/// The dotted name of a base class. Arguments behind it are dropped.
TESSARIN_EXPORT Name str_to_astname(const ustring& text);
/// The same from ASCII text.
TESSARIN_EXPORT Name str_to_astname(const std::string& text);
/// A base class with its arguments.
TESSARIN_EXPORT ClassInitializer str_to_classinitializer(const ustring& text, const ASTBuilder& builder);

// ---- equations and expressions: InvalidExpressionSyntax ----

/// One equation or assertion; two of them on two lines are refused.
TESSARIN_EXPORT EqnItem str_to_asteqnitem(const ustring& text, const ASTBuilder& builder = ASTBuilder());
/// The same from ASCII text.
TESSARIN_EXPORT EqnItem str_to_asteqnitem(const std::string& text, const ASTBuilder& builder = ASTBuilder());
/// One expression. An assertion raises AssertionNotExpression.
TESSARIN_EXPORT Expr str_to_astexpr(const ustring& text, const ASTBuilder& builder = ASTBuilder());
/// The same from ASCII text.
TESSARIN_EXPORT Expr str_to_astexpr(const std::string& text, const ASTBuilder& builder = ASTBuilder());
/// The same from a file named "dummy.tsn", so that there is no warning.
TESSARIN_EXPORT Expr str_to_astexpr_with_dummy_filename(const std::string& text);
/// One expression from each text. The message for a syntax error has all texts with ", " between them.
TESSARIN_EXPORT std::vector<Expr> strs_to_astexprs(const std::vector<ustring>& texts);
/// The same from ASCII text.
TESSARIN_EXPORT std::vector<Expr> strs_to_astexprs(const std::vector<std::string>& texts);
/// The expressions on the lines of one text. A syntax error stays one, and its `location()` counts in this text; what
/// its full message says of the place is left as it is.
TESSARIN_EXPORT std::vector<Expr> str_to_astexprs(const ustring& text);
/// The same from ASCII text.
TESSARIN_EXPORT std::vector<Expr> str_to_astexprs(const std::string& text);

// ---- items of other blocks ----

/// A branch, such as `i : p.i -> *`. InvalidThroughSyntax.
TESSARIN_EXPORT Through str_to_astthrough(const ustring& text, const ASTBuilder& builder = ASTBuilder());
/// The same from ASCII text.
TESSARIN_EXPORT Through str_to_astthrough(const std::string& text);
/// A connection, such as `connect(a, b)`. InvalidConnectionSyntax.
TESSARIN_EXPORT Connection str_to_astconnection(const ustring& text, const ASTBuilder& builder = ASTBuilder());
/// The same from ASCII text.
TESSARIN_EXPORT Connection str_to_astconnection(const std::string& text);
/// A `when` clause. InvalidConnectionSyntax too, intended.
TESSARIN_EXPORT WhenClause str_to_whenclause(const ustring& text, const ASTBuilder& builder = ASTBuilder());
/// The same from ASCII text.
TESSARIN_EXPORT WhenClause str_to_whenclause(const std::string& text);
/// The declaration `id = value`. The parser's errors pass as they are.
TESSARIN_EXPORT IdListValuePair str_to_IdListValuePair(const ustring& id, const ustring& value,
                                                       const ASTBuilder& builder = ASTBuilder());
/// The same from ASCII text.
TESSARIN_EXPORT IdListValuePair str_to_IdListValuePair(const std::string& id, const std::string& value,
                                                       const ASTBuilder& builder = ASTBuilder());
/// The annotation `name = value` of a class. InvalidAnnotationSyntax.
TESSARIN_EXPORT IdentValuePair str_to_ivpair(const ustring& text);
/// The same from ASCII text.
TESSARIN_EXPORT IdentValuePair str_to_ivpair(const std::string& text);
/// The annotation of members, such as `[a, b] : name = value`. InvalidAnnotationSyntax.
TESSARIN_EXPORT MemberAnnotation str_to_annotation(const ustring& text);
/// The same from ASCII text.
TESSARIN_EXPORT MemberAnnotation str_to_annotation(const std::string& text);

// ---- references ----
//
// Indices are numbers or matrices of numbers, and become arrays of unsigned numbers, cut to whole ones. A number that
// is out of range throws `boost::numeric::negative_overflow` or `boost::numeric::positive_overflow`. Every other
// failure, also one of the builder on the text, is the message of the function. The references have empty ranges.

/// A reference to an object, such as `a(1).b(2, [3 4])`. InvalidObjectRefSyntax.
TESSARIN_EXPORT ObjectRef str_to_objectref(const std::string& text);
/// A reference to a value. The subscripts behind the last name, which are the tail, may be any expressions.
/// InvalidValueRefSyntax.
TESSARIN_EXPORT ValueRef str_to_valueref(const std::string& text);
/// A reference to a value, which must have no tail, with a name as its tail; its original variable is `text.tail`.
/// InvalidValueRefSyntax.
TESSARIN_EXPORT ValueRef str_to_valueref(const std::string& text, const std::string& tail);

} // namespace tessarin::compiler::core
