#include "tessarin/parser/ast/Ident.hpp"

#include <vector>

namespace tessarin::compiler::core {

namespace {

nvf::Expressions<Ident> withoutPlaces(const nvf::Expressions<nvf::CxId>& ids) {
  std::vector<Ident> idents;
  idents.reserve(ids.size());
  for (const nvf::CxId& id : ids) idents.emplace_back(id, nvf::Range());
  return nvf::Expressions<Ident>(std::move(idents));
}

} // namespace

Ident::Ident(const Token& token) : Ident(nvf::detail::CxIdCheck()(token.text()), token.range()) {}

ustring Ident::string(const ToStringContext&) const {
  return string();
}
ustring Ident::string() const {
  return id().string();
}

const ustring& Tilde::ctor() {
  static const ustring text = u"~";
  return text;
}
ustring Tilde::string() const {
  return ctor();
}

ustring to_string(const OptIdent& ident) {
  return ident.visit([](const auto& alternative) { return alternative.string(); });
}

nvf::Location location(const OptIdent& ident) {
  return ident.visit([](const auto& alternative) { return alternative.location(); });
}

OptIdent to_opt_ident(const Token& token) {
  if (token.text() == Tilde::ctor()) return Tilde(token.range());
  return Ident(token);
}

ustring ImplicitReference::string() const {
  return u"*";
}

Name::Name(const nvf::BasicCxIdPath<0>& path) : Name(withoutPlaces(path.ids())) {}
Name::Name(const std::string& dotted) : Name(withoutPlaces(nvf::detail::parse_ids(dotted.data(), dotted.size()))) {}
Name::Name(const char* dotted) : Name(std::string(dotted)) {}

ustring Name::string() const {
  ustring out;
  for (const Ident& ident : ids()) {
    if (!out.empty()) out += u'.';
    out += ident.id().view();
  }
  return out;
}

nvf::CxIdPath Name::path() const {
  std::vector<nvf::CxId> path;
  path.reserve(ids().size());
  for (const Ident& ident : ids()) path.push_back(ident.id());
  return nvf::CxIdPath(path);
}

nvf::Location Name::location() const {
  return ids().empty() ? nvf::Location() : ids().front().location();
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Ident);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Tilde);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::OptIdent);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ImplicitReference);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Name);
