#include "tessarin/ide/BlockStack.hpp"

#include <algorithm>

namespace tessarin::ide {

using compiler::core::Kind;

BlockRole BlockStack::roleOf(Kind kind_) const noexcept {
  switch (kind_) {
  case Kind::FUNCTION:
  case Kind::NESTED:
  case Kind::DDOMAIN:
  case Kind::COMPONENT:
  case Kind::PARAMETERS:
  case Kind::VARIABLES:
  case Kind::NODES:
  case Kind::INPUTS:
  case Kind::OUTPUTS:
  case Kind::COMPONENTS:
  case Kind::DEFINITIONS:
  case Kind::MODECHARTS:
  case Kind::MODES:
  case Kind::TRANSITIONS:
  case Kind::THROUGHS:
  case Kind::BRANCHES:
  case Kind::CONNECTIONS:
  case Kind::EQUATIONS:
  case Kind::EQUATION:
  case Kind::EVENTS:
  case Kind::ANNOTATIONS:
  case Kind::INTERMEDIATES: return BlockRole::Section;
  case Kind::MODE: return kind() == Kind::MODES ? BlockRole::Section : BlockRole::None;
  case Kind::ENTRY: return kind() == Kind::MODE ? BlockRole::Section : BlockRole::None;
  case Kind::INITIAL: return kind() == Kind::MODECHART ? BlockRole::Section : BlockRole::None;
  case Kind::IF:
  case Kind::SWITCH:
  case Kind::TRY:
  case Kind::WHILE:
  case Kind::FOR:
  case Kind::WHEN:
  case Kind::LET:
  case Kind::MODECHART: return BlockRole::Statement;
  case Kind::ELSE:
  case Kind::ELSEIF:
  case Kind::ELSEWHEN:
  case Kind::IN:
  case Kind::CATCH:
  case Kind::CASE:
  case Kind::OTHERWISE: return BlockRole::Middle;
  case Kind::END: return BlockRole::End;
  default: return BlockRole::None;
  }
}

bool BlockStack::standsAlone(Kind kind) noexcept {
  return kind == Kind::LET || kind == Kind::ELSE || kind == Kind::OTHERWISE || kind == Kind::IN || kind == Kind::TRY ||
         kind == Kind::MODECHART;
}

void BlockStack::setBase(std::size_t serial, std::size_t base) noexcept {
  // Serial numbers rise from the bottom to the top.
  const auto block = std::lower_bound(blocks_.begin(), blocks_.end(), serial,
                                      [](const OpenBlock& open, std::size_t number) { return open.serial < number; });
  if (block != blocks_.end() && block->serial == serial) block->base = base;
}

std::size_t BlockStack::indentOf(BlockRole role, Kind kind_, std::size_t step) const noexcept {
  if (blocks_.empty()) return 0;
  const OpenBlock& block = blocks_.back();
  const bool isCase = kind_ == Kind::CASE || kind_ == Kind::OTHERWISE;
  if (role == BlockRole::Middle) return block.base + (isCase ? step : 0);
  if (role == BlockRole::End) return block.base;
  return block.base + (block.hasCases ? 2 * step : step);
}

} // namespace tessarin::ide
