#include "tessarin/foundation/text.hpp"

#include <algorithm>
#include <array>
#include <locale>
#include <ostream>

namespace nvf {

std::size_t hash_value(ustring_view text) noexcept {
  std::uint64_t seed = 0;
  for (const char16_t unit : text) seed = hash_combine(seed, unit);
  return seed;
}

void incorporate_data(DigestSink& sink, ustring_view text) {
  for (const char16_t unit : text) feed_bytes<2>(sink, unit);
}

namespace {

constexpr char32_t replacement = 0xfffd;

constexpr bool isSurrogate(char32_t c) {
  return c >= 0xd800 && c <= 0xdfff;
}
constexpr bool isHighSurrogate(char32_t c) {
  return c >= 0xd800 && c <= 0xdbff;
}
constexpr bool isLowSurrogate(char32_t c) {
  return c >= 0xdc00 && c <= 0xdfff;
}

void appendUtf16(ustring& out, char32_t c) {
  if (c < 0x10000) {
    out.push_back(static_cast<char16_t>(c));
  } else {
    c -= 0x10000;
    out.push_back(static_cast<char16_t>(0xd800 + (c >> 10U)));
    out.push_back(static_cast<char16_t>(0xdc00 + (c & 0x3ffU)));
  }
}

void appendUtf8(std::string& out, char32_t c) {
  const auto continuation = [&out, c](unsigned shift) {
    out.push_back(static_cast<char>(0x80U | ((c >> shift) & 0x3fU)));
  };
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xc0U | (c >> 6U)));
    continuation(0);
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xe0U | (c >> 12U)));
    continuation(6);
    continuation(0);
  } else {
    out.push_back(static_cast<char>(0xf0U | (c >> 18U)));
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

struct LeadByte {
  unsigned char mask;
  unsigned char lead;
  std::size_t length;
  char32_t least; // a smaller value would be an overlong form
};
constexpr std::array<LeadByte, 4> leadBytes{
    {{0x80, 0x00, 1, 0}, {0xe0, 0xc0, 2, 0x80}, {0xf0, 0xe0, 3, 0x800}, {0xf8, 0xf0, 4, 0x10000}}};

/// Decodes the sequence at the front of `bytes` into `c`; returns its length, or 0 where it is not valid.
std::size_t decodeSequence(std::string_view bytes, char32_t& c) {
  const auto byte = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const auto* lead =
      std::find_if(leadBytes.begin(), leadBytes.end(), [&](const LeadByte& l) { return (byte(0) & l.mask) == l.lead; });
  if (lead == leadBytes.end() || bytes.size() < lead->length) return 0;
  c = byte(0) & static_cast<unsigned char>(~lead->mask);
  for (std::size_t i = 1; i < lead->length; ++i) {
    if ((byte(i) & 0xc0U) != 0x80U) return 0;
    c = (c << 6U) | (byte(i) & 0x3fU);
  }
  return c >= lead->least && c <= 0x10ffff && !isSurrogate(c) ? lead->length : 0;
}

/// Decodes all of `bytes`; `invalid(offset)` is called for each byte that begins no valid sequence.
template <class Invalid>
ustring decode(std::string_view bytes, Invalid invalid) {
  ustring out;
  out.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size();) {
    char32_t c = 0;
    std::size_t length = decodeSequence(bytes.substr(i), c);
    if (length == 0) {
      invalid(i);
      c = replacement;
      length = 1;
    }
    appendUtf16(out, c);
    i += length;
  }
  return out;
}

template <class Text>
void requireAscii(const Text& text) {
  const auto bad = std::find_if(text.begin(), text.end(), [](auto unit) {
    return static_cast<std::make_unsigned_t<std::conditional_t<sizeof(unit) == 1, char, short>>>(unit) > 127;
  });
  if (bad != text.end()) throw NotAscii(static_cast<std::size_t>(bad - text.begin()));
}

} // namespace

InvalidUtf8::InvalidUtf8(std::size_t offset)
    : StandardFailure("invalid UTF-8 at byte " + std::to_string(offset)), offset_(offset) {}

ustring decode_utf8(std::string_view bytes) {
  return decode(bytes, [](std::size_t offset) { throw InvalidUtf8(offset); });
}

ustring utf8_string_to_ustring(const std::string& bytes) {
  return decode(bytes, [](std::size_t) {});
}

std::string encode_utf8(ustring_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char32_t unit = text[i];
    if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
      appendUtf8(out, 0x10000 + ((unit - 0xd800) << 10U) + (text[++i] - char32_t{0xdc00}));
    } else {
      appendUtf8(out, isSurrogate(unit) ? replacement : unit);
    }
  }
  return out;
}

std::string ustring_to_local_encoded_string(const ustring& text) {
  return encode_utf8(text);
}

std::string to_string(const ustring& text) {
  return encode_utf8(text);
}

ustring widen(std::string_view ascii) {
  ustring out(ascii.size(), u'\0');
  std::transform(ascii.begin(), ascii.end(), out.begin(), [](char c) { return static_cast<unsigned char>(c); });
  return out;
}

std::string narrow(ustring_view text) {
  std::string out(text.size(), '\0');
  std::transform(text.begin(), text.end(), out.begin(), [](char16_t unit) { return static_cast<char>(unit & 0xffU); });
  return out;
}

ustring decimal(std::size_t number) {
  return widen(std::to_string(number));
}

void to_ascii(std::ostream& stream, char16_t unit) {
  if (unit < 128) {
    stream.put(static_cast<char>(unit));
    return;
  }
  stream << "\\u";
  for (unsigned shift = 16; shift != 0; shift -= 4) stream.put("0123456789abcdef"[(unit >> (shift - 4)) & 0xfU]);
}

std::string lower(const std::string& text) {
  std::string out = text;
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

void setup_stream_locale(std::basic_ostringstream<char16_t>& stream) {
  stream.imbue(std::locale::classic());
}

NotAscii::NotAscii(std::size_t offset)
    : StandardFailure("text is not ASCII at position " + std::to_string(offset)), offset_(offset) {}

AsciiString detail::AsciiStringCheck::operator()(ustring text) const {
  requireAscii(text);
  return AsciiString(std::move(text));
}

AsciiString detail::AsciiStringCheck::operator()(const char* text, unsigned long length) const {
  const std::string_view view(text, length);
  requireAscii(view);
  return AsciiString(widen(view));
}

} // namespace nvf
