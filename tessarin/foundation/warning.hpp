// The sink of warnings.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/message.hpp"

#include <functional>

namespace nvf {

/// Receives the warnings. What it throws passes through whoever warned.
using WarningSink = std::function<void(const Message&)>;

/// Where warnings go: the innermost `ScopedWarningSink` of the thread, or else the sink of the process, which writes
/// them to standard error unless a host has replaced it. Processing goes on after a warning, unless the sink throws.
class TESSARIN_EXPORT Warning {
public:
  /// The one of the process.
  static Warning& get();

  /// Hands the message to the sink. Safe from any thread, as far as the sink is.
  void issueWarning(const Message& message);
  /// Replaces the sink of the process and returns the former one; an empty one stands for the default. Safe from any
  /// thread; a warning that is on its way still goes to the sink that it found.
  WarningSink sink(WarningSink sink);

private:
  Warning() = default;
};

/// Collects the warnings of this thread while it lives. Scopes nest.
class TESSARIN_EXPORT ScopedWarningSink {
public:
  /// Warnings of other threads still go where they went. An empty sink stands for the default.
  explicit ScopedWarningSink(WarningSink sink);
  ~ScopedWarningSink();
  ScopedWarningSink(const ScopedWarningSink&) = delete;
  ScopedWarningSink& operator=(const ScopedWarningSink&) = delete;

private:
  friend class Warning;
  WarningSink sink_;
  ScopedWarningSink* outer_;
};

/// Issues the warning `Msg` at a place; `arguments` follow the place, which is said without its column.
template <class Msg, class... Arguments>
void file_line_warning(const Location& location, const Arguments&... arguments) {
  Warning::get().issueWarning(Message(Msg(file_line_message(location), arguments...), location));
}

} // namespace nvf
