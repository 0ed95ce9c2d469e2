#include "Dump.hpp"

#include "Printable.hpp"

#include <algorithm>
#include <iomanip>

namespace tessarin::tool {

// ---- listing ----

void ListingSink::beginLine() {
  finish();
  // A width of its own for each line: a deep tree is no reason to make a long text of blanks.
  out_ << std::setw(static_cast<int>(2 * depth_)) << "";
  lineIsOpen_ = true;
}

void ListingSink::writeName(std::string_view separator) {
  if (!field_.empty()) out_ << field_ << separator;
  field_ = {};
}

void ListingSink::finish() {
  if (lineIsOpen_) out_ << '\n';
  lineIsOpen_ = false;
}

void ListingSink::beginNode(const std::string& className, const nvf::Range* range) {
  beginLine();
  writeName(": ");
  out_ << className;
  if (range != nullptr) {
    const nvf::LineColumn& begin = range->begin().lineColumn();
    const nvf::LineColumn& end = range->end().lineColumn();
    out_ << " <" << begin.line() + 1 << ':' << begin.column() + 1 << '-' << end.line() + 1 << ':' << end.column() + 1
         << '>';
  }
  ++depth_;
  takesValues_ = true;
}

void ListingSink::beginList(std::size_t size) {
  beginLine();
  writeName(": ");
  out_ << '[' << size << ']';
  ++depth_;
  takesValues_ = false;
}

void ListingSink::value(const nvf::ustring& text) {
  if (takesValues_ && lineIsOpen_) {
    out_ << ' ';
  } else {
    beginLine();
  }
  writeName("=");
  out_ << '\'' << escaped(text) << '\'';
}

// ---- JSON ----

void writeJson(JsonWriter& json, const nvf::Range& range, std::size_t firstLine) {
  json.beginArray();
  for (const nvf::Location& end : {range.begin(), range.end()}) {
    const std::size_t line = end.lineColumn().line();
    json.number(line - std::min(line, firstLine)).number(end.lineColumn().column());
  }
  json.endArray();
}

void JsonSink::beginNode(const std::string& className, const nvf::Range* range) {
  json_.beginObject();
  json_.key("class").string(className);
  json_.key("range");
  if (range != nullptr) {
    writeJson(json_, *range, firstLine_);
  } else {
    json_.null();
  }
  json_.key("fields").beginObject();
}

} // namespace tessarin::tool
