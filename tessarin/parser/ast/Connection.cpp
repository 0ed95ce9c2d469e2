#include "tessarin/parser/ast/Connection.hpp"

#include "tessarin/parser/ast/Printer.hpp"

#include <ostream>

namespace tessarin::compiler::core {

// ---- places ----

namespace {

nvf::Range rangeOf(const Expr& expr) {
  return expr_range(expr);
}
template <class Reference>
nvf::Range rangeOf(const Reference& reference) {
  return reference.range();
}

} // namespace

nvf::Range connectionFirstArg_range(const ConnectionFirstArg& argument) {
  return argument.visit([](const auto& alternative) { return rangeOf(alternative); });
}
nvf::Location connectionFirstArg_location(const ConnectionFirstArg& argument) {
  return connectionFirstArg_range(argument).begin();
}
std::size_t connectionFirstArg_line(const ConnectionFirstArg& argument) {
  return connectionFirstArg_location(argument).lineColumn().line();
}

nvf::Range connection_arg_range(const ConnectionArg& argument) {
  return argument.visit([](const auto& alternative) { return rangeOf(alternative); });
}
nvf::Location connection_arg_location(const ConnectionArg& argument) {
  return connection_arg_range(argument).begin();
}

// ---- printing ----

namespace {

struct ArgumentPrinter {
  Printer& printer;
  const ToStringContext& context;
  void operator()(const ImplicitReference& reference) const {
    printer << context.leadingIndentStr() << reference.string();
  }
  void operator()(const Expr& expr) const { printer.print(expr, context); }
};

} // namespace

void Printer::print(const ConnectionFirstArg& argument, const ToStringContext& context) {
  argument.visit(ArgumentPrinter{*this, context});
}

void Printer::print(const ConnectionArg& argument, const ToStringContext& context) {
  argument.visit(ArgumentPrinter{*this, context});
}

void Printer::print(const Connection& connection, const ToStringContext& context) {
  *this << u"connect(";
  print(connection.firstArg(), context);
  for (const ConnectionArg& argument : connection.remainingArguments()) {
    *this << u",";
    print(argument, context);
  }
  *this << u")";
}

void Printer::print(const ConnectionBlock& block, std::size_t indent, std::size_t step) {
  const ToStringContext context;
  blanks(indent) << u"connections\n";
  for (const Connection& connection : block.connections()) {
    blanks(indent + step);
    print(connection, context);
    *this << u";\n";
  }
  blanks(indent) << u"end";
}

ustring to_string(const ConnectionFirstArg& argument, const ToStringContext& context) {
  return textOf(argument, context);
}
std::ostream& operator<<(std::ostream& stream, const ConnectionFirstArg& argument) {
  return stream << nvf::ustring_to_local_encoded_string(to_string(argument, ToStringContext()));
}
ustring to_string(const ConnectionArg& argument, const ToStringContext& context) {
  return textOf(argument, context);
}
std::ostream& operator<<(std::ostream& stream, const ConnectionArg& argument) {
  return stream << nvf::ustring_to_local_encoded_string(to_string(argument, ToStringContext()));
}
ustring Connection::string(const ToStringContext& context) const {
  return textOf(*this, context);
}
ustring ConnectionBlock::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ConnectionFirstArg);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ConnectionArg);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Connection);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ConnectionBlock);
