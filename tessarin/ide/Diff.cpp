#include "tessarin/ide/Diff.hpp"

#include "tessarin/ide/ChangedParts.hpp"
#include "tessarin/ide/DiffItems.hpp"
#include "tessarin/parser/ast/ExprTransformVisitor.hpp"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace tessarin::ide {

using namespace compiler::core;

std::string_view wordFor(ChangeKind kind) noexcept {
  static constexpr std::string_view words[] = {
#define TESSARIN_CHANGE(name, text) text,
#include "tessarin/ide/diff.def"
  };
  return words[static_cast<std::size_t>(kind)];
}

std::string_view wordFor(Element element) noexcept {
  static constexpr std::string_view words[] = {
#define TESSARIN_ELEMENT(name, text) text,
#include "tessarin/ide/diff.def"
  };
  return words[static_cast<std::size_t>(element)];
}

namespace {

/// The names of members that have been renamed, from the old one to the new one.
using Renamings = std::map<nvf::ustring, nvf::ustring>;

/// Gives the leading names of variables their new names, but for locals of a `let`.
class Renamer final : public ExprTransformVisitor {
public:
  explicit Renamer(const Renamings& renamings) noexcept : renamings_(renamings) {}

  using ExprTransformVisitor::operator();
  Expr operator()(const Variable& variable) override {
    const Expr inside = ExprTransformVisitor::operator()(variable);
    const auto* made = inside.getIf<Variable>();
    if (made == nullptr) return inside;
    const nvf::CxId& first = leading_id(*made).id();
    const auto found = renamings_.find(first.string());
    if (found == renamings_.end() || letStack().lookup(first)) return inside;
    const Ident name(nvf::detail::CxIdCheck()(nvf::ustring_view(found->second)), leading_id(*made).range());
    if (made->leadingPath().empty()) return Variable(name, {}, made->tail(), made->range());
    std::vector<IdParenSubs> steps(made->leadingPath().begin(), made->leadingPath().end());
    steps.front() = IdParenSubs(name, steps.front().subs());
    return Variable(made->id(), nvf::Expressions<IdParenSubs>(std::move(steps)), made->tail(), made->range());
  }

private:
  const Renamings& renamings_;
};

/// Whether elements of the kind have names.
bool isNamed(Element element) noexcept {
  switch (element) {
  case Element::Connection:
  case Element::Equation:
  case Element::Assertion:
  case Element::Event: return false;
  default: return true;
  }
}

/// Whether an element that is in another section than before may be the same one.
bool mayMove(Element element) noexcept {
  return element == Element::Member || element == Element::Branch || element == Element::Annotation ||
         !isNamed(element);
}

class Matching {
public:
  explicit Matching(DiffItems items) : items_(std::move(items)) {
    for (std::size_t side = 0; side < 2; ++side) {
      for (std::size_t i = 0; i < items_.sides[side].size(); ++i) open_[side].push_back(i);
    }
  }

  std::vector<Change> run() {
    const auto digest = [](const DiffItem& item) { return digestOf(item); };
    const auto any = [](const DiffItem&) { return true; };
    // What is equal where it is; what has its name and its section; what has gone to another section.
    match([&](const DiffItem& item) { return key(item, true, true) + digest(item); }, any, equal);
    match([](const DiffItem& item) { return key(item, true, true); }, named, pairOf);
    match([](const DiffItem& item) { return key(item, true, false); }, named, pairOf);
    match([&](const DiffItem& item) { return key(item, false, false) + digest(item); }, movable, pairOf);
    match([](const DiffItem& item) { return key(item, false, false); }, namedAndMovable, pairOf);
    findRenamings();
    // Of an equation one side has stayed, or of an assertion the message.
    for (const std::size_t operand : {std::size_t{0}, std::size_t{1}}) {
      match([operand](const DiffItem& item) { return key(item, true, false) + sideOf(item, operand); }, unnamed,
            pairOf);
    }
    for (const auto& [a, b] : pairs_) addPair(before(a), after(b));
    for (const std::size_t i : open_[0]) add(ChangeKind::Removed, &before(i), nullptr);
    for (const std::size_t i : open_[1]) add(ChangeKind::Added, nullptr, &after(i));
    std::stable_sort(changes_.begin(), changes_.end(),
                     [](const Change& a, const Change& b) { return orderOf(a) < orderOf(b); });
    return std::move(changes_);
  }

private:
  DiffItem& before(std::size_t i) { return items_.sides[0][i]; }
  DiffItem& after(std::size_t i) { return items_.sides[1][i]; }

  static constexpr auto named = [](const DiffItem& item) { return isNamed(item.element); };
  static constexpr auto unnamed = [](const DiffItem& item) { return !isNamed(item.element); };
  static constexpr auto movable = [](const DiffItem& item) { return mayMove(item.element); };
  static constexpr auto namedAndMovable = [](const DiffItem& item) {
    return isNamed(item.element) && mayMove(item.element);
  };
  static constexpr bool equal = false;
  static constexpr bool pairOf = true;

  static std::string digestOf(const DiffItem& item) {
    std::string bytes = item.frame;
    for (const Expr& expr : item.exprs) bytes += '\0' + bytesOf(expr);
    return bytes;
  }
  static std::string key(const DiffItem& item, bool withSection, bool withHome) {
    std::string out = std::to_string(static_cast<int>(item.element)) + '/';
    if (withSection) out += std::to_string(item.section);
    out += '/' + nvf::encode_utf8(item.name()) + '\0';
    if (withHome) out += nvf::encode_utf8(item.home) + '\0';
    return out;
  }
  /// What stands on one side of an equation, or the first or the other expressions of what is none.
  static std::string sideOf(const DiffItem& item, std::size_t operand) {
    if (item.element == Element::Equation) {
      const auto* op = item.exprs.front().getIf<OpExpr>();
      if (op == nullptr || op->numOfOperands() < 2) return "whole" + bytesOf(item.exprs.front());
      return std::to_string(static_cast<int>(op->opType())) + bytesOf(op->operandAt(operand));
    }
    if (item.element == Element::Connection) {
      if (item.exprs.empty()) return "none";
      return bytesOf(operand == 0 ? item.exprs.front() : item.exprs.back());
    }
    return operand == 0 ? bytesOf(item.exprs.front()) : item.frame;
  }

  /// Pairs what is open on both sides and has equal keys, in order.
  template <class Key, class Filter>
  void match(Key keyOf, Filter filter, bool isDifferent) {
    if (open_[0].empty() || open_[1].empty()) return;
    std::map<std::string, std::vector<std::size_t>> byKey;
    for (auto i = open_[0].rbegin(); i != open_[0].rend(); ++i) {
      if (filter(before(*i))) byKey[keyOf(before(*i))].push_back(*i);
    }
    std::vector<bool> isMatched(items_.sides[0].size());
    std::erase_if(open_[1], [&](std::size_t b) {
      if (!filter(after(b))) return false;
      const auto found = byKey.find(keyOf(after(b)));
      if (found == byKey.end() || found->second.empty()) return false;
      const std::size_t a = found->second.back();
      found->second.pop_back();
      isMatched[a] = true;
      if (isDifferent) pairs_.emplace_back(a, b);
      return true;
    });
    std::erase_if(open_[0], [&](std::size_t a) { return isMatched[a]; });
  }

  // ---- renaming ----

  /// A member that is gone and one that is new, equal but for the name, are one member if there is one such on each
  /// side. What differs in nothing but such names is no difference.
  void findRenamings() {
    struct Candidates {
      std::vector<std::size_t> sides[2];
    };
    std::map<std::string, Candidates> byContent;
    for (const std::size_t side : {std::size_t{0}, std::size_t{1}}) {
      for (const std::size_t i : open_[side]) {
        const DiffItem& item = items_.sides[side][i];
        const bool isMember = item.element == Element::Member && !item.subject.empty();
        const bool isFunction = item.element == Element::Function;
        if (!isMember && !isFunction) continue;
        DiffItem nameless = item;
        nameless.subject.clear();
        nameless.suffix.clear();
        byContent[key(nameless, true, true) + digestOf(item)].sides[side].push_back(i);
      }
    }
    Renamings renamings;
    for (const auto& [content, candidates] : byContent) {
      if (candidates.sides[0].size() != 1 || candidates.sides[1].size() != 1) continue;
      const std::size_t a = candidates.sides[0].front();
      const std::size_t b = candidates.sides[1].front();
      std::erase(open_[0], a);
      std::erase(open_[1], b);
      renamings[before(a).name()] = after(b).name();
      add(ChangeKind::Renamed, &before(a), &after(b));
    }
    if (!renamings.empty()) applyRenamings(renamings);
  }

  void applyRenamings(const Renamings& renamings) {
    Renamer renamer(renamings);
    const auto rename = [&](DiffItem& item) {
      for (Expr& expr : item.exprs) expr = renamer.process(expr);
      const auto found = renamings.find(item.subject);
      if (found != renamings.end()) item.subject = found->second;
    };
    for (const auto& [a, b] : pairs_) rename(before(a));
    for (const std::size_t a : open_[0]) rename(before(a));
    std::erase_if(pairs_, [&](const auto& pair) {
      return key(before(pair.first), true, true) + digestOf(before(pair.first)) ==
             key(after(pair.second), true, true) + digestOf(after(pair.second));
    });
    const auto any = [](const DiffItem&) { return true; };
    match([](const DiffItem& item) { return key(item, true, true) + digestOf(item); }, any, equal);
    match([](const DiffItem& item) { return key(item, true, true); }, named, pairOf);
  }

  // ---- what is told ----

  void addPair(const DiffItem& a, const DiffItem& b) {
    const bool isChanged = digestOf(a) != digestOf(b);
    add(isChanged ? ChangeKind::Changed : ChangeKind::Moved, &a, &b);
    if (!isChanged || a.exprs.size() != b.exprs.size()) return;
    for (std::size_t i = 0; i < a.exprs.size(); ++i) {
      addChangedParts(changes_.back().parts, a.exprs[i], b.exprs[i]);
    }
  }

  void add(ChangeKind kind, const DiffItem* a, const DiffItem* b) {
    Change& change = changes_.emplace_back();
    change.kind = kind;
    change.element = a != nullptr ? a->element : b->element;
    if (a != nullptr) change.before = tell(*a, 0);
    if (b != nullptr) change.after = tell(*b, 1);
  }
  DiffSide tell(const DiffItem& item, std::size_t side) const {
    DiffSide out;
    out.name = item.name();
    out.text = item.text();
    out.begin = item.begin;
    out.where = item.home;
    // A condition and a loop are told where they stand, and not inside themselves.
    const bool isHead = item.element == Element::Condition || item.element == Element::Loop;
    Index section = isHead ? items_.sections[item.section].parent : item.section;
    for (int depth = 0; section != 0; section = items_.sections[section].parent) {
      const bool isTooFar = ++depth > maxDepthTold;
      const nvf::ustring label = isTooFar ? nvf::ustring(u"...") : items_.sections[section].labels[side];
      out.where = out.where.empty() ? label : label + u" / " + out.where;
      if (isTooFar) break;
    }
    return out;
  }
  static constexpr int maxDepthTold = 8; // what is told of a change stays short however deep sections nest
  static std::tuple<bool, nvf::LineColumn> orderOf(const Change& change) {
    return {change.element == Element::Annotation, change.after ? change.after->begin : change.before->begin};
  }

  DiffItems items_;
  std::vector<std::size_t> open_[2]; // what has found no partner, in order
  std::vector<std::pair<std::size_t, std::size_t>> pairs_;
  std::vector<Change> changes_;
};

} // namespace

std::vector<Change> diff(const TSNFile& before, const TSNFile& after) {
  return Matching(takeApart(before, after)).run();
}

} // namespace tessarin::ide
