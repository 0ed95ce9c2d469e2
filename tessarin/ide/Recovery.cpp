#include "tessarin/ide/Recovery.hpp"

#include "tessarin/foundation/warning.hpp"
#include "tessarin/ide/Blocks.hpp"
#include "tessarin/ide/Spelling.hpp"
#include "tessarin/ide/Stages.hpp"
#include "tessarin/ide/Statements.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

namespace tessarin::ide {

using compiler::core::Kind;

namespace {

/// A line and a column, or the line alone.
struct Place {
  std::size_t line = 0;
  std::optional<std::size_t> column{};

  friend auto operator<=>(const Place&, const Place&) = default;
};

struct Fault {
  nvf::Message message;
  std::optional<Place> place;
};

Place placeOf(const nvf::Location& location) {
  return {location.lineColumn().line(), location.lineColumn().column()};
}

Fault faultOf(const nvf::MessageException& exception) {
  Fault fault{exception.message(), std::nullopt};
  if (fault.message.location()) {
    fault.place = placeOf(*fault.message.location());
  } else if (!exception.stack().empty()) {
    fault.place = Place{exception.stack().front().line};
  }
  return fault;
}

/// `length` units at `offset` become `text`.
struct Edit {
  std::size_t offset;
  std::size_t length;
  nvf::ustring text;
};

/// The stretch as blanks, its line ends kept.
nvf::ustring blanksFor(nvf::ustring_view stretch) {
  nvf::ustring blanks(stretch);
  for (char16_t& unit : blanks) {
    if (unit != u'\n' && unit != u'\r') unit = u' ';
  }
  return blanks;
}

bool hasId(const Fault& fault, std::string_view id) {
  return fault.message.id().id == id;
}

/// Words of which the one at the place of a message may be a misspelling.
struct WordsRow {
  std::string_view id;
  std::initializer_list<nvf::ustring_view> words;
};

const WordsRow wordsOfMessages[] = {
    {"InvalidAttributeForAssert", {u"Warn", u"Action"}},
    {"InvalidValueForWarn", {u"true", u"false"}},
    {"SimpleSetupUnsupportedStatement", {u"error", u"warning"}},
};

class Recovery {
public:
  Recovery(const nvf::SourceBuffer& source, const CheckOptions& options)
      : source_(source), options_(options), text_(source.text()) {}

  CheckResult run() {
    std::optional<Fault> fault = ask();
    result_.warnings = warnings_;
    // Each fault is told, or a step on the way to pass one over: how many of these there may be is bounded, too.
    const std::size_t maxSteps = 3 * options_.maxFaults;
    for (std::size_t steps = 0; fault; ++steps) {
      if (options_.maxFaults <= 1 || steps == maxSteps) {
        if (result_.faults.empty()) tell(*fault);
        result_.isComplete = false;
        break;
      }
      if (!passOver(*fault)) {
        result_.isComplete = false;
        break;
      }
      fault = ask();
      if (result_.failure) break;
    }
    if (trial_ && result_.isComplete) accept();
    finish();
    return std::move(result_);
  }

private:
  using Key = std::pair<std::size_t, std::size_t>;
  using AnomalyKey = std::tuple<Anomaly::Kind, std::size_t, std::size_t>;

  /// Mends on trial: they stay if the fault for which they were made is gone.
  struct Trial {
    Fault fault;
    std::size_t finding; // what was told of it
    std::vector<Anomaly> anomalies;
    std::vector<Repair> repairs;
    nvf::ustring textBefore;
  };

  // ---- asking ----

  std::optional<Fault> ask() {
    warnings_.clear();
    const nvf::WarningSink sink = [this](const nvf::Message& message) { warn(message); };
    const nvf::ScopedWarningSink scope(sink);
    result_.file.reset();
    try {
      compiler::core::TSNFile file = buildFile({source_.fileName(), nvf::ustring_view(text_)}, sink);
      static_cast<void>(setupFunctionOf(file));
      result_.file = std::move(file);
      return std::nullopt;
    } catch (const nvf::LocationException& e) {
      return Fault{e.message(), placeOf(e.location())};
    } catch (const nvf::MessageException& e) {
      return faultOf(e);
    } catch (...) {
      result_.failure = std::current_exception();
      result_.isComplete = false;
      return std::nullopt;
    }
  }

  void warn(const nvf::Message& message) {
    Finding finding{message, message.severity()};
    if (message.location()) setRange(finding, placeOf(*message.location()));
    warnings_.push_back(std::move(finding));
  }

  // ---- telling ----

  const Statements& original() {
    if (!original_) original_.emplace(source_.text());
    return *original_;
  }

  [[nodiscard]] nvf::Location locationOf(const Statements& in, std::size_t offset) const {
    return {source_.fileName(), nvf::LineColumn(in.lineOf(offset), in.columnOf(offset))};
  }

  [[nodiscard]] nvf::Range rangeOf(const Statements& in, std::size_t begin, std::size_t end) const {
    return {locationOf(in, begin), locationOf(in, end)};
  }

  void setRange(Finding& finding, const Place& place) {
    try {
      const Statements& text = original();
      finding.hasColumn = place.column.has_value();
      std::size_t begin = text.offsetOf(place.line, place.column.value_or(0));
      std::size_t end = text.tokenEnd(begin);
      if (!finding.hasColumn) {
        end = text.offsetOf(place.line, static_cast<std::size_t>(-1));
        while (begin < end && (text.text()[begin] == u' ' || text.text()[begin] == u'\t')) ++begin;
      }
      // A token that a fault makes of all that follows is shown as far as its line.
      const std::size_t lineEnd = std::max(begin, text.lineEnd(text.lineOf(begin)));
      // Of the text as it is, the library's place counts; of a changed one what the text has there.
      const bool isAsTold = result_.faults.empty() && place.column;
      if (isAsTold && (place.line >= text.lineCount() || text.columnOf(begin) != *place.column)) {
        const nvf::Location told(source_.fileName(), nvf::LineColumn(place.line, *place.column));
        finding.range = nvf::Range(told, told);
        return;
      }
      finding.range = rangeOf(text, begin, std::min(std::max(begin, end), lineEnd));
    } catch (const nvf::LineColumn::ValueTooLarge&) { // too far right for a place
      finding.range.reset();
    }
  }

  void tell(const Fault& fault) {
    Finding finding{fault.message, fault.message.severity()};
    if (fault.place) setRange(finding, *fault.place);
    finding.suggestion = suggestionFor(fault);
    result_.faults.push_back(std::move(finding));
    if (fault.place) told_.insert(*fault.place);
  }

  std::optional<nvf::ustring> suggestionFor(const Fault& fault) {
    if (!fault.place) return std::nullopt;
    const Statements& text = original();
    std::size_t offset = text.offsetOf(fault.place->line, fault.place->column.value_or(0));
    const auto at = text.statementAt(offset);
    if (!at) return std::nullopt;
    const Statement& statement = text.all()[*at];
    const CodeToken& first = text.tokensOf(statement).front();
    if (!fault.place->column) offset = first.begin;
    for (const WordsRow& row : wordsOfMessages) {
      if (!hasId(fault, row.id)) continue;
      const nvf::ustring_view word = text.text().substr(offset, text.tokenEnd(offset) - offset);
      if (const auto meant = nearestWord(word, {row.words.begin(), row.words.size()})) return nvf::ustring(*meant);
    }
    const bool atHead =
        offset == first.begin || text.tokensOf(statement).size() == 1 || offset <= text.tokensOf(statement)[1].end;
    if (!atHead) return std::nullopt;
    if (!originalBlocks_) originalBlocks_ = blocksOf(text);
    const auto meant = meantKeyword(text, *originalBlocks_, *at);
    return meant ? std::optional(nvf::ustring(*meant)) : std::nullopt;
  }

  // ---- passing over ----

  /// Tells the fault, unless it follows from one that was told, and changes the text so that it is gone. False where
  /// nothing more can be done.
  bool passOver(Fault fault) {
    if (trial_) {
      const bool isThere = fault.place && trial_->fault.place && *fault.place <= *trial_->fault.place;
      if (isThere && trial_->anomalies.size() == 1) {
        fault = reject();
      } else {
        accept();
      }
    }
    if (!fault.place) {
      if (result_.faults.empty()) tell(fault);
      return false;
    }
    divide();
    const std::size_t line = std::min(fault.place->line, statements_->lineCount() - 1);
    offset_ = statements_->offsetOf(line, fault.place->column.value_or(0));
    statement_ = statements_->statementAt(offset_);
    if (!told_.contains(*fault.place) && !follows(fault)) {
      if (result_.faults.size() == options_.maxFaults) return false;
      tell(fault);
    }
    return repair(fault);
  }

  void divide() {
    statements_.emplace(text_);
    blocks_ = blocksOf(*statements_);
  }

  [[nodiscard]] const Statement& at(std::size_t i) const { return statements_->all()[i]; }
  [[nodiscard]] std::size_t beginOf(std::size_t i) const { return statements_->tokens()[at(i).firstToken].begin; }
  [[nodiscard]] Key keyOf(std::size_t block) const {
    const Statement& opener = at(blocks_.all[block].opener);
    return {opener.line, opener.column};
  }

  /// Whether the fault comes of a mask: it is in the same line, or at the bounds of the block that lost a statement.
  [[nodiscard]] bool follows(const Fault& fault) const {
    if (!statement_) return !told_.empty() && fault.place->line + 1 >= statements_->lineCount() && endWasTold_;
    if (maskedLines_.contains(at(*statement_).line)) return true;
    const std::size_t block = blocks_.innermost[*statement_];
    return at(*statement_).hasRole && block != Block::none && thinned_.contains(keyOf(block));
  }

  bool repair(const Fault& fault) {
    if (statements_->openComment() && hasId(fault, "UnterminatedBlockComment")) {
      mask(*statements_->openComment(), text_.size());
      return true;
    }
    if (const auto open = openBracketBefore(offset_)) {
      maskStatement(*open);
      return true;
    }
    const bool atEnd = !statement_ || hasId(fault, "MissingEnd") || hasId(fault, "IncompleteStatement");
    if (atEnd) endWasTold_ = true;
    if (tryMend(fault, atEnd)) return true;
    if (!statement_ || hasId(fault, "IncompleteStatement")) return false;
    const Statement& statement = at(*statement_);
    if (maskInOneLine(*statement_)) return true;
    if (!statement.hasRole) {
      maskStatement(*statement_);
      return true;
    }
    return passOverBounds(fault);
  }

  [[nodiscard]] std::optional<std::size_t> openBracketBefore(std::size_t offset) const {
    for (std::size_t i = statements_->all().size(); i-- > 0;) {
      if (at(i).isOpen && beginOf(i) <= offset) return offset <= at(i).shadow ? std::optional(i) : std::nullopt;
    }
    return std::nullopt;
  }

  // ---- mends ----

  /// Tries the nearest mend before the fault; at the end of the text, where the cause may be anywhere, all of them.
  bool tryMend(const Fault& fault, bool atEnd) {
    if (fault.message.id().catalog.find(":parse") == std::string::npos) return false;
    std::vector<Anomaly> chosen;
    for (const Anomaly& anomaly : blocks_.anomalies) {
      if (rejected_.contains({*fault.place, keyOf(anomaly)})) continue;
      if (atEnd) {
        chosen.push_back(anomaly);
      } else if (anomaly.noticed <= offset_ && (chosen.empty() || chosen.front().offset <= anomaly.offset)) {
        chosen = {anomaly};
      }
    }
    if (chosen.empty() && !atEnd) addEndAtFault(fault, chosen);
    if (chosen.empty()) return false;
    std::stable_sort(chosen.begin(), chosen.end(),
                     [](const Anomaly& a, const Anomaly& b) { return a.offset > b.offset; });
    Trial trial{fault, findingOf(fault), chosen, {}, text_};
    for (const Anomaly& anomaly : chosen) trial.repairs.push_back(mend(anomaly));
    trial_ = std::move(trial);
    return true;
  }

  /// An `end` that does not fit may be one too many where there are more of them than blocks, whatever the indentation.
  void addEndAtFault(const Fault& fault, std::vector<Anomaly>& chosen) const {
    if (!statement_ || offset_ != beginOf(*statement_)) return;
    const CodeToken& word = statements_->tokensOf(at(*statement_)).front();
    if (word.kind != Kind::END) return;
    std::ptrdiff_t tooMany = 0;
    for (const Anomaly& anomaly : blocks_.anomalies) {
      tooMany += anomaly.kind == Anomaly::Kind::ExtraEnd ? 1 : anomaly.kind == Anomaly::Kind::MissingEnd ? -1 : 0;
    }
    const Anomaly extra{Anomaly::Kind::ExtraEnd, word.begin, word.end - word.begin, {}, word.begin};
    if (tooMany > 0 && !rejected_.contains({*fault.place, keyOf(extra)})) chosen.push_back(extra);
  }

  [[nodiscard]] std::size_t findingOf(const Fault& fault) const {
    for (std::size_t i = 0; i < result_.faults.size(); ++i) {
      const auto& range = result_.faults[i].range;
      if (range && placeOf(range->begin()) == *fault.place) return i;
    }
    return result_.faults.size();
  }

  [[nodiscard]] AnomalyKey keyOf(const Anomaly& anomaly) const {
    return {anomaly.kind, statements_->lineOf(anomaly.offset), statements_->lineOf(anomaly.noticed)};
  }

  /// Changes the text. What is inserted stands behind the last word of its line, so that nothing moves.
  Repair mend(const Anomaly& anomaly) {
    const nvf::Range range = rangeOf(*statements_, anomaly.offset, anomaly.offset + anomaly.length);
    switch (anomaly.kind) {
    case Anomaly::Kind::MissingEnd: {
      const bool separated = anomaly.offset == 0 || text_[anomaly.offset - 1] == u';';
      const bool anotherFollows = anomaly.offset < text_.size() && text_[anomaly.offset] == u'e';
      apply({anomaly.offset, 0, nvf::ustring(separated ? u"" : u";") + u"end" + (anotherFollows ? u";" : u"")});
      return {Repair::Kind::InsertedEnd, range, u"end"};
    }
    case Anomaly::Kind::ExtraEnd:
      apply({anomaly.offset, anomaly.length, nvf::ustring(anomaly.length, u' ')});
      return {Repair::Kind::DroppedEnd, range, u""};
    default: replaceWord(anomaly); return {Repair::Kind::ReplacedWord, range, nvf::ustring(anomaly.word)};
    }
  }

  /// The word takes up blanks behind it, as far as there are any, and leaves the indentation as it is.
  void replaceWord(const Anomaly& anomaly) {
    Edit edit{anomaly.offset, anomaly.length, nvf::ustring(anomaly.word)};
    if (edit.text.size() < edit.length) edit.text.append(edit.length - edit.text.size(), u' ');
    while (edit.length < edit.text.size() && edit.offset + edit.length < text_.size() &&
           text_[edit.offset + edit.length] == u' ') {
      ++edit.length;
    }
    apply(edit);
  }

  void accept() {
    for (Repair& repair : trial_->repairs) {
      if (repair.kind == Repair::Kind::ReplacedWord && trial_->finding < result_.faults.size()) {
        result_.faults[trial_->finding].suggestion = repair.text;
      }
      result_.repairs.push_back(std::move(repair));
    }
    trial_.reset();
  }

  Fault reject() {
    Fault fault = trial_->fault;
    text_ = std::move(trial_->textBefore);
    divide();
    for (const Anomaly& anomaly : trial_->anomalies) rejected_.insert({*fault.place, keyOf(anomaly)});
    trial_.reset();
    return fault;
  }

  // ---- masks ----

  void apply(const Edit& edit) { text_.replace(edit.offset, edit.length, edit.text); }

  void mask(std::size_t begin, std::size_t end) {
    result_.masked.push_back(rangeOf(*statements_, begin, end));
    apply({begin, end - begin, blanksFor(nvf::ustring_view(text_).substr(begin, end - begin))});
  }

  void maskStatements(std::size_t first, std::size_t last, std::size_t around) {
    for (std::size_t i = first; i <= last; ++i) maskedLines_.insert(at(i).line);
    if (around != Block::none) thinned_.insert(keyOf(around));
    mask(beginOf(first), at(last).end);
  }

  void maskStatement(std::size_t i) { maskStatements(i, i, blocks_.innermost[i]); }

  /// Masks the blocks around the statement that open and close in its line, if there are any.
  bool maskInOneLine(std::size_t i) {
    std::size_t block = blocks_.innermost[i];
    std::size_t outermost = Block::none;
    while (block != Block::none && opensAndClosesIn(block, at(i).line)) {
      outermost = block;
      block = blocks_.all[block].parent;
    }
    if (outermost == Block::none) return false;
    maskStatements(blocks_.all[outermost].opener, blocks_.all[outermost].closer, block);
    return true;
  }

  [[nodiscard]] bool opensAndClosesIn(std::size_t block, std::size_t line) const {
    const Block& candidate = blocks_.all[block];
    return candidate.closer != Block::none && at(candidate.opener).line == line && at(candidate.closer).line == line;
  }

  /// A fault in a line that opens, divides or closes a block: its head is replaced by one without a fault, and if that
  /// does not help, all of the block is masked.
  bool passOverBounds(const Fault& fault) {
    const std::size_t block = blocks_.innermost[*statement_];
    if (block == Block::none) return maskStray();
    const Key key = keyOf(block);
    const bool wasThinned = thinned_.contains(key);
    const unsigned attempt = wasThinned ? 1 : attempts_[key]++;
    if (attempt == 0 && replaceHead(fault)) return true;
    return attempt <= 1 && maskBlock(block);
  }

  bool maskBlock(std::size_t index) {
    const Block& block = blocks_.all[index];
    if (block.closer == Block::none || block.kind == Kind::COMPONENT || block.kind == Kind::DDOMAIN) return false;
    maskStatements(block.opener, block.closer, block.parent);
    return true;
  }

  /// A word of structure outside of any block.
  bool maskStray() {
    if (statements_->role(at(*statement_).firstToken) == WordRole::Opens) return false;
    maskStatement(*statement_);
    return true;
  }

  /// Blanks out what stands behind the word of structure, and puts there what the block needs.
  bool replaceHead(const Fault& fault) {
    const Statement& statement = at(*statement_);
    const auto tokens = statements_->tokensOf(statement);
    std::size_t t = 0;
    while (t < tokens.size() && statements_->role(statement.firstToken + t) == WordRole::None) ++t;
    if (t == tokens.size() || (t > 0 && offset_ <= tokens[t].begin)) return false;
    if (offset_ == tokens[t].begin && fault.place->column) return false;
    std::size_t begin = tokens[t].end;
    nvf::ustring head;
    switch (tokens[t].kind) {
    case Kind::IF:
    case Kind::ELSEIF:
    case Kind::WHEN:
    case Kind::ELSEWHEN: head = u" 1"; break;
    case Kind::FOR: head = u" x=1"; break;
    case Kind::MODE: head = u" x"; break;
    case Kind::COMPONENT:
    case Kind::DDOMAIN:
      // The name stays where the fault is behind it.
      if (t + 1 < tokens.size() && tokens[t + 1].kind == Kind::ID && offset_ >= tokens[t + 1].end) {
        begin = tokens[t + 1].end;
      } else {
        head = u" x";
      }
      break;
    case Kind::FUNCTION:
    case Kind::NESTED: return false;
    default: break;
    }
    const std::size_t end = std::max(begin, tokens.back().end);
    if (begin == end && head.empty()) return false;
    nvf::ustring replacement = head;
    const nvf::ustring blanks = blanksFor(nvf::ustring_view(text_).substr(begin, end - begin));
    if (blanks.size() > replacement.size()) replacement += blanks.substr(replacement.size());
    result_.repairs.push_back({Repair::Kind::ReplacedHead, rangeOf(*statements_, begin, end), head});
    apply({begin, end - begin, std::move(replacement)});
    return true;
  }

  // ---- the end ----

  void finish() {
    // The later readings see what the first one did not come to.
    for (Finding& warning : warnings_) {
      const bool isNew = std::none_of(result_.warnings.begin(), result_.warnings.end(), [&](const Finding& known) {
        return known.message.id() == warning.message.id() && known.message.location() == warning.message.location();
      });
      if (isNew) result_.warnings.push_back(std::move(warning));
    }
    if (result_.faults.size() < 2) return;
    std::stable_sort(result_.faults.begin() + 1, result_.faults.end(), [](const Finding& a, const Finding& b) {
      return a.range && b.range && a.range->begin().lineColumn() < b.range->begin().lineColumn();
    });
  }

  const nvf::SourceBuffer& source_;
  const CheckOptions& options_;
  nvf::ustring text_; // with all changes
  CheckResult result_;
  std::vector<Finding> warnings_; // of the last reading
  std::optional<Statements> original_;
  std::optional<Blocks> originalBlocks_;
  std::optional<Statements> statements_; // of the text with all changes
  Blocks blocks_;
  std::size_t offset_ = 0; // of the fault
  std::optional<std::size_t> statement_;
  std::optional<Trial> trial_;
  std::set<Place> told_;
  bool endWasTold_ = false;
  std::set<std::pair<Place, AnomalyKey>> rejected_; // mends that did not help a fault
  std::set<std::size_t> maskedLines_;
  std::set<Key> thinned_;            // blocks that lost a statement
  std::map<Key, unsigned> attempts_; // at the bounds of blocks
};

} // namespace

CheckResult check(const nvf::SourceBuffer& source, const CheckOptions& options) {
  return Recovery(source, options).run();
}

} // namespace tessarin::ide
