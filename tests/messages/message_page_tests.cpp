// Each message with a text that leads to it, or the reason why none does, and the page that tells users of them.
#include "tessarin/ide/Stages.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/builder/StringEntries.hpp"

#include "support/golden.hpp"
#include "support/parsing.hpp"
#include "tools/tsn/Report.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace tessarin::test {
namespace {

namespace fs = std::filesystem;
using namespace compiler::core;

const std::string dataFile = TESSARIN_TEST_DATA "/messages.txt";
const std::string pageFile = TESSARIN_DOCS "/messages.md";

/// A case of the table; its head says what each part is.
struct Sample {
  std::string advice;
  std::string entry;
  std::string file;
  std::string reason;
  std::string source; ///< with its repetitions folded

  static constexpr const char* usualFile = "tank.tsn";

  explicit Sample(std::string_view text) {
    while (takeProperty(text)) {
    }
    source = text;
    if (file.empty()) file = usualFile;
  }

private:
  /// Takes a line such as `advice: …` off the front of the text; returns whether there was one.
  bool takeProperty(std::string_view& text) {
    const std::pair<std::string_view, std::string*> properties[] = {
        {"advice: ", &advice}, {"entry: ", &entry}, {"file: ", &file}, {"reason: ", &reason}};
    for (const auto& [key, value] : properties) {
      if (!text.starts_with(key)) continue;
      const std::string_view line = text.substr(0, text.find('\n'));
      const std::string_view words = line.substr(std::min(line.find_first_not_of(' ', key.size()), line.size()));
      *value += (value->empty() ? "" : " ") + std::string(words);
      text.remove_prefix(std::min(line.size() + 1, text.size()));
      return true;
    }
    return false;
  }
};

/// The text with each `{{x *3}}` written out.
std::string unfolded(std::string_view text) {
  std::string result;
  for (std::size_t open = 0; (open = text.find("{{")) != std::string_view::npos;) {
    const std::string_view fold = text.substr(open + 2, text.find("}}", open) - open - 2);
    const std::size_t star = fold.rfind(" *");
    result += text.substr(0, open);
    for (int n = std::stoi(std::string(fold.substr(star + 2))); n > 0; --n) result += fold.substr(0, star);
    text.remove_prefix(open + fold.size() + 4);
  }
  return result + std::string(text);
}

using Entry = void (*)(const std::string&);

/// The functions that samples may name.
const std::map<std::string, Entry> entries{
    {"ASTBuilder::buildModelFile",
     [](const std::string& text) {
       static_cast<void>(ASTBuilder().buildModelFile(Parser(bufferOf(text)).parse(), FileSource::open));
     }},
    {"ASTBuilder::buildTSNFunctionFile",
     [](const std::string& text) {
       static_cast<void>(ASTBuilder().buildTSNFunctionFile(Parser(bufferOf(text)).parse(), FileSource::open));
     }},
    {"str_to_annotation", [](const std::string& text) { static_cast<void>(str_to_annotation(text)); }},
    {"str_to_astconnection", [](const std::string& text) { static_cast<void>(str_to_astconnection(text)); }},
    {"str_to_astexpr", [](const std::string& text) { static_cast<void>(str_to_astexpr(text)); }},
    {"str_to_astthrough", [](const std::string& text) { static_cast<void>(str_to_astthrough(text)); }},
    {"str_to_objectref", [](const std::string& text) { static_cast<void>(str_to_objectref(text)); }},
    {"str_to_valueref", [](const std::string& text) { static_cast<void>(str_to_valueref(text)); }},
    {"str_to_whenclause", [](const std::string& text) { static_cast<void>(str_to_whenclause(text)); }},
};

/// What comes of a sample.
struct Outcome {
  std::string table; ///< a line for each message: what it is, its id, its arguments, its place
  std::string page;  ///< what a user is shown
  std::set<std::string> ids;

  void add(const std::string& label, const tool::Finding& finding, const std::string& shown) {
    table += label + describe(finding.message);
    // A line without a column, which a message of the setup family takes from its exception.
    if (!finding.message.location() && finding.line) table += " at " + std::to_string(*finding.line + 1);
    table += '\n';
    page += shown;
    ids.insert(finding.message.id().id);
  }
};

/// Takes a file through all stages, as `tsn check` does.
Outcome outcomeOfFile(const Sample& sample) {
  std::ofstream(sample.file, std::ios::binary) << unfolded(sample.source);
  Outcome outcome;
  std::optional<tool::Source> source;
  const tool::Report report(sample.file, source, false);
  const auto warn = [&](const nvf::Message& message) {
    const tool::Finding finding(message);
    outcome.add("warning ", finding, report.warning(finding));
  };
  const auto failure = tool::observe(warn, [&] {
    source = tool::Source::read(sample.file);
    static_cast<void>(ide::setupFunctionOf(ide::buildFile(source->buffer(), warn)));
  });
  if (failure) outcome.add("error ", std::get<tool::Finding>(*failure), report.failure(*failure));
  return outcome;
}

/// Hands a text to an entry; its warnings are dropped, since the text has no file of its own.
Outcome outcomeOfText(const Sample& sample) {
  Outcome outcome;
  const auto failure =
      tool::observe([](const nvf::Message&) {}, [&] { entries.at(sample.entry)(unfolded(sample.source)); });
  if (!failure) return outcome;
  const auto& finding = std::get<tool::Finding>(*failure);
  outcome.add("error ", finding, nvf::encode_utf8(finding.message.fullMessage()) + '\n');
  return outcome;
}

/// In a folder of its own, where the files of samples have short names.
class Messages : public testing::Test {
public:
  Messages() {
    std::string folder = fs::temp_directory_path() / "tessarin-messages-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = folder;
    fs::current_path(folder_);
  }
  ~Messages() override {
    fs::current_path(former_);
    fs::remove_all(folder_);
  }
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;

protected:
  static Outcome outcomeOf(const Sample& sample) {
    if (!sample.reason.empty()) return {};
    const ThrowingTerminate terminate;
    return sample.entry.empty() ? outcomeOfFile(sample) : outcomeOfText(sample);
  }

private:
  fs::path former_ = fs::current_path();
  fs::path folder_;
};

TEST_F(Messages, HaveEachASampleOrAReason) {
  const GoldenFile table(dataFile);
  std::map<std::string, std::set<bool>> known; // whether there is a reason
  for (const GoldenCase& c : table.cases()) known[c.title].insert(!Sample(c.source).reason.empty());
  for (const nvf::MessageInfo& info : nvf::all_messages()) {
    EXPECT_EQ(known[std::string(info.id)].size(), 1U) << info.id << " has neither, or both";
    known.erase(std::string(info.id));
  }
  for (const auto& [id, reasons] : known) ADD_FAILURE() << "there is no message " << id;
}

// ---- the page ----

std::string inBlock(const std::string& text) {
  return "```\n" + text + (text.ends_with('\n') ? "" : "\n") + "```\n\n";
}

/// The arguments of a message as its text numbers them.
std::string argumentsOf(const nvf::MessageInfo& info) {
  std::string result;
  for (std::size_t i = 0; i < info.arguments.size(); ++i) {
    result += (i == 0 ? "Arguments: `{" : ", `{") + std::to_string(i + 1) + "}` ";
    switch (info.arguments[i]) {
    case nvf::ArgumentKind::Where: result += "place"; break;
    case nvf::ArgumentKind::Text: result += "text"; break;
    case nvf::ArgumentKind::Integer: result += "number"; break;
    }
  }
  return result.empty() ? "No arguments.\n\n" : result + ".\n\n";
}

std::string pageEntryOf(const nvf::MessageInfo& info, const std::string& samples) {
  const char* severity = info.severity == nvf::Severity::Error ? "error" : "warning";
  const std::string ofString =
      info.textOfString.empty() ? "" : "Of a text in a string: " + std::string(info.textOfString) + "\n\n";
  return "### " + std::string(info.id) + "\n\n**" + severity + "**: " + std::string(info.text) + "\n\n" + ofString +
         argumentsOf(info) + samples;
}

std::string shown(const Sample& sample, const Outcome& outcome) {
  std::string result;
  for (const std::string& sentence : {sample.reason, sample.advice}) {
    if (!sentence.empty()) result += sentence + "\n\n";
  }
  if (!sample.reason.empty()) return result;
  if (!sample.entry.empty()) {
    result += "From `" + sample.entry + "`:\n\n";
  } else if (sample.file != Sample::usualFile) {
    result += "In `" + sample.file + "`:\n\n";
  }
  return result + inBlock(sample.source) + inBlock(outcome.page);
}

TEST_F(Messages, AreReportedAsTheTableAndThePageSay) {
  std::map<std::string, std::string> samples;
  std::map<std::string, std::string> parts; // by the comments in front of them on the page
  GoldenFile(dataFile).check([&](const GoldenCase& c) {
    const Sample sample(c.source);
    const Outcome outcome = outcomeOf(sample);
    EXPECT_EQ(outcome.ids.contains(c.title), sample.reason.empty()) << c.title << ": " << outcome.table;
    samples[c.title] += shown(sample, outcome);
    if (c.title == "IfWithNoElse") parts["<!-- example -->"] = inBlock(outcome.page);
    return outcome.table;
  });

  for (const nvf::MessageInfo& info : nvf::all_messages()) {
    const std::string family(info.catalog.substr(nvf::catalogPrefix.size()));
    std::string anchor(info.id);
    std::transform(anchor.begin(), anchor.end(), anchor.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::string& contents = parts["<!-- contents of " + family + " -->"];
    contents += (contents.empty() ? "[" : ",\n[") + std::string(info.id) + "](#" + anchor + ")";
    parts["<!-- messages of " + family + " -->"] += pageEntryOf(info, samples[std::string(info.id)]);
  }

  std::string written;
  std::string wanted;
  std::ifstream page(pageFile);
  bool isInPart = false;
  for (std::string line; std::getline(page, line);) {
    written += line + '\n';
    isInPart = isInPart && line != "<!-- end -->";
    if (!isInPart) wanted += line + '\n';
    if (const auto part = parts.extract(line)) {
      wanted += part.mapped() + (part.mapped().ends_with('\n') ? "" : "\n");
      isInPart = true;
    }
  }
  for (const auto& [comment, part] : parts) ADD_FAILURE() << "the page has no " << comment;
  if (std::getenv("TESSARIN_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(pageFile) << wanted;
    return;
  }
  // The whole page would be too much to show.
  const auto [at, wantedAt] = std::mismatch(written.begin(), written.end(), wanted.begin(), wanted.end());
  if (at == written.end() && wantedAt == wanted.end()) return;
  const auto line = std::count(written.begin(), at, '\n') + 1;
  ADD_FAILURE() << pageFile << ":" << line << ": this and the samples differ, from where there should be\n"
                << std::string(wantedAt, std::find(wantedAt, wanted.end(), '\n'));
}

} // namespace
} // namespace tessarin::test
