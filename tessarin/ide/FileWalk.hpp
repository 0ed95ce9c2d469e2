// What a whole file holds, in one fixed order.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"

namespace tessarin::ide {

/// Sees what `walk` comes by. Each member does nothing unless it is overridden.
class TESSARIN_EXPORT FileVisitor {
public:
  FileVisitor() = default;
  FileVisitor(const FileVisitor&) = delete;
  FileVisitor& operator=(const FileVisitor&) = delete;
  virtual ~FileVisitor();
  /// An expression that stands in no other one: a value, an equation, a predicate, a reference.
  virtual void expression(const compiler::core::Expr&) {}
  /// An item of an equations block, before its expressions.
  virtual void equation(const compiler::core::EqnItem&) {}
  /// A block of declarations, before its expressions.
  virtual void declarations(const compiler::core::DeclarationBlock&) {}
  /// A modechart with its name, before its expressions.
  virtual void modechart(const compiler::core::ModechartDeclaration&) {}
};

/// Shows a file to the visitor. First comes the model: its attributes, the arguments of its base class, each with its
/// name before its value, and its sections, kind by kind as they are stored; or else the function. The local functions
/// come last, in order of name. The attributes of a block come before what it holds, the annotations of a list of
/// sections behind the rest of it. What the visitor throws passes through. Safe from any thread.
TESSARIN_EXPORT void walk(const compiler::core::TSNFile& file, FileVisitor& visitor);

} // namespace tessarin::ide
