#include "tessarin/foundation/identifier.hpp"

namespace nvf {

namespace {

/// Calls `function` with each part of the text between separators; a text without one is one part.
template <class Function>
void forEachPart(ustring_view text, char16_t separator, Function function) {
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    function(text.substr(begin, end - begin));
    begin = end + 1;
  }
}

bool isMessageId(ustring_view text) {
  std::size_t count = 0;
  bool allIdentifiers = true;
  forEachPart(text, u':', [&](ustring_view part) {
    ++count;
    allIdentifiers = allIdentifiers && is_identifier(part);
  });
  return allIdentifiers && count >= 2;
}

std::string quoted(ustring_view text, const char* fault) {
  return "'" + encode_utf8(text) + "' " + fault;
}

} // namespace

CxId::CxId(ustring_view text) : CxId(detail::CxIdCheck()(text)) {}
CxId::CxId(std::string_view text) : CxId(detail::CxIdCheck()(text.data(), text.size())) {}
std::optional<CxId> CxId::make(ustring_view text) {
  return is_identifier(text) ? std::optional(CxId(Text(text))) : std::nullopt;
}
std::optional<CxId> CxId::make(std::string_view text) {
  return make(widen(text));
}

InvalidCxId::InvalidCxId(ustring_view text) : Exception(quoted(text, "is not an identifier.")) {}

IdPathTooShort::IdPathTooShort(unsigned long actual, unsigned long minimum)
    : Exception("a path has " + std::to_string(actual) + " names where it must have at least " +
                std::to_string(minimum) + ".") {}

InvalidMessageId::InvalidMessageId(ustring_view text) : Exception(quoted(text, "is not a message id.")) {}

namespace detail {

CxId CxIdCheck::operator()(BasicTableString<char16_t> text) const {
  if (!is_identifier(text.view())) throw InvalidCxId(text.view());
  return CxId(text);
}

CxId CxIdCheck::operator()(ustring_view text) const {
  if (!is_identifier(text)) throw InvalidCxId(text);
  return CxId(BasicTableString<char16_t>(text));
}

CxId CxIdCheck::operator()(const char* text, unsigned long length) const {
  return (*this)(widen({text, length}));
}

Expressions<CxId> parse_ids(const char* text, unsigned long length) {
  const ustring wide = widen({text, length});
  return parse_ids(wide.data(), wide.size());
}

Expressions<CxId> parse_ids(const char16_t* text, unsigned long length) {
  if (length == 0) return {};
  std::vector<CxId> ids;
  forEachPart({text, length}, u'.', [&ids](ustring_view part) { ids.push_back(CxIdCheck()(part)); });
  return Expressions<CxId>(std::move(ids));
}

void id_path_too_short(unsigned long actual, unsigned long minimum) {
  throw IdPathTooShort(actual, minimum);
}

ustring join_ids(const Expressions<CxId>& ids) {
  ustring out;
  for (const CxId& id : ids) {
    if (&id != ids.begin()) out += u'.';
    out += id.view();
  }
  return out;
}

MessageId MessageIdCheck::operator()(const char16_t* text, std::size_t length) const {
  const ustring_view view(text, length);
  if (!isMessageId(view)) throw InvalidMessageId(view);
  return MessageId(BasicTableString<char16_t>(view));
}

} // namespace detail

std::optional<MessageId> MessageId::make(const ustring& text) {
  if (text.empty()) return MessageId();
  if (!isMessageId(text)) return std::nullopt;
  return MessageId(Text(text));
}

} // namespace nvf
