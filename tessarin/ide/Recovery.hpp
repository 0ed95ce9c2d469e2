// All the faults of a text, and the tree of what is left without them.
//
// The exact parser tells one fault and stops; it stays the only judge. Here the statement that it found faulty is
// masked, that is, replaced by blanks, or a word of structure that is missing, too many or misspelt is mended, and the
// parser is asked again, until it finds nothing. What is invented on the way never shows: every place is one of the
// text as it is.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/message.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"

#include <cstddef>
#include <exception>
#include <optional>
#include <vector>

namespace tessarin::ide {

/// What `check` is to do.
struct CheckOptions {
  /// How many faults are told at the most. With 1, the text is read once, and nothing is mended.
  std::size_t maxFaults = 20;
};

/// Something to tell about a text. Lines and columns count from 0, columns in UTF-16 code units.
struct Finding {
  /// What is said: the id, the arguments, the sentence.
  nvf::Message message;
  /// How grave it is.
  nvf::Severity severity = nvf::Severity::Error;
  /// From the place that the message is about to the end of the token there, in the text as it is; nothing where the
  /// library tells no line.
  std::optional<nvf::Range> range{};
  /// False where the library tells the line alone; the range is then that of the statement in the line.
  bool hasColumn = false;
  /// The word that was probably meant by the one that is at fault.
  std::optional<nvf::ustring> suggestion{};
};

/// A change of structure that was made for the check.
struct Repair {
  /// What was done: an `end` inserted, an `end` left out, a word read as another one, the head of a block replaced by
  /// one without a fault.
  enum class Kind { InsertedEnd, DroppedEnd, ReplacedWord, ReplacedHead };

  Kind kind = Kind::InsertedEnd; ///< What was done.
  /// What was replaced, or the place of the insertion, in the text as it is.
  nvf::Range range;
  /// What was read in its place.
  nvf::ustring text;
};

/// What is found in a text.
struct CheckResult {
  /// The faults. The first one is that which the library tells of the text as it is; the others are in order of place.
  std::vector<Finding> faults;
  /// The warnings in the order in which they were issued.
  std::vector<Finding> warnings;
  /// Whether all faults are told: false where there are more than asked for, or where one could not be passed over.
  bool isComplete = true;
  /// The tree of the text outside of the masked stretches, with the repairs; nothing where none can be built. Its
  /// places are those of the text as it is, but for what stands behind a replaced head or word on the same line.
  std::optional<compiler::core::TSNFile> file;
  /// The stretches that were masked, in the order in which that was done.
  std::vector<nvf::Range> masked;
  /// The changes of structure, in the order in which they were made.
  std::vector<Repair> repairs;
  /// What ended the check without a message: a fatal diagnostic, a lack of memory. There is no tree then.
  std::exception_ptr failure;
};

/// Takes the text through all stages, as `buildFile` and `setupFunctionOf` do, and tells what is wrong with it.
/// Warnings go into the result and not to the sink. Throws nothing that the text could cause.
///
/// A text without a fault is read once. Each fault costs one reading of the text at best and three at the worst, each
/// of which takes linear time. Safe from any thread.
TESSARIN_EXPORT CheckResult check(const nvf::SourceBuffer& source, const CheckOptions& options = {});

} // namespace tessarin::ide
