// `tsn check` in SARIF 2.1.0: findings are results, each message is a rule, and what keeps a file from being checked is
// a notification of the run.
#include "CheckFormat.hpp"
#include "JsonWriter.hpp"
#include "Uri.hpp"

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace tessarin::tool {

namespace {

constexpr std::string_view schema =
    "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";

constexpr std::string_view levelOf(nvf::Severity severity) {
  return severity == nvf::Severity::Error ? "error" : "warning";
}

/// The name of the rule of a message: its full id without what all have in common.
std::string ruleIdOf(const nvf::BaseMsgID& id) {
  return std::string(familyOf(id)) + ":" + id.id;
}

/// The sentence of the catalog with an ellipsis for each argument; the id of a message whose sentence is an argument.
nvf::ustring descriptionOf(const nvf::MessageInfo& row) {
  const nvf::ustring ellipsis = u"…";
  const std::vector<nvf::MessageArgument> arguments(row.arguments.size(), ellipsis);
  const nvf::Message message({arguments, std::string(row.catalog), std::string(row.id)});
  const nvf::ustring text = message.text();
  return text == ellipsis ? nvf::widen(row.id) : text;
}

/// Writes a text as a member. Single braces would stand for placeholders: those that are meant are doubled.
void writeMessage(JsonWriter& json, std::string_view key, nvf::ustring_view text) {
  nvf::ustring doubled;
  doubled.reserve(text.size());
  for (const char16_t unit : text) doubled.append(unit == u'{' || unit == u'}' ? 2 : 1, unit);
  json.key(key).beginObject().key("text").string(doubled).endObject();
}

void writeLocations(JsonWriter& json, const std::string& uri, const Finding* finding) {
  json.key("locations").beginArray().beginObject().key("physicalLocation").beginObject();
  json.key("artifactLocation").beginObject().key("uri").word(uri).endObject();
  if (finding != nullptr && finding->line) {
    json.key("region").beginObject().key("startLine").number(*finding->line + 1);
    if (finding->column) json.key("startColumn").number(*finding->column + 1);
    if (finding->endColumn) json.key("endLine").number(*finding->line + 1);
    if (finding->endColumn) json.key("endColumn").number(*finding->endColumn + 1);
    json.endObject();
  }
  json.endObject().endObject().endArray();
}

/// What a finding is known by although lines before it come and go: a hash of its rule and of its line of source,
/// without blanks, and which one of those that have the same hash it is in its file, from 1.
class Fingerprints {
public:
  explicit Fingerprints(const std::optional<Source>& source) : source_(source) {}

  std::string of(const Finding& finding) {
    std::uint64_t hash = 0xcbf29ce484222325; // FNV-1a, which gives the same everywhere
    const auto add = [&hash](std::uint64_t unit) { hash = (hash ^ unit) * 0x100000001b3; };
    for (const char c : ruleIdOf(finding.message.id())) add(static_cast<unsigned char>(c));
    if (source_ && finding.line) {
      for (const char16_t unit : source_->line(*finding.line)) {
        if (unit != u' ' && unit != u'\t') add(unit);
      }
    }
    std::ostringstream text;
    text << std::hex << std::setfill('0') << std::setw(16) << hash << std::dec << ':' << ++counts_[hash];
    return std::move(text).str();
  }

private:
  const std::optional<Source>& source_;
  std::unordered_map<std::uint64_t, std::size_t> counts_;
};

class SarifFormat final : public CheckFormat {
public:
  explicit SarifFormat(Console& console) : console_(console), json_(console.out()) {
    json_.beginObject().key("$schema").word(schema).key("version").word("2.1.0");
    json_.key("runs").beginArray().beginObject();
    json_.key("columnKind").word("utf16CodeUnits");
    json_.key("results").beginArray();
  }

  std::function<void()> prepare(CheckedFile file) override {
    Fingerprints fingerprints(file.source);
    std::vector<std::string> marks; // of the warnings, and then of the fault
    for (const Finding& warning : file.warnings) marks.push_back(fingerprints.of(warning));
    const auto* fault = file.failure ? std::get_if<Finding>(&*file.failure) : nullptr;
    if (fault != nullptr) marks.push_back(fingerprints.of(*fault));
    file.source.reset();
    return [this, file = std::move(file), marks = std::move(marks)] { write(file, marks); };
  }

  // Rules and notifications are known only now: members of an object stand in any order.
  void finish(const CheckSummary& summary) override {
    json_.endArray();
    json_.key("tool").beginObject().key("driver").beginObject();
    json_.key("name").word("tsn").key("version").word(TESSARIN_VERSION);
    json_.key("rules").beginArray();
    for (const Rule& rule : rules_) write(rule);
    json_.endArray().endObject().endObject();
    json_.key("invocations").beginArray().beginObject();
    json_.key("executionSuccessful").raw(notifications_.empty() ? "true" : "false");
    json_.key("exitCode").number(static_cast<int>(summary.status));
    json_.key("toolExecutionNotifications").beginArray();
    for (const Notification& notification : notifications_) write(notification);
    json_.endArray().endObject().endArray();
    json_.endObject().endArray().endObject();
    console_.out() << '\n';
  }

private:
  struct Rule {
    nvf::BaseMsgID message; // without arguments
    nvf::Severity severity;
  };

  struct Notification {
    std::string uri;
    std::string text;
    std::string className;
    std::string what;
  };

  void write(const CheckedFile& file, const std::vector<std::string>& marks) {
    const std::string uri = uriOf(Source::displayName(file.path));
    for (std::size_t i = 0; i < file.warnings.size(); ++i) {
      write(uri, file.warnings[i], nvf::Severity::Warning, marks[i]);
    }
    if (!file.failure) return;
    if (const auto* fault = std::get_if<Finding>(&*file.failure)) {
      write(uri, *fault, nvf::Severity::Error, marks.back());
    } else if (const auto* fatal = std::get_if<nvf::FatalDiagnostic>(&*file.failure)) {
      notifications_.push_back({uri, "internal error: " + sentence(*fatal), "nvf::FatalError", fatal->text});
    } else {
      const auto& error = std::get<OtherException>(*file.failure);
      notifications_.push_back({uri, sentence(error), error.className, error.what});
    }
  }

  void write(const std::string& uri, const Finding& finding, nvf::Severity severity, const std::string& mark) {
    const std::string ruleId = ruleIdOf(finding.message.id());
    const auto [entry, isNew] = ruleIndices_.try_emplace(ruleId, rules_.size());
    if (isNew) rules_.push_back({{{}, finding.message.id().catalog, finding.message.id().id}, severity});
    json_.beginObject();
    json_.key("ruleId").string(ruleId).key("ruleIndex").number(entry->second);
    json_.key("level").word(levelOf(severity));
    writeMessage(json_, "message", finding.message.text());
    writeLocations(json_, uri, &finding);
    json_.key("partialFingerprints").beginObject().key("ruleAndLine/v1").word(mark).endObject();
    json_.endObject();
  }

  void write(const Rule& rule) {
    json_.beginObject();
    json_.key("id").string(ruleIdOf(rule.message)).key("name").string(rule.message.id);
    if (const nvf::MessageInfo* row = nvf::find_message(rule.message.catalog, rule.message.id)) {
      writeMessage(json_, "shortDescription", descriptionOf(*row));
      writeMessage(json_, "help",
                   u"The page messages.md of Tessarin's documents shows under '" + nvf::widen(row->id) +
                       u"' what leads to this, and what to do about it.");
    }
    json_.key("defaultConfiguration").beginObject().key("level").word(levelOf(rule.severity)).endObject();
    json_.endObject();
  }

  void write(const Notification& notification) {
    json_.beginObject();
    json_.key("level").word("error");
    writeMessage(json_, "message", nvf::utf8_string_to_ustring(notification.text));
    writeLocations(json_, notification.uri, nullptr);
    json_.key("exception").beginObject();
    json_.key("kind").string(notification.className).key("message").string(notification.what);
    json_.endObject().endObject();
  }

  Console& console_;
  JsonWriter json_;
  std::vector<Rule> rules_; // in the order in which their first results come
  std::unordered_map<std::string, std::size_t> ruleIndices_;
  std::vector<Notification> notifications_;
};

} // namespace

std::unique_ptr<CheckFormat> sarifFormat(Console& console) {
  return std::make_unique<SarifFormat>(console);
}

} // namespace tessarin::tool
