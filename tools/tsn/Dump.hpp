// Syntax trees as listings and as JSON, for every class alike.
#pragma once

#include "tessarin/foundation/node.hpp"

#include "JsonWriter.hpp"

#include <cstddef>
#include <ostream>
#include <string>

namespace tessarin::tool {

/// Writes a tree as an indented listing: one node a line with its class, its range and the plain fields that come
/// before any node in it; below it the nodes and lists that it holds. Lines and columns count from 1.
class ListingSink final : public nvf::DumpSink {
public:
  explicit ListingSink(std::ostream& out) noexcept : out_(out) {}
  void beginNode(const std::string& className, const nvf::Range* range) override;
  void endNode() override { close(); }
  void beginList(std::size_t size) override;
  void endList() override { close(); }
  void value(const nvf::ustring& text) override;
  /// Ends the last line.
  void finish();

private:
  void beginLine();
  void close() {
    --depth_;
    takesValues_ = false;
  }

  std::ostream& out_;
  std::size_t depth_ = 0;
  bool lineIsOpen_ = false;  // something stands on it
  bool takesValues_ = false; // it is the line of the node that is open
};

/// Writes a node as `{"class":…,"range":[line, column, end line, end column],"fields":[…]}`, where the range is null if
/// the class has none, a list as an array, and a plain field as a string. Lines and columns count from 0; `firstLine`
/// is the line that counts as 0.
class JsonSink final : public nvf::DumpSink {
public:
  explicit JsonSink(JsonWriter& json, std::size_t firstLine = 0) noexcept : json_(json), firstLine_(firstLine) {}
  void beginNode(const std::string& className, const nvf::Range* range) override;
  void endNode() override { json_.endArray().endObject(); }
  void beginList(std::size_t) override { json_.beginArray(); }
  void endList() override { json_.endArray(); }
  void value(const nvf::ustring& text) override { json_.string(text); }

private:
  JsonWriter& json_;
  std::size_t firstLine_;
};

/// Writes `[line, column, end line, end column]`, from 0, `firstLine` being the line that counts as 0.
void writeJson(JsonWriter& json, const nvf::Range& range, std::size_t firstLine = 0);

} // namespace tessarin::tool
