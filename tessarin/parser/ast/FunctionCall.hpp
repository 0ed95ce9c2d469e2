// Calls of functions that later stages have resolved. Source text yields a `Variable` with an argument list; these come
// into being behind the builder and travel through text as calls of reserved names.
#pragma once

#include "tessarin/parser/ast/Subscript.hpp"

#include <map>
#include <optional>
#include <vector>

namespace tessarin::compiler::core {

/// What all calls share. `Derived` is the class of the call, `Extra` its further fields.
template <class Derived, class... Extra>
class TESSARIN_EXPORT FunctionCallBase
    : public nvf::TupleWrapper<Derived*, nvf::CxIdPath, std::vector<Expr>, std::map<nvf::CxId, Expr>, bool, Extra...,
                               IgnoredRange> {
  using Base = nvf::TupleWrapper<Derived*, nvf::CxIdPath, std::vector<Expr>, std::map<nvf::CxId, Expr>, bool, Extra...,
                                 IgnoredRange>;

public:
  /// The values by name, in the order of the names.
  using NamedArguments = std::map<nvf::CxId, Expr>;

  /// The dotted name of the function.
  [[nodiscard]] const nvf::CxIdPath& path() const noexcept { return this->template get<0>(); }
  /// In the order of the source.
  [[nodiscard]] const std::vector<Expr>& positionalArguments() const noexcept { return this->template get<1>(); }
  /// By name.
  [[nodiscard]] const NamedArguments& namedArguments() const noexcept { return this->template get<2>(); }
  /// Whether the call was made without an argument list: `f`, and not `f()`.
  [[nodiscard]] bool noArguments() const noexcept { return this->template get<3>(); }
  /// The argument list, absent where `noArguments()`; it and its names have empty ranges.
  [[nodiscard]] std::optional<Arguments> arguments() const;

protected:
  using Base::Base;
};

/// A call of a built-in function.
class TESSARIN_EXPORT NativeFunctionCall : public FunctionCallBase<NativeFunctionCall> {
public:
  /// The constructor without arguments makes a call without an argument list.
  /// @{
  NativeFunctionCall(const nvf::CxIdPath& path, const nvf::Range& range);
  NativeFunctionCall(const nvf::CxIdPath& path, const std::vector<Expr>& positional, const NamedArguments& named,
                     const nvf::Range& range);
  /// "internal_native_function_call__".
  static const nvf::CxId& ctor();
  /// @}
};

/// A call of a function of the host language.
class TESSARIN_EXPORT CalvexFunctionCall : public FunctionCallBase<CalvexFunctionCall, bool, bool, bool> {
public:
  /// The constructor without arguments makes a call without an argument list. The flags are those of the stage that has
  /// resolved the call: they are carried and printed, and nothing here looks at them.
  /// @{
  CalvexFunctionCall(const nvf::CxIdPath& path, bool isEnum, bool dottedEnum, bool evalCompileTime,
                     const nvf::Range& range);
  CalvexFunctionCall(const nvf::CxIdPath& path, const std::vector<Expr>& positional, bool isEnum, bool dottedEnum,
                     bool evalCompileTime, const nvf::Range& range);
  [[nodiscard]] bool isEnum() const noexcept { return get<4>(); }
  [[nodiscard]] bool dottedEnum() const noexcept { return get<5>(); }
  [[nodiscard]] bool evalCompileTime() const noexcept { return get<6>(); }
  /// "internal_calvex_function_call__".
  static const nvf::CxId& ctor();
  /// @}
};

/// A call of a function of the language by its full path.
class TESSARIN_EXPORT TessarinFunctionCall : public FunctionCallBase<TessarinFunctionCall> {
public:
  /// The constructor without arguments makes a call without an argument list.
  /// @{
  TessarinFunctionCall(const nvf::CxIdPath& path, const nvf::Range& range);
  TessarinFunctionCall(const nvf::CxIdPath& path, const std::vector<Expr>& positional, const nvf::Range& range);
  /// "internal_tessarin_function_call__".
  static const nvf::CxId& ctor();
  /// @}
};

/// A call of the local function `fcnId` of the file `path`.
class TESSARIN_EXPORT TessarinLocalFunctionCall : public FunctionCallBase<TessarinLocalFunctionCall, nvf::CxId> {
public:
  /// The constructor without arguments makes a call without an argument list.
  /// @{
  TessarinLocalFunctionCall(const nvf::CxIdPath& path, const nvf::CxId& fcnId, const nvf::Range& range);
  TessarinLocalFunctionCall(const nvf::CxIdPath& path, const nvf::CxId& fcnId, const std::vector<Expr>& positional,
                            const nvf::Range& range);
  [[nodiscard]] const nvf::CxId& fcnId() const noexcept { return get<4>(); }
  /// "internal_tessarin_local_function_call__".
  static const nvf::CxId& ctor();
  /// @}
};

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::NativeFunctionCall, "path", "positionalArguments",
                            "namedArguments", "noArguments");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::CalvexFunctionCall, "path", "positionalArguments",
                            "namedArguments", "noArguments", "isEnum", "dottedEnum", "evalCompileTime");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::TessarinFunctionCall, "path", "positionalArguments",
                            "namedArguments", "noArguments");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::TessarinLocalFunctionCall, "path", "positionalArguments",
                            "namedArguments", "noArguments", "fcnId");
