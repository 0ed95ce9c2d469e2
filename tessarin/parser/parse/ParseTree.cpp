#include "tessarin/parser/parse/ParseTree.hpp"

#include "tessarin/foundation/stack.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/parser/parse/NodePool.hpp"
#include "tessarin/parser/parse/ParseTreeBuilder.hpp"

#include <algorithm>
#include <limits>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace tessarin::compiler::core {

// All recursion over a tree passes through an operation of `NonTerminalData`, and each of them looks at the stack
// first.
using nvf::with_stack;

ParseTreeVisitor::~ParseTreeVisitor() = default;
ParseTreeData::~ParseTreeData() = default;

// ---- leaves ----

TerminalData::~TerminalData() = default;

void TerminalData::operator delete(TerminalData* node, std::destroying_delete_t) noexcept {
  const NodePool::Slot slot = node->slot_;
  node->~TerminalData();
  NodePool::release(node, slot);
}

TerminalData* TerminalData::make(const Token& token, NodePool* pool) {
  const NodePool::Piece piece = NodePool::allocate(pool, sizeof(TerminalData));
  return ::new (piece.memory) TerminalData(token, piece.slot);
}

namespace {
constexpr const char* terminalSource = "parser/parse/TerminalData";

// The token's operations, which the members of the same names would hide.
std::size_t hashOf(const Token& token) {
  return hash_value(token);
}
void digest(DigestSink& sink, const Token& token) {
  incorporate_data(sink, token);
}
void strip(Token& token) {
  strip_annotation_inplace(token);
}
Ordering order(const Token& a, const Token& b) {
  return compare(a, b);
}
} // namespace

NonTerminal::Value TerminalData::code() const {
  nvf::terminate(
      "terminal", terminalSource, 29,
      "virtual tessarin::compiler::core::NonTerminal::Value tessarin::compiler::core::TerminalData::code() const");
}
std::size_t TerminalData::count() const {
  nvf::terminate("terminal", terminalSource, 35,
                 "virtual size_t tessarin::compiler::core::TerminalData::count() const");
}
const ParseTree& TerminalData::child(std::size_t) const {
  nvf::terminate(
      "terminal", terminalSource, 42,
      "virtual const tessarin::compiler::core::ParseTree& tessarin::compiler::core::TerminalData::child(size_t) const");
}
ParseTree TerminalData::trim(std::size_t) const {
  nvf::terminate(
      "terminal", terminalSource, 48,
      "virtual tessarin::compiler::core::ParseTree tessarin::compiler::core::TerminalData::trim(size_t) const");
}

void TerminalData::visit(ParseTreeVisitor& visitor) const {
  if (visitor.wantsToken(token_.code())) visitor.visitToken(token_);
}

std::unique_ptr<ParseTreeData> TerminalData::clone() const {
  return std::unique_ptr<ParseTreeData>(make(token_, nullptr));
}

void TerminalData::out(std::ostream& stream, std::size_t indent) const {
  stream << std::string(2 * indent, ' ') << "* " << token_ << std::endl;
}

std::size_t TerminalData::hash_value() const {
  return hashOf(token_);
}
void TerminalData::incorporate_data(DigestSink& sink) const {
  digest(sink, token_);
}
void TerminalData::strip_annotation_inplace() {
  strip(token_);
}
Ordering TerminalData::compare(const TerminalData& other) const {
  return order(token_, other.token_);
}

// ---- inner nodes ----

namespace {

/// Whether child 0 of such a node is the left operand of an operator, the path before a step, or the part of a list
/// before an item. Chains of them are as long as the source likes and do not count as nesting.
constexpr bool growsToTheLeft(NonTerminal::Value kind) noexcept {
  switch (kind) {
  case NonTerminal::OrOr:
  case NonTerminal::AndAnd:
  case NonTerminal::Or:
  case NonTerminal::And:
  case NonTerminal::Lt:
  case NonTerminal::Le:
  case NonTerminal::Gt:
  case NonTerminal::Ge:
  case NonTerminal::Eq:
  case NonTerminal::Ne:
  case NonTerminal::Colon:
  case NonTerminal::Colon3:
  case NonTerminal::Add:
  case NonTerminal::Sub:
  case NonTerminal::Mul:
  case NonTerminal::DotMul:
  case NonTerminal::Div:
  case NonTerminal::DotDiv:
  case NonTerminal::RDiv:
  case NonTerminal::DotRDiv:
  case NonTerminal::Power:
  case NonTerminal::DotPower:
  case NonTerminal::Transpose:
  case NonTerminal::DotTranspose:
  case NonTerminal::Dot:
  case NonTerminal::DotParen:
  case NonTerminal::Subsref:
  case NonTerminal::CellIndex:
  case NonTerminal::AvPairs: return true;
  default: return false;
  }
}

} // namespace

static_assert(sizeof(NonTerminalData) % alignof(ParseTree) == 0, "the children follow the node");

void NonTerminalData::operator delete(NonTerminalData* node, std::destroying_delete_t) noexcept {
  const NodePool::Slot slot = node->slot_;
  node->~NonTerminalData();
  NodePool::release(node, slot);
}

NonTerminalData* NonTerminalData::make(NonTerminal::Value kind, std::size_t capacity, NodePool* pool) {
  if (capacity > std::numeric_limits<std::uint32_t>::max())
    throw std::length_error("too many children in a parse tree");
  const NodePool::Piece piece = NodePool::allocate(pool, sizeof(NonTerminalData) + capacity * sizeof(ParseTree));
  return ::new (piece.memory) NonTerminalData(kind, static_cast<std::uint32_t>(capacity), piece.slot);
}

NonTerminalData::~NonTerminalData() {
  std::destroy_n(room(), count_);
}

void NonTerminalData::append(ParseTree&& child) noexcept {
  const ParseTreeData& data = *std::as_const(child).data();
  const std::uint32_t below = data.depth();
  if (below >= depth_) {
    const std::uint32_t own = count_ == 0 && growsToTheLeft(kind_) ? 0 : 1;
    depth_ =
        static_cast<std::uint16_t>(std::min<std::uint32_t>(below + own, std::numeric_limits<std::uint16_t>::max()));
  }
  if (left_ == nullptr) left_ = data.ParseTreeData::left();
  if (const Token* last = data.ParseTreeData::right()) right_ = last;
  std::construct_at(room() + count_, std::move(child));
  ++count_;
}

void NonTerminalData::findEnds() noexcept {
  left_ = right_ = nullptr;
  for (const ParseTree& tree : children()) {
    if (left_ == nullptr) left_ = tree.left();
    if (const Token* last = tree.right()) right_ = last;
  }
}

const Token& NonTerminalData::token() const {
  nvf::terminate(
      "non-terminal", "parser/parse/NonTerminalData", 34,
      "virtual const tessarin::compiler::core::Token& tessarin::compiler::core::NonTerminalData::token() const");
}

ParseTree NonTerminalData::trim(std::size_t n) const {
  const auto kept = children().first(count_ - std::min<std::size_t>(n, count_));
  return {kind_, kept.data(), kept.size()};
}

void NonTerminalData::visit(ParseTreeVisitor& visitor) const {
  with_stack([&] {
    for (const ParseTree& tree : children()) tree.visit(visitor);
  });
}

std::unique_ptr<ParseTreeData> NonTerminalData::clone() const {
  std::unique_ptr<NonTerminalData> copy(make(kind_, count_, nullptr));
  for (const ParseTree& tree : children()) copy->append(ParseTree(tree));
  return copy;
}

void NonTerminalData::out(std::ostream& stream, std::size_t indent) const {
  stream << std::string(2 * indent, ' ') << "* " << NonTerminal::name(kind_) << std::endl;
  with_stack([&] {
    for (const ParseTree& tree : children()) tree.out(stream, indent + 1);
  });
}

std::size_t NonTerminalData::hash_value() const {
  if (const std::size_t known = cachedHash()) return known;
  const std::size_t hash = with_stack([&] {
    std::size_t range = 0;
    for (const ParseTree& tree : children()) range = nvf::hash_combine(range, tree.data()->hash_value());
    return nvf::hash_combine(nvf::hash_combine(0, static_cast<std::size_t>(kind_)), range);
  });
  cacheHash(hash);
  return hash;
}

void NonTerminalData::incorporate_data(DigestSink& sink) const {
  nvf::feed_bytes<4>(sink, static_cast<std::uint64_t>(kind_));
  with_stack([&] {
    for (const ParseTree& tree : children()) tree.data()->incorporate_data(sink);
  });
}

void NonTerminalData::strip_annotation_inplace() {
  // Children that were shared are new nodes now, and are so too where memory ran out for a later one.
  struct FindEnds {
    NonTerminalData& node;
    ~FindEnds() { node.findEnds(); }
  };
  const FindEnds afterwards{*this};
  with_stack([&] {
    for (std::uint32_t i = 0; i < count_; ++i) core::strip_annotation_inplace(room()[i]);
  });
}

bool NonTerminalData::equal(const NonTerminalData& other) const {
  if (kind_ != other.kind_ || count_ != other.count_) return false;
  return with_stack([&] {
    return std::equal(children().begin(), children().end(), other.children().begin(),
                      [](const ParseTree& a, const ParseTree& b) { return a.equal(b); });
  });
}

Ordering NonTerminalData::compare(const NonTerminalData& other) const {
  if (kind_ != other.kind_) return nvf::order(kind_, other.kind_);
  return with_stack([&] {
    const std::size_t common = std::min(count_, other.count_);
    for (std::size_t i = 0; i < common; ++i) {
      if (const Ordering result = core::compare(child(i), other.child(i)); result != Ordering::Equal) return result;
    }
    return nvf::order(count_, other.count_);
  });
}

// ---- the handle ----

const ParseTree ParseTree::DEFAULT_DATA;

const ParseTreeData* ParseTree::defaultData() noexcept {
  // Never destroyed: handles with static storage may outlive it.
  alignas(TerminalData) static std::byte memory[sizeof(TerminalData)];
  static const auto* data = ::new (memory) TerminalData(Token(), 0);
  return data;
}

ParseTree::ParseTree(const Token& token) : data_(TerminalData::make(token, nullptr)) {}

ParseTree::ParseTree(NonTerminal::Value kind, const ParseTree* first, std::size_t n)
    : data_(NonTerminalData::make(kind, n, nullptr)) {
  auto& node = static_cast<NonTerminalData&>(data_.exclusive());
  for (const ParseTree& child : std::span(first, n)) node.append(ParseTree(child));
}

ParseTree::ParseTree(NonTerminal::Value kind, const std::vector<ParseTree>& children)
    : ParseTree(kind, children.data(), children.size()) {}

ParseTreeData* ParseTree::data() {
  if (!data_ || !data_->isUnique()) {
    data_ = nvf::SharedPtr<ParseTreeData>(std::as_const(*this).data()->clone().release());
  }
  data_.exclusive().cacheHash(0);
  return &data_.exclusive();
}

ParseTree ParseTree::roll() const {
  std::vector<ParseTree> children;
  roll(code(), children);
  return {code(), children};
}

bool ParseTree::equal(const ParseTree& other) const {
  return data_ == other.data_ || data()->equal(*other.data());
}

std::string ParseTree::getText(std::size_t) const {
  std::ostringstream stream;
  stream << *this;
  return stream.str();
}

void ParseTree::roll(NonTerminal::Value kind, std::vector<ParseTree>& out) const {
  if (!isNonTerminalType(kind)) {
    out.push_back(*this);
    return;
  }
  with_stack([&] {
    for (const ParseTree& tree : static_cast<const NonTerminalData*>(data())->children()) tree.roll(kind, out);
  });
}

Ordering compare(const ParseTree& a, const ParseTree& b) {
  return a.data() == b.data() ? Ordering::Equal : a.data()->compare(*b.data());
}
std::size_t hash_value(const ParseTree& tree) {
  return tree.data()->hash_value();
}
void incorporate_data(DigestSink& sink, const ParseTree& tree) {
  tree.data()->incorporate_data(sink);
}
void strip_annotation_inplace(ParseTree& tree) {
  tree.data()->strip_annotation_inplace();
}

std::ostream& operator<<(std::ostream& stream, const ParseTree& tree) {
  tree.out(stream, 0);
  return stream;
}
ustring dump_text(const ParseTree& tree) {
  struct Texts final : ParseTreeVisitor {
    ustring joined;
    bool wantsToken(TokenId::Value) override { return true; }
    void visitToken(const Token& token) override {
      if (!joined.empty()) joined += u' ';
      joined += token.text().view();
    }
  };
  Texts texts;
  tree.visit(texts);
  return std::move(texts.joined);
}

namespace {

/// Appends the names that `tree` spells; tells whether it is a name to its end.
bool collectPath(const ParseTree& tree, std::vector<nvf::CxId>& path) {
  return with_stack([&] {
    if (tree.type() == 0) {
      if (tree.token().code() != TokenId::ID) return false;
      path.push_back(nvf::detail::CxIdCheck()(tree.token().text()));
      return true;
    }
    switch (tree.code()) {
    case NonTerminal::Dot:
      return collectPath(tree.child(0), path) && tree.count() > 2 && collectPath(tree.child(2), path);
    case NonTerminal::Subsref: collectPath(tree.child(0), path); return false;
    default: return false;
    }
  });
}

} // namespace

nvf::BasicCxIdPath<0> dot_path(const ParseTree& tree) {
  std::vector<nvf::CxId> path;
  collectPath(tree, path);
  return nvf::BasicCxIdPath<0>(path);
}

// ---- building ----

NonTerminalData& ParseTreeBuilder::inner(ParseTree& tree) noexcept {
  return static_cast<NonTerminalData&>(tree.data_.exclusive());
}

ParseTree ParseTreeBuilder::leaf(const Token& token) {
  return ParseTree(TerminalData::make(token, &pool_));
}

ParseTree ParseTreeBuilder::node(NonTerminal::Value kind, std::initializer_list<ParseTree*> children) {
  NonTerminalData* node = NonTerminalData::make(kind, children.size(), &pool_);
  for (ParseTree* child : children) node->append(std::move(*child));
  return ParseTree(node);
}

void ParseTreeBuilder::append(ParseTree& list, ParseTree&& item) {
  NonTerminalData& node = inner(list);
  if (!node.isUnique() || !node.hasRoom()) {
    ParseTree larger(NonTerminalData::make(node.kind_, 2 * std::size_t{node.count_} + 2, &pool_));
    const bool isUnique = node.isUnique();
    for (std::uint32_t i = 0; i < node.count_; ++i) {
      ParseTree& child = node.room()[i];
      inner(larger).append(isUnique ? std::move(child) : ParseTree(child));
    }
    list = std::move(larger);
  }
  inner(list).cacheHash(0);
  inner(list).append(std::move(item));
}

void ParseTreeBuilder::extend(ParseTree& list, ParseTree&& item) {
  if (!item.isNonTerminalType(list.code())) {
    append(list, std::move(item));
    return;
  }
  std::vector<ParseTree> parts;
  item.roll(list.code(), parts);
  for (ParseTree& part : parts) append(list, std::move(part));
}

ParseTree ParseTreeBuilder::roll(ParseTree&& tree) {
  const auto children = static_cast<const NonTerminalData*>(std::as_const(tree).data())->children();
  const bool isFlat = std::none_of(children.begin(), children.end(), [kind = tree.code()](const ParseTree& child) {
    return child.isNonTerminalType(kind);
  });
  return isFlat ? std::move(tree) : tree.roll();
}

} // namespace tessarin::compiler::core
