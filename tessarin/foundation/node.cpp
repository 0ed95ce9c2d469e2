#include "tessarin/foundation/node.hpp"

namespace nvf {

DumpSink::~DumpSink() = default;
void DumpSink::field(std::string_view) {}
void DumpSink::absent() {
  beginList(0);
  endList();
}

std::string detail::shortTypeName(const std::type_info& type) {
  const std::string full = boost::core::demangle(type.name());
  // Only the namespaces before the name itself: those in template arguments are part of the name.
  const std::size_t arguments = full.find('<');
  const std::size_t colons = full.rfind("::", arguments);
  return colons == std::string::npos ? full : full.substr(colons + 2);
}

} // namespace nvf
