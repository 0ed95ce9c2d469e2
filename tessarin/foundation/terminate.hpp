// Fatal diagnostics: what happens when the library finds itself misused or in a state that no text leads to.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/exception.hpp"

#include <string>

namespace nvf {

/// A fatal diagnostic: what is wrong, and where in the library it was found.
struct FatalDiagnostic {
  /// What is wrong, and the file, the line, from 1, and the function of this library that found it.
  /// @{
  std::string text;
  std::string sourceFile;
  int line;
  std::string signature;
  /// @}
};

/// Called for a fatal diagnostic. It may throw, so that a host survives; if it returns, the process is aborted.
using TerminateHandler = void (*)(const FatalDiagnostic&);

/// Replaces the handler of the process and returns the former one; null stands for the default, which writes the
/// diagnostic to standard error and aborts. Safe from any thread.
TESSARIN_EXPORT TerminateHandler set_terminate_handler(TerminateHandler handler) noexcept;

/// Reports a fatal diagnostic to the handler. Never returns; throws what the handler throws.
[[noreturn]] TESSARIN_EXPORT void terminate(const char* text, const char* sourceFile, int line, const char* signature);

/// What `throw_fatal_error` throws.
class TESSARIN_EXPORT FatalError : public Exception {
public:
  /// With what the handler was told.
  explicit FatalError(FatalDiagnostic diagnostic);
  FatalError(const FatalError&) = default;
  FatalError(FatalError&&) = default;
  FatalError& operator=(const FatalError&) = default;
  FatalError& operator=(FatalError&&) = default;
  ~FatalError() override;
  /// What the handler was told.
  [[nodiscard]] const FatalDiagnostic& diagnostic() const noexcept { return diagnostic_; }

private:
  FatalDiagnostic diagnostic_;
};

/// A handler for hosts that must survive: throws `FatalError`.
[[noreturn]] TESSARIN_EXPORT void throw_fatal_error(const FatalDiagnostic& diagnostic);

} // namespace nvf
