// Who wants to hear of the comments that the lexer drops.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"

#include <memory>

namespace tessarin::compiler::core {

/// Sees the white space and the comments that a lexer drops, in the order of the text.
class TESSARIN_EXPORT MarkupListener {
public:
  MarkupListener() = default;
  virtual ~MarkupListener();

  /// Called in the order of the text for each stretch that is dropped without a token: a comment, a line of a block
  /// comment with its line end, a continuation with its comment and line end, and characters that the language does not
  /// know. Also for stretches of no length, which mark a fault. `lineColumn` is where the stretch begins, from 0.
  virtual void notify(const ustring& text, const nvf::LineColumn& lineColumn) = 0;
  /// A copy. A lexer keeps a copy of the listener that it is given.
  [[nodiscard]] virtual std::unique_ptr<MarkupListener> clone() const = 0;

protected:
  MarkupListener(const MarkupListener&) = default;
  MarkupListener& operator=(const MarkupListener&) = default;
};

} // namespace tessarin::compiler::core
