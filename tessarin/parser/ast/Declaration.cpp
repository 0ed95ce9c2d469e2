#include "tessarin/parser/ast/Declaration.hpp"

#include "tessarin/parser/ast/Printer.hpp"

namespace tessarin::compiler::core {

// ---- lists of identifiers ----

namespace {

template <class T>
nvf::Expressions<T> withElement(const nvf::Expressions<T>& list, std::size_t index, const T& element) {
  std::vector<T> elements(list.begin(), list.end());
  if (index < elements.size()) elements[index] = element;
  return nvf::Expressions<T>(std::move(elements));
}

} // namespace

nvf::Expressions<OptIdent> replace_element(const nvf::Expressions<OptIdent>& list, std::size_t index,
                                           const OptIdent& element) {
  return withElement(list, index, element);
}
nvf::Expressions<IdListValuePair> replace_element(const nvf::Expressions<IdListValuePair>& list, std::size_t index,
                                                  const IdListValuePair& element) {
  return withElement(list, index, element);
}

void opt_ident_vector_handler(const nvf::Expressions<OptIdent>& ids,
                              const std::function<void(const Ident&, unsigned long)>& function) {
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (const Ident* ident = ids[i].getIf<Ident>()) function(*ident, i);
  }
}

// ---- items ----

nvf::Location location(const DeclarationItem& item) {
  return item.visit([](const auto& alternative) -> nvf::Location { return alternative.location(); });
}

const IdListValuePair& id_list_value(const DeclarationItem& item) {
  return item.get<IdListValuePair>();
}

// ---- blocks ----

ustring DeclarationBlock::typeString(MemberType::Value type) {
  static constexpr Kind openings[] = {
#define TESSARIN_MEMBER_TYPE(number, name, opening, text, function) Kind::opening,
#include "tessarin/parser/lex/member_types.def"
  };
  return ustring(kind_image(openings[type]));
}

ustring dump_text(MemberType::Value type) {
  const bool isType = type >= MemberType::VARIABLE && type <= MemberType::INTERMEDIATE;
  return nvf::widen(isType ? MemberType::name(type) : std::to_string(static_cast<int>(type)));
}

MemberType::Value DeclarationBlock::declarationType(TokenId::Value token) {
  return TokenId::memberType(token);
}

bool operator<(const DeclarationBlock& a, const DeclarationBlock& b) {
  return a.type() < b.type() && compare(a.attributes(), b.attributes()) == Ordering::Less &&
         compare(a.declarations(), b.declarations()) == Ordering::Less;
}

// ---- printing ----

namespace {

struct ItemPrinter {
  Printer& printer;
  const ToStringContext& context;
  void operator()(const Ident& ident) const { printer << ident; }
  void operator()(const IdListValuePair& pair) const { printer.print(pair, context); }
  void operator()(const ObjectArrayElementDecl& declaration) const { printer.print(declaration, context); }
};

} // namespace

void Printer::print(const ObjectArrayElementDecl& declaration, const ToStringContext& context) {
  *this << declaration.LHS().string() << u" = ";
  print(declaration.RHS(), context.rvalue());
}

void Printer::print(const DeclarationItem& item, const ToStringContext& context) {
  item.visit(ItemPrinter{*this, context});
}

void Printer::print(const DeclarationBlock& block, std::size_t indent, std::size_t step) {
  const ToStringContext context;
  blanks(indent) << DeclarationBlock::typeString(block.type());
  printAttributes(block.attributes());
  *this << u"\n";
  for (const DeclarationItem& item : block.declarations()) {
    blanks(indent + step);
    print(item, context);
    *this << u";\n";
  }
  blanks(indent) << u"end";
}

void Printer::print(const DefinitionsBlock& block, std::size_t indent, std::size_t /*step*/) {
  // The blanks before both line ends, the items at twice the indent and without ";": all intended.
  const ToStringContext context;
  blanks(indent) << u"definitions ";
  printAttributes(block.attributes());
  *this << u"\n";
  for (const FunctionEqnItem& item : block.eqnItems()) {
    blanks(2 * indent);
    print(item, context);
    *this << u"\n";
  }
  blanks(indent) << u"end \n";
}

void Printer::print(const ImportStmt& import, std::size_t indent) {
  blanks(indent) << u"import " << import.importName().string();
  if (import.isUnqualified()) *this << u".*";
}

void Printer::print(const ClassInitializer& initializer) {
  *this << initializer.name().string();
  if (initializer.args().empty()) return;
  const ToStringContext context;
  *this << u"(";
  join(initializer.args(), u", ", [&](const NamedArgument& argument) { print(argument, context); });
  *this << u")";
}

ustring to_string(const DeclarationItem& item, const ToStringContext& context) {
  return textOf(item, context);
}
ustring ObjectArrayElementDecl::string(const ToStringContext& context) const {
  return textOf(*this, context);
}
ustring DeclarationBlock::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring DefinitionsBlock::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring ImportStmt::string(std::size_t indent) const {
  return textOf(*this, indent);
}
ustring ClassInitializer::string() const {
  return textOf(*this);
}

} // namespace tessarin::compiler::core

template <>
std::size_t nvf::Operations<tessarin::compiler::core::DeclarationBlock>::hash(
    const tessarin::compiler::core::DeclarationBlock& block) {
  std::size_t hash = block.cachedHash();
  if (hash != 0) return hash;
  hash = hash_combine(hash, static_cast<std::size_t>(block.type()));
  for (const auto& attribute : block.attributes()) {
    hash = hash_combine(hash, hash_value(attribute.ident().id()));
    hash = hash_combine(hash, hash_value(attribute.value()));
  }
  for (const auto& item : block.declarations()) hash = hash_combine(hash, hash_value(item));
  block.cacheHash(hash);
  return hash;
}

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ObjectArrayElementDecl);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::DeclarationItem);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::DeclarationBlock);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ImportStmt);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ClassInitializer);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::DefinitionsBlock);
