#include "tessarin/parser/parse/ParseTree.hpp"

#include "tessarin/foundation/stack.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/parser/parse/FoldedTree.hpp"
#include "tessarin/parser/parse/NodePool.hpp"

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

void misuse::codeOfTerminal() {
  nvf::terminate(
      "terminal", terminalSource, 29,
      "virtual tessarin::compiler::core::NonTerminal::Value tessarin::compiler::core::TerminalData::code() const");
}
void misuse::countOfTerminal() {
  nvf::terminate("terminal", terminalSource, 35,
                 "virtual size_t tessarin::compiler::core::TerminalData::count() const");
}
void misuse::childOfTerminal() {
  nvf::terminate(
      "terminal", terminalSource, 42,
      "virtual const tessarin::compiler::core::ParseTree& tessarin::compiler::core::TerminalData::child(size_t) const");
}
void misuse::trimOfTerminal() {
  nvf::terminate(
      "terminal", terminalSource, 48,
      "virtual tessarin::compiler::core::ParseTree tessarin::compiler::core::TerminalData::trim(size_t) const");
}

NonTerminal::Value TerminalData::code() const {
  misuse::codeOfTerminal();
}
std::size_t TerminalData::count() const {
  misuse::countOfTerminal();
}
const ParseTree& TerminalData::child(std::size_t) const {
  misuse::childOfTerminal();
}
ParseTree TerminalData::trim(std::size_t) const {
  misuse::trimOfTerminal();
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
  return ::new (piece.memory) NonTerminalData(kind, piece.slot);
}

NonTerminalData::NonTerminalData(NonTerminal::Value kind, std::uint16_t slot) noexcept
    : ParseTreeDataShim(1, slot), kind_(kind) {}

NonTerminalData::~NonTerminalData() {
  std::destroy_n(room(), count_);
}

void NonTerminalData::append(ParseTree&& child) noexcept {
  const ParseTreeData& data = *std::as_const(child).data();
  depth_ = depthWith(depth_, data.depth(), count_ == 0, kind_);
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

void misuse::tokenOfNonTerminal() {
  nvf::terminate(
      "non-terminal", "parser/parse/NonTerminalData", 34,
      "virtual const tessarin::compiler::core::Token& tessarin::compiler::core::NonTerminalData::token() const");
}

const Token& NonTerminalData::token() const {
  misuse::tokenOfNonTerminal();
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
  if (folded_) unfold();
  // Children that were shared are new nodes now, and are so too where memory ran out for a later one.
  struct FindEnds {
    NonTerminalData& node;
    ~FindEnds() {
      node.findEnds();
      node.folded_.reset(); // it is the tree as it was
    }
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
      return tree.count() != 0 && collectPath(tree.child(0), path) && tree.count() > 2 &&
             collectPath(tree.child(2), path);
    case NonTerminal::Subsref:
      if (tree.count() != 0) collectPath(tree.child(0), path);
      return false;
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

} // namespace tessarin::compiler::core
