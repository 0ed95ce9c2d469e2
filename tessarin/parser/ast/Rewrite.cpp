// The fields of each class lead to the expressions, so that no class has to be told here how it is made up.
#include "tessarin/parser/ast/Rewrite.hpp"

#include "tessarin/parser/ast/Same.hpp"

#include <tuple>
#include <variant>
#include <vector>

namespace tessarin::compiler::core {

namespace {

template <class T>
inline constexpr bool isHandle = false;
template <class T>
inline constexpr bool isHandle<nvf::Handle<T>> = true;

class PartRewriter {
public:
  explicit PartRewriter(ExprTransformVisitor& visitor) noexcept : visitor_(visitor) {}

  /// What a part has become, or nothing where it has stayed what it was.
  template <class T>
  std::optional<T> change(const T& part) {
    if constexpr (std::same_as<T, Expr>) {
      return changeOf(part, visitor_.process(part));
    } else if constexpr (std::same_as<T, EqnItem>) {
      return changeOf(part, visitor_.process(part));
    } else if constexpr (std::same_as<T, Subscript>) {
      const std::optional<Expr> expr = part.expr() ? change(*part.expr()) : std::nullopt;
      return expr ? std::optional<T>(*expr) : std::nullopt;
    } else if constexpr (std::same_as<T, EqnAssertion>) {
      const EqnItem before(part);
      const std::optional<EqnItem> after = change(before);
      return after ? std::optional<T>(after->get<EqnAssertion>()) : std::nullopt;
    } else if constexpr (std::same_as<T, NamedArgumentName>) {
      return std::nullopt; // names stay, as in an argument list inside an expression
    } else if constexpr (nvf::IsTaggedUnion<T>) {
      return part.visit([&](const auto& alternative) { return wrapped<T>(change(alternative)); });
    } else if constexpr (IsNode<T>) {
      return nvf::detail::walk<T>([&] { return changeOfFields(part); });
    } else if constexpr (isHandle<T>) {
      return wrapped<T>(change(part.get()));
    } else if constexpr (nvf::detail::Optional<T>) {
      if (!part) return std::nullopt;
      auto changed = change(*part);
      return changed ? std::optional<T>(T(std::move(*changed))) : std::nullopt;
    } else if constexpr (nvf::detail::Variant<T>) {
      return std::visit([&](const auto& alternative) { return wrapped<T>(change(alternative)); }, part);
    } else if constexpr (nvf::detail::isExpressions<T>) {
      const std::vector<typename T::value_type> elements(part.begin(), part.end());
      auto changed = change(elements);
      return changed ? std::optional<T>(T(std::move(*changed))) : std::nullopt;
    } else if constexpr (nvf::detail::Sequence<T>) {
      return changeOfElements(part);
    } else {
      return std::nullopt;
    }
  }

private:
  template <class Whole, class Part>
  static std::optional<Whole> wrapped(std::optional<Part> part) {
    return part ? std::optional<Whole>(Whole(std::move(*part))) : std::nullopt;
  }

  /// A copy is made when the first field has changed, and not before.
  template <class T>
  std::optional<T> changeOfFields(const T& node) {
    std::optional<T> result;
    std::apply(
        [&]<class... Fields>(const Fields&...) { changeFields(node, result, std::index_sequence_for<Fields...>()); },
        node.tuple());
    if constexpr (std::same_as<T, TransitionExpr>) { // whose range is that of its expression
      if (result) result.emplace(TransitionExpr(result->expr(), result->preCondition()));
    }
    return result;
  }
  template <class T, std::size_t... I>
  void changeFields(const T& node, std::optional<T>& result, std::index_sequence<I...>) {
    (changeField<I>(node, result), ...);
  }
  template <std::size_t I, class T>
  void changeField(const T& node, std::optional<T>& result) {
    auto changed = change(std::get<I>(node.tuple()));
    if (!changed) return;
    if (!result) result.emplace(node);
    std::get<I>(nvf::detail::OwnFields::of(*result)) = std::move(*changed);
  }

  template <class T>
  std::optional<T> changeOfElements(const T& elements) {
    std::optional<T> result;
    std::size_t i = 0;
    for (const auto& element : elements) {
      if constexpr (nvf::detail::isVector<T> && requires { result->at(i) = element; }) {
        if (auto changed = change(element)) {
          if (!result) result.emplace(elements);
          result->at(i) = std::move(*changed);
        }
      }
      ++i;
    }
    return result;
  }

  ExprTransformVisitor& visitor_;
};

template <class T>
T rewritten(const T& whole, ExprTransformVisitor& visitor) {
  return PartRewriter(visitor).change(whole).value_or(whole);
}

} // namespace

Model rewrite(const Model& model, ExprTransformVisitor& visitor) {
  return rewritten(model, visitor);
}
TSNFunction rewrite(const TSNFunction& function, ExprTransformVisitor& visitor) {
  return rewritten(function, visitor);
}
DeclarativeSections rewrite(const DeclarativeSections& sections, ExprTransformVisitor& visitor) {
  return rewritten(sections, visitor);
}

} // namespace tessarin::compiler::core
