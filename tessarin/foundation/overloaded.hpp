// One function object made of several, for `visit`.
#pragma once

namespace nvf {

/// The overloads of several function objects as one: `expr.visit(nvf::overloaded{[](const OpExpr& op) {…}, …})`.
template <class... Functions>
struct overloaded : Functions... { // NOLINT(readability-identifier-naming): the name that it has everywhere
  using Functions::operator()...;
};
/// The types are those of the arguments.
template <class... Functions>
overloaded(Functions...) -> overloaded<Functions...>;

} // namespace nvf
