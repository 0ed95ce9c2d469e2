// Printing: every text form is appended to one buffer, which a stream can take over on the way.
#pragma once

#include "tessarin/foundation/text_limit.hpp"
#include "tessarin/parser/ast/EqnItem.hpp"
#include "tessarin/parser/ast/ToStringContext.hpp"

#include <iosfwd>
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
  /// To a buffer. Printing throws `nvf::TextTooLong` where the text grows over the limit of the thread.
  explicit Printer(ustring& out) noexcept : out_(out), checkAt_(limit_) {}
  /// To a stream, in UTF-8, a block at a time; `rest` writes the last one. `buffer` holds what is not written yet.
  Printer(ustring& buffer, std::ostream& stream) noexcept;
  void rest();

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
    return grown();
  }
  Printer& operator<<(const nvf::CxId& id) { return *this << id.view(); }
  Printer& operator<<(const Ident& ident) { return *this << ident.id(); }
  Printer& operator<<(std::size_t number) { return *this << nvf::decimal(number); }
  /// What appends itself to a string.
  template <class Literal>
  Printer& append(const Literal& literal) {
    literal.append(out_);
    return grown();
  }
  Printer& blanks(std::size_t count) {
    out_.append(count, u' ');
    return grown();
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

  Printer& grown() {
    if (out_.size() > checkAt_) [[unlikely]]
      check();
    return *this;
  }
  /// Looks at the limit, and passes a full block on.
  void check();
  void write(std::size_t length);

  ustring& out_;
  std::ostream* stream_ = nullptr;
  std::size_t written_ = 0; // of the text, to the stream
  std::size_t limit_ = nvf::ScopedTextLimit::current();
  std::size_t checkAt_; // the size of the buffer that `check` is called behind
};

/// What `function` prints.
template <class Function>
ustring printed(Function function) {
  ustring out;
  Printer printer(out);
  function(printer);
  return out;
}

/// Writes what `function` prints to a stream as it goes, in memory that does not grow with the text.
template <class Function>
std::ostream& printTo(std::ostream& stream, Function function) {
  ustring buffer;
  Printer printer(buffer, stream);
  function(printer);
  printer.rest();
  return stream;
}

/// What `Printer::print` prints of the arguments.
template <class... Arguments>
ustring textOf(const Arguments&... arguments) {
  return printed([&](Printer& printer) { printer.print(arguments...); });
}

} // namespace tessarin::compiler::core
