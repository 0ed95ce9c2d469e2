// The elements that two files are taken apart into. Private to the library.
#pragma once

#include "tessarin/ide/Diff.hpp"
#include "tessarin/ide/Names.hpp"
#include "tessarin/parser/ast/Expr.hpp"

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace tessarin::ide {

/// An element of one side. What it says lies in `frame` and `exprs` together, but for its name.
struct DiffItem {
  Element element{};
  Index section = 0;
  nvf::ustring subject;                    ///< the part of its name that the renaming of a member changes
  nvf::ustring suffix;                     ///< the rest of its name
  nvf::ustring home;                       ///< the head of its block
  std::string frame;                       ///< digest of what is no expression
  std::vector<compiler::core::Expr> exprs; ///< all expressions in it
  std::function<nvf::ustring()> text;
  nvf::LineColumn begin;

  [[nodiscard]] nvf::ustring name() const { return subject + suffix; }
};

/// A section of both sides or of one, with how each side calls it.
struct DiffSection {
  Index parent = noIndex;
  std::array<nvf::ustring, 2> labels;
};

/// Both sides.
struct DiffItems {
  std::vector<DiffSection> sections; ///< the first is the file
  std::array<std::vector<DiffItem>, 2> sides;
};

/// Takes both files apart. Sections of the two sides that belong together are one section.
DiffItems takeApart(const compiler::core::TSNFile& before, const compiler::core::TSNFile& after);

/// The bytes that the value feeds into a digest.
template <class T>
std::string bytesOf(const T& value) {
  std::string bytes;
  compiler::core::DigestSink sink = [&bytes](const char* data, unsigned long length) { bytes.append(data, length); };
  incorporate_data(sink, value);
  return bytes;
}

} // namespace tessarin::ide
