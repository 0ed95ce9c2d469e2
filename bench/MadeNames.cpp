#include "MadeNames.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <string_view>

namespace tessarin::bench {

namespace {

constexpr std::u16string_view letters = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::u16string_view others = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
constexpr std::size_t blocks = 15; // of three words, each of which is four code units
constexpr std::size_t unitsOfName = blocks * 12;

constexpr std::uint64_t mixed(std::uint64_t state, std::uint64_t word) noexcept {
  state = (state ^ word) * 0x9e3779b97f4a7c15U;
  return state ^ state >> 32U;
}

/// Three words each, which lead from one state to the same other one.
struct Block {
  std::u16string one;
  std::u16string other;
};

std::u16string unitsOf(std::uint64_t word) {
  std::u16string units;
  for (unsigned shift = 0; shift < 64; shift += 16) units.push_back(static_cast<char16_t>(word >> shift));
  return units;
}

/// A unit of a name that is another unit of a name when these bits of it are changed.
std::optional<char16_t> unitThatMayDiffer(std::uint64_t bits) {
  for (const char16_t unit : others) {
    if (others.find(static_cast<char16_t>(unit ^ bits)) != std::u16string_view::npos) return unit;
  }
  return std::nullopt;
}

std::uint64_t wordByChance(std::mt19937_64& random) {
  std::uint64_t word = 0;
  for (unsigned shift = 0; shift < 64; shift += 16) {
    word |= static_cast<std::uint64_t>(letters[random() % letters.size()]) << shift;
  }
  return word;
}

/// Tries many pairs of words for two that lead to states that a third word can make equal; goes on to that state.
std::optional<Block> findBlock(std::uint64_t& state, std::mt19937_64& random) {
  constexpr std::uint64_t reach = 0x007f'007f'007f'007fU; // what a word of a name can change
  struct Tried {
    std::uint64_t state;
    std::uint64_t words[2];
  };
  std::vector<Tried> tried(1U << 20U);
  for (Tried& t : tried) {
    t.state = state;
    for (std::uint64_t& word : t.words) {
      word = wordByChance(random);
      t.state = mixed(t.state, word);
    }
  }
  std::sort(tried.begin(), tried.end(),
            [](const Tried& a, const Tried& b) { return (a.state & ~reach) < (b.state & ~reach); });
  for (std::size_t i = 1; i < tried.size(); ++i) {
    const Tried& a = tried[i - 1];
    const Tried& b = tried[i];
    const std::uint64_t difference = a.state ^ b.state;
    if ((difference & ~reach) != 0 || difference == 0) continue;
    std::uint64_t third = 0;
    bool isWord = true;
    for (unsigned shift = 0; shift < 64; shift += 16) {
      const auto unit = unitThatMayDiffer(difference >> shift & 0x7fU);
      third |= static_cast<std::uint64_t>(unit.value_or(0)) << shift;
      isWord = isWord && unit.has_value();
    }
    if (!isWord) continue;
    state = mixed(a.state, third);
    return Block{unitsOf(a.words[0]) + unitsOf(a.words[1]) + unitsOf(third),
                 unitsOf(b.words[0]) + unitsOf(b.words[1]) + unitsOf(third ^ difference)};
  }
  return std::nullopt;
}

} // namespace

std::vector<std::u16string> namesMadeToCollide(std::size_t count) {
  static const std::vector<Block> made = [] {
    std::mt19937_64 random(1);
    std::uint64_t state = 2 * unitsOfName;
    std::vector<Block> result;
    while (result.size() < blocks) {
      if (std::optional<Block> block = findBlock(state, random)) result.push_back(*std::move(block));
    }
    return result;
  }();
  std::vector<std::u16string> names;
  for (std::size_t i = 0; i < count; ++i) {
    std::u16string name;
    for (std::size_t block = 0; block < blocks; ++block) name += i >> block & 1U ? made[block].other : made[block].one;
    names.push_back(std::move(name));
  }
  return names;
}

std::vector<std::u16string> namesByChance(std::size_t count) {
  std::mt19937_64 random(2);
  std::vector<std::u16string> names(count);
  for (std::u16string& name : names) {
    while (name.size() < unitsOfName) name.push_back(letters[random() % letters.size()]);
  }
  return names;
}

} // namespace tessarin::bench
