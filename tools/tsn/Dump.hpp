// Syntax trees as listings and as JSON, for every class alike.
#pragma once

#include "tessarin/foundation/node.hpp"

#include "JsonWriter.hpp"

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace tessarin::tool {

/// Writes a tree as an indented listing: one node a line with its class, its range and the plain fields that come
/// before any node in it; below it the nodes and lists that it holds. Each field stands behind its name, `name='value'`
/// or `name: Class`. Lines and columns count from 1.
class ListingSink final : public nvf::DumpSink {
public:
  explicit ListingSink(std::ostream& out) noexcept : out_(out) {}
  void beginNode(const std::string& className, const nvf::Range* range) override;
  void endNode() override { close(); }
  void beginList(std::size_t size) override;
  void endList() override { close(); }
  void value(const nvf::ustring& text) override;
  void field(std::string_view name) override { field_ = name; }
  /// Ends the last line.
  void finish();

private:
  void beginLine();
  /// Writes the name of the field that comes, if it has one, and what stands behind it.
  void writeName(std::string_view separator);
  void close() {
    --depth_;
    takesValues_ = false;
  }

  std::ostream& out_;
  std::string_view field_; // the name of what comes next; empty where it has none
  std::size_t depth_ = 0;
  bool lineIsOpen_ = false;  // something stands on it
  bool takesValues_ = false; // it is the line of the node that is open
};

/// Writes a node as `{"class":…,"range":[line, column, end line, end column],"fields":{"name":…}}`, where the range is
/// null if the class has none, a list as an array, a plain field as a string, and what is absent as null. Lines and
/// columns count from 0; `firstLine` is the line that counts as 0.
class JsonSink final : public nvf::DumpSink {
public:
  explicit JsonSink(JsonWriter& json, std::size_t firstLine = 0) noexcept : json_(json), firstLine_(firstLine) {}
  void beginNode(const std::string& className, const nvf::Range* range) override;
  void endNode() override { json_.endObject().endObject(); }
  void beginList(std::size_t) override { json_.beginArray(); }
  void endList() override { json_.endArray(); }
  void value(const nvf::ustring& text) override { json_.string(text); }
  void field(std::string_view name) override { json_.key(name); }
  void absent() override { json_.null(); }

private:
  JsonWriter& json_;
  std::size_t firstLine_;
};

/// Writes `[line, column, end line, end column]`, from 0, `firstLine` being the line that counts as 0.
void writeJson(JsonWriter& json, const nvf::Range& range, std::size_t firstLine = 0);

} // namespace tessarin::tool
