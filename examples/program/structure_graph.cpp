// Draws what a component connects, for Graphviz: its branches as arrows, its connections as lines.
//   structure_graph motor.tsn | dot -Tsvg >motor.svg
#include "tessarin/tessarin.hpp"

#include <iomanip>
#include <sstream>
#include <string>

namespace {

using namespace tessarin;

/// A text between quotes, as Graphviz reads it: its escapes are those of `std::quoted`.
std::string quoted(const nvf::ustring& text) {
  std::ostringstream out;
  out << std::quoted(nvf::encode_utf8(text));
  return out.str();
}

/// An end of a branch or an argument of a connection, which is `*` or some reference.
template <class End>
nvf::ustring textOf(const End& end) {
  return end.visit(nvf::overloaded{[](const ImplicitReference& ground) { return ground.string(); },
                                   [](const auto& reference) { return to_string(Expr(reference)); }});
}

void draw(const ModelFile& file) {
  std::cout << "digraph " << quoted(file.model().name().string()) << " {\n  node [shape=box];\n";
  const auto line = [](const nvf::ustring& from, const nvf::ustring& to, const auto&... attributes) {
    std::cout << "  " << quoted(from) << " -> " << quoted(to) << " [";
    (std::cout << ... << attributes) << "];\n";
  };
  walk(file, nvf::overloaded{[&line](const Through& branch) {
                               line(textOf(branch.from()), textOf(branch.to()),
                                    "label=", quoted(to_string(branch.lhs(), ToStringContext())));
                             },
                             [&line](const Connection& connection) {
                               for (const ConnectionArg& other : connection.remainingArguments()) {
                                 line(textOf(connection.firstArg()), textOf(other), "dir=none");
                               }
                             }});
  std::cout << "}\n";
}

} // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    try {
      const TSNFile file = parseFile(argv[i]);
      if (const auto* model = std::get_if<ModelFile>(&file)) draw(*model);
    } catch (const nvf::Failure& failure) {
      std::cerr << failure.what() << '\n';
      return 1;
    }
  }
}
