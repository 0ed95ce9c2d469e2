// What is wrong with an input, as text for people: the place, the sentence, the line of source and a caret.
#pragma once

#include "Outcome.hpp"
#include "Source.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace tessarin::tool {

/// Writes findings about one input, such as
///
///   wall.tsn:4:18: error: An 'if' expression needs an 'else' branch. [IfWithNoElse]
///       y == if a, 1 end;
///                    ^~~
///
/// The caret and the tildes stand under the token at the place. Lines and columns count from 1, columns in UTF-16 code
/// units. Of a long line only the surroundings of the place are shown, so that a report is short whatever the input is.
class Report {
public:
  /// `path` as the command line has it. `source` is looked at when a finding is written; where it holds nothing, no
  /// source is shown.
  Report(const std::string& path, const std::optional<Source>& source, bool colours);

  [[nodiscard]] std::string warning(const Finding& about) const;
  [[nodiscard]] std::string failure(const Failure& failure) const;

private:
  struct FailureText;

  /// A line of the report: the path and the place, what it is, and the sentence.
  [[nodiscard]] std::string headline(std::string_view place, std::string_view colour, std::string_view label,
                                     std::string_view text) const;
  [[nodiscard]] std::string finding(const Finding& finding, std::string_view colour, std::string_view label) const;
  [[nodiscard]] std::string snippet(const Finding& finding) const;
  [[nodiscard]] std::string coloured(std::string_view colour, std::string_view text) const;

  std::string path_;
  const std::optional<Source>& source_;
  bool colours_;
};

} // namespace tessarin::tool
