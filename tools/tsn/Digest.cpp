#include "Digest.hpp"

namespace tessarin::tool {

std::string hexDigest(const compiler::core::Expr& expr) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string hex;
  nvf::DigestSink sink = [&hex](const char* bytes, unsigned long count) {
    for (unsigned long i = 0; i < count; ++i) {
      const auto byte = static_cast<unsigned char>(bytes[i]);
      hex += digits[byte >> 4U];
      hex += digits[byte & 0xfU];
    }
  };
  incorporate_data(sink, expr);
  return hex;
}

} // namespace tessarin::tool
