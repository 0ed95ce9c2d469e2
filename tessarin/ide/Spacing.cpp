#include "tessarin/ide/Spacing.hpp"

namespace tessarin::ide {

using compiler::core::Kind;

Role roleOf(Kind kind, bool behindOperand) noexcept {
  switch (kind) {
  case Kind::ID:
  case Kind::DER:
  case Kind::PRE:
  case Kind::ASSERT_:
  case Kind::CONNECT: return Role::Callable;
  case Kind::INT:
  case Kind::FLOAT:
  case Kind::STRING:
  case Kind::STRING_LITERAL:
  case Kind::EEND:
  case Kind::TIME:
  case Kind::QUEST: return Role::Operand;
  case Kind::PLUS:
  case Kind::MINUS: return behindOperand ? Role::Infix : Role::Prefix;
  case Kind::MUL:
  case Kind::COLON: return behindOperand ? Role::Infix : Role::Operand;
  case Kind::NOT:
  case Kind::AT: return Role::Prefix;
  case Kind::TRANS:
  case Kind::DOTTRANS: return Role::Postfix;
  case Kind::DOT: return Role::Tight;
  case Kind::LP:
  case Kind::LB:
  case Kind::LC: return Role::Open;
  case Kind::RP:
  case Kind::RB:
  case Kind::RC: return Role::Close;
  case Kind::COMMA:
  case Kind::SEMI: return Role::Separator;
  case Kind::DIV:
  case Kind::LDIV:
  case Kind::EXP:
  case Kind::DOTMUL:
  case Kind::DOTDIV:
  case Kind::DOTLDIV:
  case Kind::DOTEXP:
  case Kind::AND:
  case Kind::OR:
  case Kind::ANDAND:
  case Kind::OROR:
  case Kind::LT:
  case Kind::GT:
  case Kind::LE:
  case Kind::GE:
  case Kind::EQ:
  case Kind::NE:
  case Kind::EQUALS:
  case Kind::COLONEQUALS:
  case Kind::ARROW: return Role::Infix;
  default: return compiler::core::is_reserved_word(kind) ? Role::Word : Role::Odd;
  }
}

bool endsOperand(const SpacedToken& token) noexcept {
  switch (token.role) {
  case Role::Operand:
  case Role::Callable:
  case Role::Postfix:
  case Role::Close: return true;
  case Role::Word:
    return token.kind == Kind::END || token.kind == Kind::BREAK || token.kind == Kind::RETURN ||
           token.kind == Kind::CONTINUE;
  default: return false;
  }
}

bool beginsOperand(const SpacedToken& token) noexcept {
  switch (token.role) {
  case Role::Operand:
  case Role::Callable: return true;
  case Role::Prefix: return token.kind == Kind::AT || token.kind == Kind::NOT;
  case Role::Open: return token.kind == Kind::LB;
  case Role::Word: return true;
  default: return false;
  }
}

namespace {

/// Whether a bracket stands apart from what is before it: arguments and indices do not.
bool isBlankBeforeOpen(const SpacedToken& left, const SpacedToken& open) noexcept {
  switch (left.role) {
  case Role::Callable:
  case Role::Close: return open.kind == Kind::LB;
  case Role::Operand:
  case Role::Postfix: return open.isApart;
  default: return true;
  }
}

} // namespace

bool isBlankBetween(const SpacedToken& left, const SpacedToken& right) noexcept {
  if (right.isElement) return true;
  if (left.role == Role::Odd || right.role == Role::Odd) return right.isApart;
  if (right.role == Role::Separator || right.role == Role::Close || right.role == Role::EndOfList) return false;
  if (left.role == Role::Open) return false;
  if (left.role == Role::Separator) return true;
  if (left.role == Role::Tight || right.role == Role::Tight || left.role == Role::Prefix) return false;
  if (right.role == Role::Postfix) return false;
  if (left.role == Role::Infix || right.role == Role::Infix) return true;
  if (right.role == Role::Open) return isBlankBeforeOpen(left, right);
  return true;
}

} // namespace tessarin::ide
