// What the parts of the builder share.
#pragma once

#include "tessarin/foundation/message.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/parser/ast/FromTree.hpp"

namespace tessarin::compiler::core {

/// Raises the message `Msg` of the ast family at a place; these messages do not show the column.
template <class Msg, class... Arguments>
[[noreturn]] void raiseAt(const nvf::Location& location, const Arguments&... arguments) {
  throw nvf::LocatedError<Msg>(location, false, arguments...);
}

/// Reports a tree that the grammar does not yield.
[[noreturn]] inline void fatal(const char* text, int line, const char* signature) {
  nvf::terminate(text, fromTreeSource, line, signature);
}

} // namespace tessarin::compiler::core
