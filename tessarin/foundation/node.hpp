// The mechanism of value classes.
//
// A class of the syntax tree is its field tuple. It derives from `TupleWrapper`, names its fields, and is done:
//
//   class UnitExpr : public nvf::TupleWrapper<UnitExpr*, ExprHandle, UnitLiteral, nvf::detail::IgnoreValue<nvf::Range>>
//   {…};
//
// `TupleWrapper<T*, …>` keeps the fields in a shared block: one pointer wide, copied by counting, hash cached.
// `TupleWrapper<T, …>` keeps them in the object. `TaggedUnion<T, A, B, …>` is one of several alternatives. `Handle<T>`
// is a shared value with copy-on-write; it breaks the recursion between classes.
//
// From the fields follow, for each class: `compare` and the relational operators, `hash_value`, `incorporate_data`,
// `equal_ignore_annotation`, `strip_annotation_inplace`, `swap` and `dump`. Each is written once: `fields` has it over
// scalars, text, sequences, maps, optionals, variants and tuples, `Operations<T>` over a class. A class that is odd in
// one of them specialises that member of `Operations`, or declares the free functions itself.
//
// Recursion over a tree passes through the dispatch of a tagged union, and there the stack is guarded. A class through
// which trees nest without a tagged union on the way says `static constexpr bool nests = true`, and is guarded itself.
#pragma once

#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/sequences.hpp"
#include "tessarin/foundation/shared_block.hpp"
#include "tessarin/foundation/stack.hpp"
#include "tessarin/foundation/text.hpp"

#include <boost/core/demangle.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <compare>
#include <concepts>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace nvf {

namespace detail {

/// A field that is carried and never counts: any two are equal, its hash is 0 (which still stirs the hash of the
/// tuple), and it is not digested. Source ranges are such fields.
template <class T>
struct IgnoreValue {
  T value;
  IgnoreValue() = default;
  IgnoreValue(T v) : value(std::move(v)) {} // NOLINT(google-explicit-constructor): a field is given as its value
  friend bool operator==(const IgnoreValue&, const IgnoreValue&) noexcept { return true; }
};

/// A value that is carried beside the fields: like an ignored one, but it does not even stir the hash.
template <class T>
struct BesideValue {
  T value;
  BesideValue() = default;
  BesideValue(T v) : value(std::move(v)) {} // NOLINT(google-explicit-constructor): a field is given as its value
  friend bool operator==(const BesideValue&, const BesideValue&) noexcept { return true; }
};

template <class T>
inline constexpr bool isIgnored = false;
template <class T>
inline constexpr bool isIgnored<IgnoreValue<T>> = true;
template <class T>
inline constexpr bool isIgnored<BesideValue<T>> = true;
template <class T>
inline constexpr bool isBeside = false;
template <class T>
inline constexpr bool isBeside<BesideValue<T>> = true;
template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;
template <class T>
inline constexpr bool isVariant = false;
template <class... Ts>
inline constexpr bool isVariant<std::variant<Ts...>> = true;
template <class T>
inline constexpr bool isTuple = false;
template <class... Ts>
inline constexpr bool isTuple<std::tuple<Ts...>> = true;
template <class A, class B>
inline constexpr bool isTuple<std::pair<A, B>> = true;
template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;
template <class K, class T>
inline constexpr bool isVector<std::map<K, T>> = true; // a sequence of its entries in the order of their keys
template <class T>
inline constexpr bool isExpressions = false;
template <class T>
inline constexpr bool isExpressions<Expressions<T>> = true;
template <class T>
inline constexpr bool isExpressions<Expressions1<T>> = true;

template <class T>
concept Scalar = std::is_integral_v<T> || std::is_enum_v<T>;
template <class T>
concept Text = std::same_as<T, ustring>;
template <class T>
concept Ignored = isIgnored<T>;
template <class T>
concept Optional = isOptional<T>;
template <class T>
concept Variant = isVariant<T>;
template <class T>
concept Tuple = isTuple<T>;
template <class T>
concept Sequence = isVector<T> || isExpressions<T>;

/// The name of a type without its namespaces, for people.
TESSARIN_EXPORT std::string shortTypeName(const std::type_info& type);

} // namespace detail

/// The name of `T` for people.
template <class T>
std::string pretty_name() {
  return detail::shortTypeName(typeid(T));
}

/// What a class and its fields are called where trees are shown. `TESSARIN_DECLARE_OPERATIONS` fills it in; these names
/// do not depend on the compiler, and tools rely on them.
template <class T>
struct ClassNames {
  /// The name of the class without its namespaces.
  static std::string name() { return pretty_name<T>(); }
  /// The names of the fields that count, in their order; none where the class has none for them.
  static constexpr std::array<std::string_view, 0> fields{};
  /// Whether it has.
  static constexpr bool isNamed = false;
};

namespace detail {
/// What stands behind the last colon.
constexpr std::string_view withoutNamespaces(std::string_view name) {
  return name.substr(name.rfind(':') + 1);
}
/// The texts as an array.
template <class... Names>
constexpr std::array<std::string_view, sizeof...(Names)> namesOf(Names... names) {
  return {names...};
}
} // namespace detail

/// Receives the parts of a tree in order.
class TESSARIN_EXPORT DumpSink {
public:
  virtual ~DumpSink();
  /// A node begins; `range` is null where the class has none.
  virtual void beginNode(const std::string& className, const Range* range) = 0;
  /// The node that began last ends.
  virtual void endNode() = 0;
  /// A sequence begins: `size` parts follow before `endList`.
  virtual void beginList(std::size_t size) = 0;
  /// The list that began last ends.
  virtual void endList() = 0;
  /// A field that is no node.
  virtual void value(const ustring& text) = 0;
  /// The field of this name of the node that began last comes next. Does nothing by default.
  virtual void field(std::string_view name);
  /// An optional that is absent; a list of none by default.
  virtual void absent();
};

// ---- the operations over fields ----

/// Each operation over a field of any type. What is no container is asked through its own free function, which is found
/// by its argument.
namespace fields {

/// Calls `function` with each pair of elements of two tuples of one type until it returns false; tells whether it never
/// did.
template <class Tuple, class Function>
bool allPairs(const Tuple& a, const Tuple& b, Function function) {
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return (function(std::get<I>(a), std::get<I>(b)) && ...);
  }
  (std::make_index_sequence<std::tuple_size_v<Tuple>>());
}

/// Calls `function` with the alternatives of two variants that hold the same one.
template <class Variant, class Function>
auto withBoth(const Variant& a, const Variant& b, Function function) {
  return std::visit([&](const auto& left) { return function(left, *std::get_if<std::decay_t<decltype(left)>>(&b)); },
                    a);
}

/// The hash of a field; 0 for what does not count.
template <class T>
std::size_t hashOf(const T& field) {
  if constexpr (detail::Scalar<T>) {
    return static_cast<std::size_t>(field);
  } else if constexpr (detail::Text<T>) {
    return nvf::hash_value(field);
  } else if constexpr (detail::Ignored<T>) {
    return 0;
  } else if constexpr (detail::Optional<T>) {
    return field ? hashOf(*field) : ~std::size_t{0};
  } else if constexpr (detail::Variant<T>) {
    return hash_combine(std::visit([](const auto& alternative) { return hashOf(alternative); }, field), field.index());
  } else if constexpr (detail::Sequence<T>) {
    std::size_t seed = 0;
    for (const auto& element : field) seed = hash_combine(seed, hashOf(element));
    return seed;
  } else if constexpr (detail::Tuple<T>) {
    std::size_t seed = 0;
    const auto stir = [&seed]<class Element>(const Element& element) {
      if constexpr (!detail::isBeside<Element>) seed = hash_combine(seed, hashOf(element));
    };
    std::apply([&stir](const auto&... element) { (stir(element), ...); }, field);
    return seed;
  } else {
    return hash_value(field);
  }
}

/// Feeds no length, count or presence: only the contents, and the number of the alternative of a variant.
template <class T>
void digest(DigestSink& sink, const T& field) {
  if constexpr (std::same_as<T, bool>) {
    feed_bytes<1>(sink, field ? 1 : 0);
  } else if constexpr (std::is_enum_v<T> || std::same_as<T, int>) {
    feed_bytes<4>(sink, static_cast<std::uint64_t>(field));
  } else if constexpr (detail::Scalar<T>) {
    static_assert(sizeof(T) == 8, "a digest has numbers of 1, 4 and 8 bytes");
    feed_bytes<8>(sink, field);
  } else if constexpr (detail::Text<T>) {
    for (const char16_t unit : field) feed_bytes<2>(sink, unit);
  } else if constexpr (detail::Ignored<T>) {
    // Feeds nothing.
  } else if constexpr (detail::Optional<T>) {
    if (field) digest(sink, *field);
  } else if constexpr (detail::Variant<T>) {
    feed_bytes<8>(sink, field.index());
    std::visit([&sink](const auto& alternative) { digest(sink, alternative); }, field);
  } else if constexpr (detail::Sequence<T>) {
    for (const auto& element : field) digest(sink, element);
  } else if constexpr (detail::Tuple<T>) {
    std::apply([&sink](const auto&... element) { (digest(sink, element), ...); }, field);
  } else {
    incorporate_data(sink, field);
  }
}

/// Lexicographic; a sequence that is a prefix of the other is less, an absent optional is less than a present one, and
/// of two variants the one with the smaller index is less.
template <class T>
Ordering orderOf(const T& a, const T& b) {
  if constexpr (detail::Scalar<T> || detail::Text<T>) {
    return order(a, b);
  } else if constexpr (detail::Ignored<T>) {
    return Ordering::Equal;
  } else if constexpr (detail::Optional<T>) {
    return a && b ? orderOf(*a, *b) : order(a.has_value(), b.has_value());
  } else if constexpr (detail::Variant<T>) {
    if (a.index() != b.index()) return order(a.index(), b.index());
    return withBoth(a, b, [](const auto& left, const auto& right) { return orderOf(left, right); });
  } else if constexpr (detail::Sequence<T>) {
    auto i = a.begin();
    auto j = b.begin();
    for (; i != a.end() && j != b.end(); ++i, ++j) {
      if (const Ordering result = orderOf(*i, *j); result != Ordering::Equal) return result;
    }
    return order(a.size(), b.size());
  } else if constexpr (detail::Tuple<T>) {
    Ordering result = Ordering::Equal;
    allPairs(a, b, [&result](const auto& left, const auto& right) {
      result = orderOf(left, right);
      return result == Ordering::Equal;
    });
    return result;
  } else {
    return compare(a, b);
  }
}

/// Equality of two values, in two forms with the same verdict: `Strict` takes what shares a block for equal unseen,
/// `Loose` walks everything.
enum class Walk { Strict, Loose };

/// Whether two values of one sort are equal.
template <Walk walk, class T>
bool areEqual(const T& a, const T& b) {
  constexpr auto equal = [](const auto& left, const auto& right) { return areEqual<walk>(left, right); };
  // NOLINTNEXTLINE(bugprone-branch-clone): the last branch is for what is none of the sorts between
  if constexpr (detail::Scalar<T> || detail::Text<T>) {
    return a == b;
  } else if constexpr (detail::Ignored<T>) {
    return true;
  } else if constexpr (detail::Optional<T>) {
    return a && b ? equal(*a, *b) : a.has_value() == b.has_value();
  } else if constexpr (detail::Variant<T>) {
    return a.index() == b.index() && withBoth(a, b, equal);
  } else if constexpr (detail::Sequence<T>) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), equal);
  } else if constexpr (detail::Tuple<T>) {
    return allPairs(a, b, equal);
  } else if constexpr (walk == Walk::Loose && requires { equal_ignore_annotation(a, b); }) {
    return equal_ignore_annotation(a, b);
  } else {
    return a == b;
  }
}

/// Frees every node below of its cached hash and of sharing. What is no node is left as it is.
template <class T>
void strip(T& field) {
  if constexpr (std::is_const_v<T>) {
    // The key of a map.
  } else if constexpr (detail::Optional<T>) {
    if (field) strip(*field);
  } else if constexpr (detail::Variant<T>) {
    std::visit([](auto& alternative) { strip(alternative); }, field);
  } else if constexpr (detail::isExpressions<T>) {
    using Element = typename T::value_type;
    std::vector<Element> elements(field.begin(), field.end());
    for (Element& element : elements) strip(element);
    if (!elements.empty()) field = T(std::move(elements));
  } else if constexpr (detail::Sequence<T>) {
    for (auto& element : field) strip(element);
  } else if constexpr (detail::Tuple<T>) {
    std::apply([](auto&... element) { (strip(element), ...); }, field);
  } else if constexpr (requires { strip_annotation_inplace(field); }) {
    strip_annotation_inplace(field);
  }
}

/// Shows a field to a sink: scalars and texts as values, sequences and maps as lists, classes as nodes.
template <class T>
void show(DumpSink& sink, const T& field) {
  if constexpr (std::same_as<T, bool>) {
    sink.value(field ? u"true" : u"false");
  } else if constexpr (std::is_enum_v<T> && requires { dump_text(field); }) {
    sink.value(dump_text(field));
  } else if constexpr (detail::Scalar<T>) {
    using Wide = std::conditional_t<std::is_unsigned_v<T>, unsigned long long, long long>;
    sink.value(widen(std::to_string(static_cast<Wide>(field))));
  } else if constexpr (detail::Text<T>) {
    sink.value(field);
  } else if constexpr (detail::Ignored<T>) {
    // Carried, but no part of the value; a range is shown with its node.
  } else if constexpr (detail::Optional<T>) {
    if (field) {
      show(sink, *field);
    } else {
      sink.absent();
    }
  } else if constexpr (detail::Variant<T>) {
    std::visit([&sink](const auto& alternative) { show(sink, alternative); }, field);
  } else if constexpr (detail::Sequence<T>) {
    sink.beginList(field.size());
    for (const auto& element : field) show(sink, element);
    sink.endList();
  } else if constexpr (detail::Tuple<T>) {
    std::apply([&sink](const auto&... element) { (show(sink, element), ...); }, field);
  } else if constexpr (requires { dump(sink, field); }) {
    dump(sink, field);
  } else {
    sink.value(dump_text(field));
  }
}

} // namespace fields

// ---- the operations over classes ----

/// The operations over a class `T` that is a field tuple or a tagged union. They are declared `extern template` beside
/// the class and compiled once, in the library. A class that is odd in one of them specialises that member.
template <class T>
struct TESSARIN_EXPORT Operations {
  /// Over the fields; of a tagged union, over the alternative and its number. A shared hash is computed once.
  static std::size_t hash(const T& value);
  /// What the fields feed; a tagged union feeds the number of the alternative as 8 bytes first.
  static void digest(DigestSink& sink, const T& value);
  /// The lexicographic order of the fields; of tagged unions, by number first.
  static Ordering compare(const T& a, const T& b);
  /// Whether all fields are equal; objects that share their fields are, unseen.
  static bool equal(const T& a, const T& b);
  /// The same, by a walk over everything.
  static bool equalLoosely(const T& a, const T& b);
  /// Unshares the fields, forgets the hash, and does the same below.
  static void strip(T& value);
  /// Shows the class as a node, with its range where it has one, and the fields in it; of a tagged union, the
  /// alternative alone.
  static void dump(DumpSink& sink, const T& value);
};

/// Equality is that of the fields.
struct NativeEquality {};
/// Marks a class whose annotations are its source ranges alone.
template <class T>
struct SimpleAnnotation {};

namespace detail {
/// What derives the order under the name that classes with an order of their own go by.
template <class T>
using Comparable = OrderingOperators<T>;
} // namespace detail

/// Gives `T` its free functions, found by argument: all of them lead to `Operations<T>`.
template <class T, class Equality>
class Relatable : public detail::OrderingOperators<T> {
  friend std::size_t hash_value(const T& value) { return Operations<T>::hash(value); }
  friend void incorporate_data(DigestSink& sink, const T& value) { Operations<T>::digest(sink, value); }
  friend Ordering compare(const T& a, const T& b) { return Operations<T>::compare(a, b); }
  friend bool operator==(const T& a, const T& b) { return Operations<T>::equal(a, b); }
  friend bool equal_ignore_annotation(const T& a, const T& b) { return Operations<T>::equalLoosely(a, b); }
  friend void strip_annotation_inplace(T& value) { Operations<T>::strip(value); }
  friend void dump(DumpSink& sink, const T& value) { Operations<T>::dump(sink, value); }
  friend void swap(T& a, T& b) noexcept {
    T former(std::move(a));
    a = std::move(b);
    b = std::move(former);
  }
};

template <class T>
requires std::derived_from<T, Relatable<T, NativeEquality>>
inline constexpr bool hashesByValue<T> = true;

namespace detail {

template <class Field>
const auto& unwrap(const Field& field) noexcept {
  if constexpr (Ignored<Field>) {
    return field.value;
  } else {
    return field;
  }
}

/// Whether the last field is a range, and whether it is one that may be another one without anything else changing.
/// @{
template <class... Fields>
inline constexpr bool endsWithRange = false;
template <class Last>
inline constexpr bool endsWithRange<Last> =
    std::same_as<Last, IgnoreValue<Range>> || std::same_as<Last, BesideValue<Range>>;
template <class First, class Second, class... Rest>
inline constexpr bool endsWithRange<First, Second, Rest...> = endsWithRange<Second, Rest...>;
template <class... Fields>
inline constexpr bool endsWithOwnRange = false;
template <class Last>
inline constexpr bool endsWithOwnRange<Last> = std::same_as<Last, IgnoreValue<Range>>;
template <class First, class Second, class... Rest>
inline constexpr bool endsWithOwnRange<First, Second, Rest...> = endsWithOwnRange<Second, Rest...>;
/// @}

/// Reaches the fields of a class for changing them: unshared, and with the hash forgotten. For code of this library
/// that has made the object and shows it to nobody yet; to everyone else values do not change.
struct OwnFields {
  template <class T>
  static auto& of(T& value) {
    return value.ownFields();
  }
};

/// What both forms of `TupleWrapper` offer on top of `tuple()`.
template <class T, class... Fields>
class TupleAccess : public Relatable<T, NativeEquality> {
public:
  using Tuple = std::tuple<Fields...>;

  /// The source range, where the class has one; it is the last field then.
  [[nodiscard]] Range range() const requires endsWithRange<Fields...> { return get<sizeof...(Fields) - 1>(); }
  /// The begin of the range. A template, so that its constraint is looked at when the class is complete.
  template <class Self = T>
  [[nodiscard]] Location location() const requires requires(const Self& value) {
    value.range();
  }
  { return static_cast<const Self&>(*this).range().begin(); }
  /// The line of the location, from 0.
  template <class Self = T>
  [[nodiscard]] std::size_t line() const requires requires(const Self& value) {
    value.location();
  }
  { return static_cast<const Self&>(*this).location().lineColumn().line(); }
  /// A copy at another place, which is no part of the value.
  [[nodiscard]] T withRange(const Range& range) const requires endsWithOwnRange<Fields...> {
    return with<sizeof...(Fields) - 1>(range);
  }

protected:
  TupleAccess() = default;

  /// A copy with another value in the `I`-th field. Everything else is shared with this object.
  template <std::size_t I, class Value>
  [[nodiscard]] T with(Value&& value) const {
    T copy(static_cast<const T&>(*this));
    std::get<I>(OwnFields::of(copy)) = std::forward<Value>(value);
    return copy;
  }

  /// The `I`-th field; of an ignored one, the value in it.
  template <std::size_t I>
  [[nodiscard]] const auto& get() const noexcept {
    return unwrap(std::get<I>(static_cast<const T&>(*this).tuple()));
  }
};

} // namespace detail

template <class T>
class Handle;

namespace detail {

/// Remembers the hash of the object that it is a part of. Threads that compute it at the same time store the same
/// value.
class HashCache {
public:
  HashCache() noexcept = default;
  HashCache(const HashCache& other) noexcept : hash_(other.get()) {}
  HashCache(HashCache&& other) noexcept : hash_(other.hash_.exchange(0, std::memory_order_relaxed)) {}
  HashCache& operator=(HashCache other) noexcept {
    set(other.get());
    return *this;
  }
  ~HashCache() = default;
  [[nodiscard]] std::size_t get() const noexcept { return hash_.load(std::memory_order_relaxed); }
  void set(std::size_t hash) const noexcept { hash_.store(hash, std::memory_order_relaxed); }

private:
  mutable std::atomic<std::size_t> hash_ = 0; // 0 where it is not known
};

/// For objects whose hash is made anew each time.
struct NoHashCache {
  [[nodiscard]] static std::size_t get() noexcept { return 0; }
  static void set(std::size_t) noexcept {}
};

/// Whether the hash of a field may cost more than a few steps without being remembered where the field is.
template <class T>
inline constexpr bool isCostlyToHash = Text<T>;
template <class T>
inline constexpr bool isCostlyToHash<Handle<T>> = true;

} // namespace detail

/// The base of a class that keeps its fields in the object. The hash is cached where there is a text or a handle among
/// them.
template <class T, class... Fields>
class TupleWrapper : public detail::TupleAccess<T, Fields...> {
public:
  TupleWrapper(const TupleWrapper&) = default;
  TupleWrapper(TupleWrapper&&) = default;
  /// Takes the value before the old one goes: a part of an object may be assigned to it.
  TupleWrapper& operator=(TupleWrapper other) noexcept(std::is_nothrow_move_assignable_v<std::tuple<Fields...>>) {
    fields_ = std::move(other.fields_);
    hash_ = std::move(other.hash_);
    return *this;
  }
  ~TupleWrapper() = default;

  /// The fields, for operations that treat all classes alike.
  [[nodiscard]] const std::tuple<Fields...>& tuple() const noexcept { return fields_; }

protected:
  TupleWrapper() = default;
  /// One value for each field.
  template <class... Values>
  requires(sizeof...(Values) == sizeof...(Fields) && sizeof...(Values) > 0) explicit TupleWrapper(Values&&... values)
      : fields_(std::forward<Values>(values)...) {}

private:
  friend struct Operations<T>;
  friend struct detail::OwnFields;
  using Cache = std::conditional_t<(detail::isCostlyToHash<Fields> || ...), detail::HashCache, detail::NoHashCache>;

  [[nodiscard]] const void* identity() const noexcept { return nullptr; }
  [[nodiscard]] std::size_t cachedHash() const noexcept { return hash_.get(); }
  void cacheHash(std::size_t hash) const noexcept { hash_.set(hash); }
  /// The fields for changing them, with the hash forgotten.
  std::tuple<Fields...>& ownFields() noexcept {
    hash_.set(0);
    return fields_;
  }

  std::tuple<Fields...> fields_;
  [[no_unique_address]] Cache hash_;
};

/// The base of a class that shares its fields with its copies. An object that has been moved from can only be destroyed
/// or assigned to.
template <class T, class... Fields>
class TupleWrapper<T*, Fields...> : public detail::TupleAccess<T, Fields...> {
public:
  /// The fields, for operations that treat all classes alike.
  [[nodiscard]] const std::tuple<Fields...>& tuple() const noexcept { return block_->fields; }

protected:
  TupleWrapper() : block_(new Block) {}
  /// One value for each field.
  template <class... Values>
  requires(sizeof...(Values) == sizeof...(Fields) && sizeof...(Values) > 0) explicit TupleWrapper(Values&&... values)
      : block_(new Block(std::forward<Values>(values)...)) {}

private:
  friend struct Operations<T>;
  friend struct detail::OwnFields;

  struct Block final : SharedBlock {
    std::tuple<Fields...> fields;
    Block() = default;
    Block(const Block&) = default;
    template <class... Values>
    requires(sizeof...(Values) == sizeof...(Fields)) explicit Block(Values&&... values)
        : fields(std::forward<Values>(values)...) {}
  };

  /// Two objects with one identity have the same fields.
  [[nodiscard]] const void* identity() const noexcept { return std::addressof(block_->fields); }
  [[nodiscard]] std::size_t cachedHash() const noexcept { return block_->cachedHash(); }
  void cacheHash(std::size_t hash) const noexcept { block_->cacheHash(hash); }
  /// The fields for changing them, unshared and with the hash forgotten.
  std::tuple<Fields...>& ownFields() {
    Block& own = block_.unshared();
    own.cacheHash(0);
    return own.fields;
  }

  SharedPtr<Block> block_;
};

// ---- tagged unions ----

/// A value that is one of several alternatives, told apart by a number. The default is the first alternative's default.
template <class Self, class... Alternatives>
class TaggedUnion : public Relatable<Self, NativeEquality> {
public:
  /// Whether `A` is one of the alternatives.
  template <class A>
  static constexpr bool holds = (std::same_as<A, Alternatives> || ...);

  TaggedUnion() = default;
  /// Holds the alternative, given by value.
  template <class A>
  requires(holds<A>) TaggedUnion(A alternative) // NOLINT(google-explicit-constructor)
      : value_(std::move(alternative)) {}
  /// Holds the one alternative that the value converts to, such as the expression that an operator is.
  template <class A>
  requires(!holds<A>) && (!std::derived_from<A, Self>)&&((std::size_t{std::is_convertible_v<A, Alternatives>} + ...) ==
                                                         1) explicit TaggedUnion(A part)
      : value_(alternativeOf(std::move(part))) {}

  TaggedUnion(const TaggedUnion&) = default;
  TaggedUnion(TaggedUnion&&) = default;
  /// Takes the value before the old one goes: a part of a tree may be assigned to the tree.
  TaggedUnion& operator=(TaggedUnion other) noexcept(std::is_nothrow_move_assignable_v<std::variant<Alternatives...>>) {
    value_ = std::move(other.value_);
    return *this;
  }
  ~TaggedUnion() = default;

  /// The number of the alternative.
  [[nodiscard]] std::size_t id() const noexcept { return value_.index(); }

  /// The alternative `A`, or throws `BadGet` with the name of `A`.
  template <class A>
  [[nodiscard]] const A& get() const {
    if (const A* alternative = getIf<A>()) return *alternative;
    throw BadGet(pretty_name<A>());
  }
  /// The alternative `A`, or null where another one is held.
  template <class A>
  [[nodiscard]] const A* getIf() const noexcept {
    return std::get_if<A>(&value_);
  }

  /// Calls `visitor` with the alternative. All recursion over trees comes through here, so the stack is looked at
  /// first.
  template <class Visitor>
  decltype(auto) visit(Visitor&& visitor) const {
    return with_stack([&]() -> decltype(auto) { return std::visit(visitor, checked()); });
  }
  /// For `boost::apply_visitor`.
  template <class Visitor>
  typename std::remove_reference_t<Visitor>::result_type apply_visitor(Visitor&& visitor) const {
    return visit([&visitor](const auto& alternative) ->
                 typename std::remove_reference_t<Visitor>::result_type { return visitor(alternative); });
  }

private:
  friend struct Operations<Self>;
  using Value = std::variant<Alternatives...>;

  template <class A>
  static Value alternativeOf(A part) {
    std::optional<Value> result;
    const auto convert = [&]<class Alternative>(std::type_identity<Alternative>) {
      if constexpr (std::is_convertible_v<A, Alternative>) result.emplace(Alternative(std::move(part)));
    };
    (convert(std::type_identity<Alternatives>()), ...);
    return *std::move(result);
  }

  const Value& checked() const {
    if (value_.valueless_by_exception()) throw std::logic_error("invalid visit");
    return value_;
  }
  Value value_;
};

/// Whether `A` is an alternative of the tagged union `Union`.
template <class A, class Union>
concept AlternativeOf = Union::template holds<A>;

template <class T>
concept IsTaggedUnion = requires(const T& value) {
  value.id();
}
&&!requires(const T& value) {
  value.tuple();
};

namespace detail {
/// Calls `function`, on a guarded stack where trees nest through `T` itself.
template <class T, class Function>
decltype(auto) walk(Function&& function) {
  if constexpr (requires { requires T::nests; }) {
    return with_stack(std::forward<Function>(function));
  } else {
    return std::invoke(std::forward<Function>(function));
  }
}
} // namespace detail

template <class T>
std::size_t Operations<T>::hash(const T& value) {
  if constexpr (IsTaggedUnion<T>) {
    return hash_combine(value.visit([](const auto& alternative) { return fields::hashOf(alternative); }), value.id());
  } else {
    std::size_t hash = value.cachedHash();
    if (hash == 0) {
      hash = detail::walk<T>([&] { return fields::hashOf(value.tuple()); });
      value.cacheHash(hash);
    }
    return hash;
  }
}

template <class T>
void Operations<T>::digest(DigestSink& sink, const T& value) {
  if constexpr (IsTaggedUnion<T>) {
    feed_bytes<8>(sink, value.id());
    value.visit([&sink](const auto& alternative) { fields::digest(sink, alternative); });
  } else {
    detail::walk<T>([&] { fields::digest(sink, value.tuple()); });
  }
}

template <class T>
Ordering Operations<T>::compare(const T& a, const T& b) {
  if constexpr (IsTaggedUnion<T>) {
    return with_stack([&] { return fields::orderOf(a.checked(), b.checked()); });
  } else {
    if (a.identity() != nullptr && a.identity() == b.identity()) return Ordering::Equal;
    return detail::walk<T>([&] { return fields::orderOf(a.tuple(), b.tuple()); });
  }
}

template <class T>
bool Operations<T>::equal(const T& a, const T& b) {
  if constexpr (IsTaggedUnion<T>) {
    return with_stack([&] { return fields::areEqual<fields::Walk::Strict>(a.checked(), b.checked()); });
  } else {
    if (a.identity() != nullptr && a.identity() == b.identity()) return true;
    return detail::walk<T>([&] { return fields::areEqual<fields::Walk::Strict>(a.tuple(), b.tuple()); });
  }
}

template <class T>
bool Operations<T>::equalLoosely(const T& a, const T& b) {
  if constexpr (IsTaggedUnion<T>) {
    return with_stack([&] { return fields::areEqual<fields::Walk::Loose>(a.checked(), b.checked()); });
  } else {
    return detail::walk<T>([&] { return fields::areEqual<fields::Walk::Loose>(a.tuple(), b.tuple()); });
  }
}

template <class T>
void Operations<T>::strip(T& value) {
  if constexpr (IsTaggedUnion<T>) {
    with_stack([&] { fields::strip(value.value_); });
  } else {
    detail::walk<T>([&] { fields::strip(value.ownFields()); });
  }
}

namespace detail {
/// Shows the fields that count, each behind its name where the class has names.
template <class T>
void showFields(DumpSink& sink, const T& value) {
  constexpr const auto& names = ClassNames<T>::fields;
  std::size_t next = 0;
  const auto showOne = [&]<class Field>(const Field& field) {
    if constexpr (!Ignored<Field>) {
      if (next < names.size()) sink.field(names[next]);
      ++next;
      fields::show(sink, field);
    }
  };
  std::apply(
      [&]<class... Fields>(const Fields&... field) {
        static_assert(!ClassNames<T>::isNamed || names.size() == (std::size_t{!Ignored<Fields>} + ... + 0),
                      "one name for each field that counts");
        (showOne(field), ...);
      },
      value.tuple());
}
} // namespace detail

template <class T>
void Operations<T>::dump(DumpSink& sink, const T& value) {
  if constexpr (IsTaggedUnion<T>) {
    value.visit([&sink](const auto& alternative) { fields::show(sink, alternative); });
  } else {
    if constexpr (requires { value.range(); }) {
      const Range range = value.range();
      sink.beginNode(ClassNames<T>::name(), &range);
    } else {
      sink.beginNode(ClassNames<T>::name(), nullptr);
    }
    detail::walk<T>([&] { detail::showFields(sink, value); });
    sink.endNode();
  }
}

// ---- handles ----

/// A shared value with copy-on-write, one pointer wide; it may be a field of a class on which `T` itself depends. Never
/// empty but after it has been moved from, when it can only be destroyed or assigned to.
template <class T>
class Handle : public detail::OrderingOperators<Handle<T>> {
public:
  /// Holds a target of its own, copied or moved; a null pointer stands for the default target.
  /// @{
  Handle() : block_(new Block(T())) {}
  Handle(const T& target) : block_(new Block(target)) {}       // NOLINT(google-explicit-constructor)
  Handle(T&& target) : block_(new Block(std::move(target))) {} // NOLINT(google-explicit-constructor)
  explicit Handle(std::unique_ptr<T> target) : Handle(target ? std::move(*target) : T()) {}
  /// @}

  /// The target; it lives as long as a handle shares it.
  [[nodiscard]] const T& get() const noexcept { return block_->target; }
  /// The same; unlike `get` of a handle that may be changed, they never copy.
  /// @{
  [[nodiscard]] const T& operator*() const noexcept { return block_->target; }
  [[nodiscard]] const T* operator->() const noexcept { return &block_->target; }
  /// @}
  /// The target for changing it: it is copied first where other handles share it.
  [[nodiscard]] T& get() { return block_.unshared().target; }

  friend std::size_t hash_value(const Handle& h) { return hash_value(h.get()); }
  friend void incorporate_data(DigestSink& sink, const Handle& h) { incorporate_data(sink, h.get()); }
  friend Ordering compare(const Handle& a, const Handle& b) {
    return a.block_ == b.block_ ? Ordering::Equal : compare(a.get(), b.get());
  }
  friend bool operator==(const Handle& a, const Handle& b) { return a.block_ == b.block_ || a.get() == b.get(); }
  friend bool equal_ignore_annotation(const Handle& a, const Handle& b) {
    return equal_ignore_annotation(a.get(), b.get());
  }
  friend void strip_annotation_inplace(Handle& h) { strip_annotation_inplace(h.get()); }
  friend void dump(DumpSink& sink, const Handle& h) { dump(sink, h.get()); }
  friend void swap(Handle& a, Handle& b) noexcept { std::swap(a.block_, b.block_); }

private:
  struct Block final : SharedBlock {
    T target;
    explicit Block(T t) : target(std::move(t)) {}
  };
  SharedPtr<Block> block_;
};
template <class T>
inline constexpr bool hashesByValue<Handle<T>> = true;

} // namespace nvf

/// Says beside the class `T` that its operations are compiled in the library, and what the fields that count are
/// called, in their order. A tagged union has no fields.
#define TESSARIN_DECLARE_OPERATIONS(T, ...)                                                                            \
  template <>                                                                                                          \
  struct nvf::ClassNames<T> {                                                                                          \
    static std::string name() { return std::string(nvf::detail::withoutNamespaces(#T)); }                              \
    static constexpr bool isNamed = true;                                                                              \
    static constexpr auto fields = nvf::detail::namesOf(__VA_ARGS__);                                                  \
  };                                                                                                                   \
  extern template struct nvf::Operations<T>
/// Compiles them.
#define TESSARIN_DEFINE_OPERATIONS(T) template struct nvf::Operations<T>
