#include "Uri.hpp"

#include <string_view>

namespace tessarin::tool {

namespace {

constexpr std::string_view unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                        "abcdefghijklmnopqrstuvwxyz"
                                        "0123456789-._~";

void appendEncoded(std::string& uri, std::string_view segment) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  for (const char c : segment) {
    if (unreserved.find(c) != std::string_view::npos) {
      uri += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      uri += '%';
      uri += digits[byte >> 4U];
      uri += digits[byte & 0xFU];
    }
  }
}

} // namespace

std::string uriOf(const std::filesystem::path& path) {
  std::string uri = path.is_absolute() ? "file:///" : "";
  for (const std::filesystem::path& part : path.relative_path()) {
    if (part.empty() || part == ".") continue;
    if (!uri.empty() && !uri.ends_with('/')) uri += '/';
    appendEncoded(uri, part.native());
  }
  return uri.empty() ? "." : uri;
}

} // namespace tessarin::tool
