#include "tessarin/foundation/message.hpp"

#include "tessarin/foundation/messages.hpp"

#include <algorithm>
#include <array>

namespace nvf {

namespace {

/// The kinds of a row's arguments as constant data.
template <ArgumentKind... kinds>
struct Kinds {
  static constexpr std::array<ArgumentKind, sizeof...(kinds)> values{kinds...};
};

/// What a message says of a text in a string.
struct TextOfString {
  std::string_view catalog;
  std::string_view id;
  std::string_view text;
};

constexpr auto textsOfStrings = std::to_array<TextOfString>({
#define TESSARIN_MESSAGE_OF_STRING(family, name, text) {TESSARIN_FAMILY_CATALOG_##family, #name, text},
#include "tessarin/foundation/messages.def"
});

constexpr std::string_view textOfString(std::string_view catalogName, std::string_view id) {
  for (const TextOfString& row : textsOfStrings) {
    if (row.id == id && row.catalog == catalogName) return row.text;
  }
  return {};
}

constexpr auto catalog = [] {
  using enum ArgumentKind;
  return std::to_array<MessageInfo>({
#define TESSARIN_MESSAGE(family, name, severity, text, ...)                                                            \
  {TESSARIN_FAMILY_CATALOG_##family,                                                                                   \
   #name,                                                                                                              \
   Severity::severity,                                                                                                 \
   text,                                                                                                               \
   Kinds<__VA_ARGS__>::values,                                                                                         \
   textOfString(TESSARIN_FAMILY_CATALOG_##family, #name)},
#include "tessarin/foundation/messages.def"
  });
}();

ustring argumentText(const MessageArgument& argument) {
  if (const auto* number = std::get_if<long>(&argument)) return widen(std::to_string(*number));
  return std::get<ustring>(argument);
}

/// Appends `text` with each `{n}` replaced by the n-th argument.
void appendFormatted(ustring& out, std::string_view text, const std::vector<MessageArgument>& arguments) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isHole = text[i] == '{' && i + 2 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9' &&
                        text[i + 2] == '}' && static_cast<std::size_t>(text[i + 1] - '1') < arguments.size();
    if (isHole) {
      out += argumentText(arguments[static_cast<std::size_t>(text[i + 1] - '1')]);
      i += 2;
    } else {
      out.push_back(static_cast<unsigned char>(text[i]));
    }
  }
}

} // namespace

std::span<const MessageInfo> all_messages() {
  return catalog;
}

const MessageInfo* find_message(std::string_view catalogName, std::string_view id) {
  const auto* row = std::find_if(catalog.begin(), catalog.end(),
                                 [&](const MessageInfo& info) { return info.id == id && info.catalog == catalogName; });
  return row == catalog.end() ? nullptr : row;
}

Severity Message::severity() const {
  const MessageInfo* info = find_message(id_.catalog, id_.id);
  return info == nullptr ? Severity::Error : info->severity;
}

/// Whether the catalog has a sentence for texts in strings, and the message is about one.
bool Message::isOfString(const MessageInfo& info) const {
  if (info.textOfString.empty() || id_.arguments.empty()) return false;
  return info.arguments[0] == ArgumentKind::Where ? !location_ : argumentText(id_.arguments[0]).empty();
}

ustring Message::text() const {
  ustring out;
  if (const MessageInfo* info = find_message(id_.catalog, id_.id)) {
    appendFormatted(out, isOfString(*info) ? info->textOfString : info->text, id_.arguments);
    return out;
  }
  out = widen(id_.catalog + ":" + id_.id);
  for (const MessageArgument& argument : id_.arguments) out += u" " + argumentText(argument);
  return out;
}

ustring Message::fullMessage() const {
  const MessageInfo* info = find_message(id_.catalog, id_.id);
  const bool saysWhere = info != nullptr && !info->arguments.empty() && info->arguments[0] == ArgumentKind::Where &&
                         !id_.arguments.empty() && !isOfString(*info);
  return saysWhere ? argumentText(id_.arguments[0]) + u": " + text() : text();
}

ustring file_line_message(const Location& location) {
  const ustring line = decimal(location.lineColumn().line() + 1);
  return location.fileName().empty() ? u"line " + line : ustring(location.fileName()) + u":" + line;
}

ustring file_line_column_message(const Location& location) {
  const ustring column = decimal(location.lineColumn().column() + 1);
  return file_line_message(location) + (location.fileName().empty() ? u", column " : u":") + column;
}

Failure::~Failure() = default;
const Message* Failure::findMessage() const noexcept {
  return nullptr;
}
const Location* Failure::findLocation() const noexcept {
  return nullptr;
}
ustring Failure::text() const {
  const Message* message = findMessage();
  return message == nullptr ? utf8_string_to_ustring(what()) : message->text();
}

Exception::~Exception() = default;
AttributedException::~AttributedException() = default;
BadGet::~BadGet() = default;

MessageException::MessageException(const Message& message)
    : Exception(encode_utf8(message.fullMessage())), message_value_(message) {}
MessageException::~MessageException() = default;

std::unique_ptr<MessageException> MessageException::clone() const {
  return std::make_unique<MessageException>(*this);
}

MessageException::Shown& MessageException::Shown::operator=(const Shown& other) noexcept {
  if (this != &other) delete text.exchange(nullptr);
  return *this;
}
MessageException::Shown::~Shown() {
  delete text.load();
}

ustring MessageException::fullMessage() const {
  const ustring own = message_value_.fullMessage();
  ustring wide;
  message_(wide);
  if (wide != own) return wide;
  std::string narrow;
  message_(narrow);
  return narrow == encode_utf8(own) ? own : utf8_string_to_ustring(narrow);
}

const char* MessageException::what() const noexcept {
  if (const std::string* shown = shown_.text.load()) return shown->c_str();
  try {
    auto made = std::make_unique<const std::string>(encode_utf8(fullMessage()));
    const std::string* first = nullptr;
    if (shown_.text.compare_exchange_strong(first, made.get())) first = made.release();
    return first->c_str();
  } catch (...) {
    return Exception::what();
  }
}

void MessageException::message_(std::string& text) const {
  text = encode_utf8(message_value_.fullMessage());
}
void MessageException::message_(ustring& text) const {
  text = message_value_.fullMessage();
}

LocationException::LocationException(const Message& message, Location location, bool showColumn)
    : Exception(encode_utf8(message.fullMessage())), message_(message), location_(location), showColumn_(showColumn) {}
LocationException::~LocationException() = default;

ustring LocationException::loc2str(const Location& location, bool showColumn) {
  return showColumn ? file_line_column_message(location) : file_line_message(location);
}

} // namespace nvf
