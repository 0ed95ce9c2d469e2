// What comes of running a stage of the library on an input: warnings, and a failure where there is no answer.
#pragma once

#include "tessarin/foundation/message.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/foundation/warning.hpp"

#include "JsonWriter.hpp"
#include "Source.hpp"
#include "Status.hpp"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessarin::tool {

/// A message about the input, and the place in the input that it is about.
struct Finding {
  nvf::Message message;
  std::optional<std::size_t> line;   ///< from 0
  std::optional<std::size_t> column; ///< from 0, in UTF-16 code units; where it is known, so is the line
  /// The column behind the token at the place, which ends on the same line; nothing before it is looked for.
  std::optional<std::size_t> endColumn;

  /// The place is that of the message.
  explicit Finding(const nvf::Message& message);
  /// The place is that of the exception.
  explicit Finding(const nvf::LocationException& exception);
  /// The place is that of the message, or else the line that the exception's stack begins with.
  explicit Finding(const nvf::MessageException& exception);
};

/// An exception that is no message: bytes that are not UTF-8, a file that cannot be read, a lack of memory.
struct OtherException {
  std::string className; ///< with its namespaces
  std::string what;      ///< in UTF-8
  Status status;
  bool isSelfExplaining = false; ///< whether `what` says to a user of the tool what is wrong
};

/// Why there is no answer: a fault in the input, a fatal diagnostic, or another exception.
using Failure = std::variant<Finding, nvf::FatalDiagnostic, OtherException>;

/// Looks for the ends of findings in the input that they are about.
void addEnds(const Source& source, std::vector<Finding>& warnings, std::optional<Failure>& failure);

/// Runs `stage`, with its warnings going to `sink`, and returns what it throws as a failure. Standard input has no name
/// that a model could differ from, so warnings that say so are dropped. Safe from any thread, once
/// `nvf::throw_fatal_error` handles fatal diagnostics.
std::optional<Failure> observe(const nvf::WarningSink& sink, const std::function<void()>& stage);

/// The exit status for a file with this outcome.
Status statusOf(const std::optional<Failure>& failure);

/// What a failure without a place is told as, in one line of UTF-8.
std::string sentence(const nvf::FatalDiagnostic& fatal);
std::string sentence(const OtherException& error);

/// The family of a message: what stands in the name of its catalog behind the part that all have in common.
std::string_view familyOf(const nvf::BaseMsgID& id);

/// Writes `{"family":…,"id":…,"arguments":[…],"line":…,"column":…,"endLine":…,"endColumn":…}`. The argument that says
/// where is left out, for line and column say it. A place that is not known is null, an end that is not known left out.
void writeJson(JsonWriter& json, const Finding& finding);
/// Writes the member of an object that stands in the place of the answer: "fault", "fatal" or "error".
void writeJsonMember(JsonWriter& json, const Failure& failure);

} // namespace tessarin::tool
