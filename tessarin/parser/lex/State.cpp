#include "tessarin/parser/lex/State.hpp"

#include "tessarin/parser/lex/dump.hpp"

#include <tuple>

namespace tessarin::compiler::core {

namespace {

constexpr ustring_view cStateNames[] = {u"AT_BEGINNING", u"IN_FILE", u"IN_MODEL", u"IN_METHOD"};
constexpr ustring_view lStateNames[] = {u"BEGIN_STMT", u"DUAL_ARG", u"SAW_INDXNM", u"SAW_EXPR",
                                        u"SAW_OPER",   u"SAW_AT",   u"SAW_EQUALS", u"NORES"};
constexpr ustring_view listStateNames[] = {u"NO_LS", u"F_LS", u"V_LS"};

struct FlagLabel {
  State::Flag flag;
  ustring_view label;
};

/// In the order in which the dump shows them.
constexpr FlagLabel flagLabels[] = {{State::afterAtParen, u" @"},
                                    {State::continued, u" ..."},
                                    {State::inList, u" list"},
                                    {State::atLineStart, u" begin"},
                                    {State::sawEnds, u" ENDs"}};

constexpr std::uint8_t allFlags =
    State::afterAtParen | State::continued | State::inList | State::sawEnds | State::atLineStart;

auto fields(const State& s) {
  return std::tuple(s.cState, s.lState, s.indent, s.inFunction, s.parenDepth, s.commentDepth, s.listState,
                    s.flags & allFlags, s.bracketStack);
}

} // namespace

ustring_view State::cStateName(CState state) noexcept {
  return cStateNames[static_cast<std::size_t>(state)];
}

ustring_view State::lStateName(LState state) noexcept {
  return lStateNames[static_cast<std::size_t>(state)];
}

ustring_view State::listStateName(ListState state) noexcept {
  return listStateNames[static_cast<std::size_t>(state)];
}

char16_t* State::dump(char16_t* buffer) const {
  char16_t* out = putText(buffer, lStateName(lState));
  out = putText(out, u" ");
  out = putText(out, cStateName(cState));
  for (const auto& [flag, label] : flagLabels) {
    if (has(flag)) out = putText(out, label);
  }
  if (listState != ListState::NO_LS) out = putText(out, listStateName(listState));
  if (inFunction != 0)
    out = putNumber(putText(out, u" InFun=0x"), inFunction); // decimal in spite of the label: intended
  if (parenDepth != 0) {
    out = putNumber(putText(out, u" (="), parenDepth);
    out = putHex(putText(out, u" Stk=0x"), bracketStack);
  }
  out = putNumber(putText(out, u" Com="), commentDepth);
  out = putNumber(putText(out, u" Indent="), indent);
  *out = u'\0';
  return out;
}

bool sameState(const State& a, const State& b) noexcept {
  return fields(a) == fields(b);
}

// Intended: the sense is the opposite of the usual one.
bool operator==(const State& a, const State& b) noexcept {
  return !sameState(a, b);
}

} // namespace tessarin::compiler::core
