#include "tessarin/parser/lex/LexToken.hpp"

#include "tessarin/parser/lex/dump.hpp"

#include <ostream>

namespace tessarin::compiler::core {

char16_t* LexToken::dump(char16_t* buffer) const {
  char16_t* out = putText(buffer, kind_name(kind));
  out = putText(out, u" (");
  out = putNumber(out, length);
  out = putText(out, u") ");
  *out = u'\0';
  return out;
}

std::ostream& operator<<(std::ostream& stream, const LexToken& token) {
  char16_t buffer[LexToken::dumpCapacity];
  const char16_t* end = token.dump(buffer);
  return stream << nvf::ustring_to_local_encoded_string(ustring(static_cast<const char16_t*>(buffer), end))
                << std::endl; // the flush is promised
}

} // namespace tessarin::compiler::core
