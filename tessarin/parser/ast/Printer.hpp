// Printing: every text form is appended to one buffer.
#pragma once

#include "tessarin/parser/ast/EqnItem.hpp"
#include "tessarin/parser/ast/ToStringContext.hpp"

#include <string_view>

namespace tessarin::compiler::core {

class AnnotationsBlock;
class BranchBlock;
class ClassInitializer;
class ConditionalSection;
class Connection;
class ConnectionArg;
class ConnectionBlock;
class ConnectionFirstArg;
class DeclarationBlock;
class DeclarationItem;
class DeclarativeSections;
class DefinitionsBlock;
class ElseSection;
class ElseifSection;
class EntryBlock;
class ForLoop;
class IfSection;
class ImportStmt;
class InitialMode;
class InitialSection;
class MemberAnnotation;
class Mode;
class Model;
class Modechart;
class ModechartBlock;
class ModechartDeclaration;
class ModesSection;
class ObjectArrayElementDecl;
class SemanticSections;
class TSNFunction;
class Through;
class ThroughLeaf;
class Transition;
class TransitionsSection;

class Printer {
public:
  explicit Printer(ustring& out) noexcept : out_(out) {}

  void print(const Expr& expr, const ToStringContext& context);
  /// In the default form.
  void print(const Expr& expr);
  void print(const EqnItem& item, const ToStringContext& context);
  void print(const FunctionEqnItem& item, const ToStringContext& context);
  void print(const EqnAssertion& assertion, std::size_t indent);
  void print(const ParenSubs& subs, const ToStringContext& context);
  void print(const Arguments& arguments, const ToStringContext& context);
  void print(const NamedArgument& argument, const ToStringContext& context);
  void print(const IdParenSubs& step, const ToStringContext& context);
  void print(const IdListValuePair& pair, const ToStringContext& context);
  void print(const IdentValuePair& pair);
  void print(const EquationBlock& block, std::size_t indent, std::size_t step);
  void print(const EventBlock& block, std::size_t indent, std::size_t step);
  void print(const WhenClause& clause, std::size_t indent, std::size_t step);
  /// A branch of a clause behind its keyword.
  template <class Branch>
  void print(std::u16string_view keyword, const Branch& branch, std::size_t indent, std::size_t step);

  void print(const ObjectArrayElementDecl& declaration, const ToStringContext& context);
  void print(const DeclarationItem& item, const ToStringContext& context);
  void print(const DeclarationBlock& block, std::size_t indent, std::size_t step);
  void print(const DefinitionsBlock& block, std::size_t indent, std::size_t step);
  void print(const ImportStmt& import, std::size_t indent);
  void print(const ClassInitializer& initializer);
  void print(const MemberAnnotation& annotation, std::size_t indent, std::size_t step);
  void print(const AnnotationsBlock& block, std::size_t indent, std::size_t step);

  void print(const Through& through, const ToStringContext& context);
  void print(const BranchBlock& block, std::size_t indent, std::size_t step);
  void print(const ConnectionFirstArg& argument, const ToStringContext& context);
  void print(const ConnectionArg& argument, const ToStringContext& context);
  void print(const Connection& connection, const ToStringContext& context);
  void print(const ConnectionBlock& block, std::size_t indent, std::size_t step);

  void print(const ModechartBlock& block, std::size_t indent, std::size_t step);
  void print(const ModechartDeclaration& declaration, std::size_t indent, std::size_t step);
  void print(const Modechart& modechart, std::size_t indent, std::size_t step);
  void print(const ModesSection& section, std::size_t indent, std::size_t step);
  void print(const Mode& mode, std::size_t indent, std::size_t step);
  void print(const EntryBlock& block, std::size_t indent, std::size_t step);
  void print(const TransitionsSection& section, std::size_t indent, std::size_t step);
  void print(const Transition& transition, std::size_t indent, std::size_t step);
  void print(const InitialSection& section, std::size_t indent, std::size_t step);
  void print(const InitialMode& mode, std::size_t indent, std::size_t step);

  void print(const SemanticSections& sections, std::size_t indent, std::size_t step);
  void print(const DeclarativeSections& sections, std::size_t indent, std::size_t step);
  void print(const IfSection& section, std::size_t indent, std::size_t step);
  void print(const ElseifSection& section, std::size_t indent, std::size_t step);
  void print(const ElseSection& section, std::size_t indent, std::size_t step);
  void print(const ConditionalSection& section, std::size_t indent, std::size_t step);
  void print(const ForLoop& loop, std::size_t indent, std::size_t step);
  void print(const Model& model, std::size_t indent, std::size_t step);
  void print(const TSNFunction& function, std::size_t indent, std::size_t step);

  /// `(pair, pair)`, or nothing where there are none.
  void printAttributes(const nvf::Expressions<IdentValuePair>& attributes);

  Printer& operator<<(std::u16string_view text) {
    out_ += text;
    return *this;
  }
  Printer& operator<<(const nvf::CxId& id) { return *this << id.view(); }
  Printer& operator<<(const Ident& ident) { return *this << ident.id(); }
  Printer& operator<<(std::size_t number) { return *this << nvf::decimal(number); }
  Printer& blanks(std::size_t count) {
    out_.append(count, u' ');
    return *this;
  }

  /// Calls `printOne` with each element, and writes the separator between them.
  template <class Sequence, class PrintOne>
  void join(const Sequence& sequence, std::u16string_view separator, PrintOne printOne) {
    bool isFirst = true;
    for (const auto& element : sequence) {
      if (!isFirst) *this << separator;
      isFirst = false;
      printOne(element);
    }
  }

  /// Each element as a line of its own, behind which `end` stands.
  template <class Sequence>
  void printLines(const Sequence& sequence, std::size_t indent, std::size_t step, std::u16string_view end = u"\n") {
    for (const auto& element : sequence) {
      print(element, indent, step);
      *this << end;
    }
  }

private:
  friend struct ToStringVisitor;

  void print(const Subscript& subscript, const ToStringContext& context);
  template <class Steps>
  void printPath(const Steps& leadingPath, const Ident& last, const ToStringContext& context);
  void printIndices(const IdParenSubs& step, const ToStringContext& context);
  void printIndices(const IdValueIndices& step, const ToStringContext& context);

  ustring& out_;
};

/// What `function` prints.
template <class Function>
ustring printed(Function function) {
  ustring out;
  Printer printer(out);
  function(printer);
  return out;
}

/// What `Printer::print` prints of the arguments.
template <class... Arguments>
ustring textOf(const Arguments&... arguments) {
  return printed([&](Printer& printer) { printer.print(arguments...); });
}

} // namespace tessarin::compiler::core
