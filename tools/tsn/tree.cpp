// tsn tree: the parse tree of a file.

#include "tessarin/parser/parse/Parser.hpp"

#include "Command.hpp"
#include "FileCommand.hpp"

#include <string>
#include <vector>

namespace tessarin::tool {

namespace core = compiler::core;

namespace {

void writeLeaf(JsonWriter& json, const core::Token& token) {
  const nvf::LineColumn& place = token.location().lineColumn();
  json.beginObject();
  json.key("t").word(core::TokenId::toString(token.code()));
  json.key("x").string(token.text().view());
  json.key("l").number(place.line());
  json.key("c").number(place.column());
  json.endObject();
}

/// Writes a leaf as `{"t":…,"x":…,"l":…,"c":…}` and an inner node as `["Kind",[…]]`. The open nodes stand in a list of
/// our own, so that the depth of the tree does not matter.
void writeTree(JsonWriter& json, const core::ParseTree& root) {
  struct OpenNode {
    const core::ParseTree* tree;
    std::size_t next; // the child to be written next
  };
  std::vector<OpenNode> open;
  const auto begin = [&](const core::ParseTree& tree) {
    if (tree.type() == 0) {
      writeLeaf(json, tree.token());
    } else {
      json.beginArray().word(core::NonTerminal::name(tree.code())).beginArray();
      open.push_back({&tree, 0});
    }
  };

  begin(root);
  while (!open.empty()) {
    OpenNode& node = open.back();
    if (node.next < node.tree->count()) {
      begin(node.tree->child(node.next++));
    } else {
      json.endArray().endArray();
      open.pop_back();
    }
  }
}

core::ParseTree parse(const Source& source) {
  return core::Parser(source.buffer()).parse();
}

constexpr FileAnswer treeAnswer{
    .text = [](const Source& source, std::ostream& out) { out << parse(source); },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      return [tree = parse(source)](JsonWriter& json) {
        json.key("tree");
        writeTree(json, tree);
      };
    },
};

} // namespace

Action tree(CLI::App& app) {
  const auto options = addFileOptions(app);
  return [options](Console& console) { return answer(*options, treeAnswer, console); };
}

} // namespace tessarin::tool
