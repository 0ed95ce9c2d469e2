#include "tessarin/parser/parse/NonTerminal.hpp"

#include <array>
#include <ostream>

namespace tessarin::compiler::core {

namespace {
constexpr auto names = std::to_array<const char*>({
#define TESSARIN_NONTERMINAL(name) #name,
#include "tessarin/parser/parse/nonterminals.def"
});
} // namespace

const char* NonTerminal::name(Value kind) noexcept {
  return names[static_cast<std::size_t>(kind)];
}

std::ostream& operator<<(std::ostream& stream, NonTerminal::Value kind) {
  if (static_cast<std::size_t>(kind) < names.size()) return stream << NonTerminal::name(kind);
  stream.setstate(std::ios::badbit);
  return stream;
}

} // namespace tessarin::compiler::core
