// Printing: every text form is appended to one buffer.
#pragma once

#include "tessarin/parser/ast/EqnItem.hpp"
#include "tessarin/parser/ast/ToStringContext.hpp"

#include <string_view>

namespace tessarin::compiler::core {

class Printer {
public:
  explicit Printer(ustring& out) noexcept : out_(out) {}

  void print(const Expr& expr, const ToStringContext& context);
  void print(const EqnItem& item, const ToStringContext& context);
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

private:
  friend struct KindPrinter;

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

} // namespace tessarin::compiler::core
