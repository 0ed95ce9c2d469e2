#include "Outcome.hpp"

#include <algorithm>
#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <typeinfo>

namespace tessarin::tool {

namespace {

/// The class of the exception that is being handled.
std::string demangledCurrentClassName() {
  const std::type_info* type = abi::__cxa_current_exception_type();
  if (type == nullptr) return "unknown";
  const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type->name(), nullptr, nullptr, nullptr),
                                                    std::free);
  return name ? name.get() : type->name();
}

/// The same without what Boost wraps around the exceptions that it throws.
std::string currentClassName() {
  constexpr std::string_view wrapper = "boost::wrapexcept<";
  std::string name = demangledCurrentClassName();
  return name.starts_with(wrapper) ? name.substr(wrapper.size(), name.size() - wrapper.size() - 1) : name;
}

Failure currentFailure() {
  try {
    throw;
  } catch (const nvf::LocationException& e) {
    return Finding(e);
  } catch (const nvf::MessageException& e) {
    return Finding(e);
  } catch (const nvf::FatalError& e) {
    return e.diagnostic();
  } catch (const UnreadableFile& e) {
    return OtherException{currentClassName(), e.what(), Status::Usage, true};
  } catch (const nvf::InvalidUtf8& e) {
    return OtherException{"nvf::InvalidUtf8", e.what(), Status::Fault, true};
  } catch (const std::bad_alloc&) {
    return OtherException{"std::bad_alloc", "there is not enough memory", Status::Usage, true};
  } catch (const std::exception& e) {
    return OtherException{currentClassName(), e.what(), Status::Fault};
  } catch (...) {
    return OtherException{currentClassName(), "", Status::Fault};
  }
}

/// Whether a warning says that the text on standard input is not in a file of the right name.
bool isOnNameOfStandardInput(const nvf::Message& message) {
  static const nvf::FileName standardInput(Source::standardInputName);
  const std::string& id = message.id().id;
  return message.location() && message.location()->fileName() == standardInput &&
         (id == "InconsistentModelNameAndFileName" || id == "InconsistentFunctionNameAndFileName");
}

/// The arguments but the one that says where.
std::span<const nvf::MessageArgument> argumentsOf(const Finding& finding) {
  const nvf::BaseMsgID& id = finding.message.id();
  const nvf::MessageInfo* row = nvf::find_message(id.catalog, id.id);
  const bool saysWhere =
      finding.column && row != nullptr && !row->arguments.empty() && row->arguments.front() == nvf::ArgumentKind::Where;
  return std::span(id.arguments).subspan(std::min<std::size_t>(saysWhere ? 1 : 0, id.arguments.size()));
}

void writeJson(JsonWriter& json, const std::optional<std::size_t>& number) {
  if (number) {
    json.number(*number);
  } else {
    json.null();
  }
}

struct MemberWriter {
  JsonWriter& json;

  void operator()(const Finding& fault) const {
    json.key("fault");
    writeJson(json, fault);
  }
  void operator()(const nvf::FatalDiagnostic& fatal) const {
    json.key("fatal").beginObject();
    json.key("text").string(fatal.text);
    json.key("source").string(fatal.sourceFile);
    json.key("line").number(fatal.line);
    json.key("signature").string(fatal.signature);
    json.endObject();
  }
  void operator()(const OtherException& error) const {
    json.key("error").beginArray().string(error.className).string(error.what).endArray();
  }
};

} // namespace

Finding::Finding(const nvf::Message& about) : message(about) {
  if (!about.location()) return;
  line = about.location()->lineColumn().line();
  column = about.location()->lineColumn().column();
}

Finding::Finding(const nvf::LocationException& exception)
    : message(exception.message()),
      line(exception.location().lineColumn().line()),
      column(exception.location().lineColumn().column()) {}

Finding::Finding(const nvf::MessageException& exception) : Finding(exception.message()) {
  if (!line && !exception.stack().empty()) line = exception.stack().front().line;
}

void addEnds(const Source& source, std::vector<Finding>& warnings, std::optional<Failure>& failure) {
  const auto addEnd = [&source](Finding& finding) {
    if (finding.column) finding.endColumn = source.endOfToken(*finding.line, *finding.column);
  };
  for (Finding& warning : warnings) addEnd(warning);
  if (auto* fault = failure ? std::get_if<Finding>(&*failure) : nullptr) addEnd(*fault);
}

std::optional<Failure> observe(const nvf::WarningSink& sink, const std::function<void()>& stage) {
  const nvf::ScopedWarningSink scope([&sink](const nvf::Message& message) {
    if (!isOnNameOfStandardInput(message)) sink(message);
  });
  try {
    stage();
    return std::nullopt;
  } catch (...) {
    return currentFailure();
  }
}

Status statusOf(const std::optional<Failure>& failure) {
  if (!failure) return Status::Success;
  const auto* other = std::get_if<OtherException>(&*failure);
  return other == nullptr ? Status::Fault : other->status;
}

std::string sentence(const nvf::FatalDiagnostic& fatal) {
  return fatal.text + " (" + fatal.sourceFile + ":" + std::to_string(fatal.line) + ", " + fatal.signature + ")";
}

std::string sentence(const OtherException& error) {
  if (error.isSelfExplaining) return error.what;
  const bool addsNothing = error.what.empty() || error.what == error.className;
  return "refused with " + error.className + (addsNothing ? "" : ": " + error.what);
}

std::string_view familyOf(const nvf::BaseMsgID& id) {
  std::string_view catalog = id.catalog;
  if (catalog.starts_with(nvf::catalogPrefix)) catalog.remove_prefix(nvf::catalogPrefix.size());
  return catalog;
}

void writeJson(JsonWriter& json, const Finding& finding) {
  json.beginObject();
  json.key("family").string(std::string(familyOf(finding.message.id())));
  json.key("id").string(finding.message.id().id);
  json.key("arguments").beginArray();
  for (const nvf::MessageArgument& argument : argumentsOf(finding)) {
    if (const auto* text = std::get_if<nvf::ustring>(&argument)) {
      json.string(*text);
    } else {
      json.number(std::get<long>(argument));
    }
  }
  json.endArray();
  json.key("line");
  writeJson(json, finding.line);
  json.key("column");
  writeJson(json, finding.column);
  if (finding.endColumn) {
    json.key("endLine").number(*finding.line);
    json.key("endColumn").number(*finding.endColumn);
  }
  json.endObject();
}

void writeJsonMember(JsonWriter& json, const Failure& failure) {
  std::visit(MemberWriter{json}, failure);
}

} // namespace tessarin::tool
