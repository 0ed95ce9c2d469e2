#include "JsonWriter.hpp"

namespace tessarin::tool {

namespace {

constexpr bool isLeadingSurrogate(char16_t unit) noexcept {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isTrailingSurrogate(char16_t unit) noexcept {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// The letter of the short escape of a code unit, or 0 where it has none.
constexpr char shortEscape(char16_t unit) noexcept {
  switch (unit) {
  case u'"': return '"';
  case u'\\': return '\\';
  case u'\b': return 'b';
  case u'\f': return 'f';
  case u'\n': return 'n';
  case u'\r': return 'r';
  case u'\t': return 't';
  default: return 0;
  }
}

} // namespace

JsonWriter& JsonWriter::key(std::string_view name) {
  word(name);
  put(':');
  commaDue_ = false;
  return *this;
}

JsonWriter& JsonWriter::word(std::string_view text) {
  separate();
  put('"');
  put(text);
  put('"');
  commaDue_ = true;
  return *this;
}

JsonWriter& JsonWriter::string(nvf::ustring_view text) {
  separate();
  put('"');
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (unit < 0x80) {
      if (unit < 0x20 || unit == 0x7F || unit == u'"' || unit == u'\\') {
        escape(unit);
      } else {
        put(static_cast<char>(unit));
      }
    } else if (isLeadingSurrogate(unit) && i + 1 < text.size() && isTrailingSurrogate(text[i + 1])) {
      put(nvf::encode_utf8(text.substr(i++, 2)));
    } else if (isLeadingSurrogate(unit) || isTrailingSurrogate(unit)) {
      escape(unit);
    } else {
      put(nvf::encode_utf8(text.substr(i, 1)));
    }
  }
  put('"');
  commaDue_ = true;
  return *this;
}

JsonWriter& JsonWriter::raw(std::string_view json) {
  separate();
  put(json);
  commaDue_ = true;
  return *this;
}

JsonWriter& JsonWriter::open(char bracket) {
  separate();
  put(bracket);
  commaDue_ = false;
  return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
  put(bracket);
  commaDue_ = true;
  return *this;
}

void JsonWriter::separate() {
  if (commaDue_) put(',');
}

void JsonWriter::escape(char16_t unit) {
  put('\\');
  if (const char letter = shortEscape(unit)) {
    put(letter);
    return;
  }
  constexpr std::string_view digits = "0123456789ABCDEF";
  put('u');
  for (int shift = 12; shift >= 0; shift -= 4) put(digits[static_cast<unsigned>(unit) >> shift & 0xFU]);
}

} // namespace tessarin::tool
