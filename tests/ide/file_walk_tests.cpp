// The walk over a file: what it comes by, in which order.
#include "tessarin/ide/FileWalk.hpp"
#include "tessarin/ide/Stages.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarin::test {
namespace {

using namespace compiler::core;

std::string seenIn(nvf::ustring_view text) {
  struct Seen final : ide::FileVisitor {
    std::string text;
    void expression(const Expr& expr) override { text += nvf::ustring_to_local_encoded_string(to_string(expr)) + ' '; }
    void equation(const EqnItem&) override { text += "equation "; }
    void declarations(const DeclarationBlock&) override { text += "declarations "; }
    void modechart(const ModechartDeclaration&) override { text += "modechart "; }
  } seen;
  ide::walk(ide::buildFile(nvf::SourceBuffer(nvf::FileName("a.tsn"), text)), seen);
  return seen.text;
}

TEST(FileWalk, ShowsKindAfterKindAndLocalFunctionsByName) {
  EXPECT_EQ(
      seenIn(uR"(component a < b(c = 1)
  equations
    x == 2;
    if t > 3, y == 4; else y == 5; end
  end
  if p > 5
    variables (Q = 6)
      x = 7;
    end
  end
  variables
    y = 8;
  end
end
function r = g()
  definitions
    r = 10;
  end
end
function r = f()
  definitions
    r = 9;
  end
end
)"),
      "c 1 declarations 8 equation x == 2 equation if t > 3, y == 4; else y == 5; end p > 5 declarations 6 7 9 10 ");
}

} // namespace
} // namespace tessarin::test
