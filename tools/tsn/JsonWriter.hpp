// JSON for machines: one line, compact, written as it comes.
#pragma once

#include "tessarin/foundation/text.hpp"

#include <concepts>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace tessarin::tool {

/// Writes one JSON value to a stream, piece by piece, so that a document of any size and depth needs no tree in memory
/// and no recursion. Commas are the writer's business, balance and keys are the caller's. Failures to write are the
/// stream's business.
///
/// Text is UTF-16 and becomes UTF-8. A lone surrogate, which UTF-8 cannot hold, is written as its `\uD8xx` escape, so
/// that no two texts look alike.
class JsonWriter {
public:
  explicit JsonWriter(std::ostream& stream) : sink_(*stream.rdbuf()) {}

  JsonWriter& beginObject() { return open('{'); }
  JsonWriter& endObject() { return close('}'); }
  JsonWriter& beginArray() { return open('['); }
  JsonWriter& endArray() { return close(']'); }
  /// The name of the member that comes next: ASCII without quotes, backslashes and control characters.
  JsonWriter& key(std::string_view name);

  JsonWriter& string(nvf::ustring_view text);
  /// A text that is plain as a key is.
  JsonWriter& word(std::string_view text);
  /// Text in UTF-8; each byte of an invalid sequence becomes U+FFFD.
  JsonWriter& string(const std::string& utf8) { return string(nvf::utf8_string_to_ustring(utf8)); }
  JsonWriter& number(std::integral auto value) { return raw(std::to_string(value)); }
  JsonWriter& null() { return raw("null"); }
  /// A value that is written already.
  JsonWriter& raw(std::string_view json);

private:
  JsonWriter& open(char bracket);
  JsonWriter& close(char bracket);
  void separate();
  void put(char c) { sink_.sputc(c); }
  void put(std::string_view text) { sink_.sputn(text.data(), static_cast<std::streamsize>(text.size())); }
  void escape(char16_t unit);

  std::streambuf& sink_;
  bool commaDue_ = false; // a value stands before, and no bracket or key between
};

} // namespace tessarin::tool
