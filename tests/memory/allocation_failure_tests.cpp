// Memory that ends at any point: what is being made is given back, std::bad_alloc arrives, and the process goes on.
#include "tessarin/foundation/warning.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/parser/ast/ExprTransformVisitor.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/parse/Parser.hpp"
#include "tessarin/parser/setup/SetupConversion.hpp"

#include "support/small_stack.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {

/// The allocation of this thread that fails, counted down from here; 0 where none does.
thread_local std::size_t failing = 0;
/// What is allocated and not freed, by this thread.
thread_local std::ptrdiff_t live = 0;

} // namespace

void* operator new(std::size_t size) {
  if (failing != 0 && --failing == 0) throw std::bad_alloc();
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  ++live;
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr) --live;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}

namespace tessarin::test {
namespace {

using namespace compiler::core;

/// A model with something of each sort. "@" stands for a text that is new in each run, so that interning fails, too.
constexpr std::string_view model = R"(component (Hidden = true) m@ < base@(a = 1)
% a comment
  nodes; p = port@; end
  inputs
    r@; y
  end
  parameters; K = {1, 'm@'}, k := {0.1, '1/s'}; end
  variables
    e@ = concrete_value__(1, '1');
  end
  function setup
    if K < 0, error('m:K@', 'text @'), end
    e@ = value(K, 'm')*[1, 2; 3, 4];
  end
  branches
    f@ : p.f -> *;
  end
  connections
    connect(p, q(1).x@);
  end
  equations
    e@.der == k*(r@ - y)^2 + f(x@(1, :).y, n = 'it''s @');
    if r@ > 0, y == let a = 2; b = a in a + b end else y == [1; 2] end
    assert(y > 0, 'm:id@', 'text');
  end
  events
    when sample({0.1, 's'})
      e@ = if abs(r@) > 10, 0 else e@ end
    end
  end
  annotations
    [r@, y] : Side = Left;
    Icon = 'x@.svg'
  end
end

function z = local@(q)
  definitions; z = q^2; end
end
)";

std::string modelOf(std::size_t run) {
  // A digit at the end of a unit is a power, and small letters may make a keyword; capitals are good everywhere.
  std::string name;
  for (std::size_t rest = run + 1; rest != 0; rest /= 26) name += static_cast<char>('A' + rest % 26);
  std::string text;
  for (const char c : model) {
    if (c == '@') {
      text += name;
    } else {
      text += c;
    }
  }
  return text;
}

/// Parses, builds, prints, hashes, compares, digests, rewrites, strips, converts and frees.
std::size_t work(const std::string& text) {
  const nvf::ScopedWarningSink sink([](const nvf::Message&) {});
  const ParseTree tree = Parser(nvf::detail::AsciiStringCheck()(text.data(), text.size()), nvf::FileName()).parse();
  ASTBuilder builder(nvf::DefaultValueTokensToValue{});
  const ModelFile file = builder.buildModelFile(tree, FileSource::open);
  std::size_t result = file.string(0, 2).size();
  std::size_t bytes = 0;
  DigestSink digest = [&bytes](const char*, std::size_t size) { bytes += size; };
  for (const EquationBlock& block : file.model().declarativeSections().equationBlocks()) {
    for (const EqnItem& item : block.eqnItems()) {
      ExprTransformVisitor identity;
      EqnItem rewritten = identity.process(item);
      strip_annotation_inplace(rewritten);
      incorporate_data(digest, rewritten);
      if (rewritten != item || hash_value(rewritten) != hash_value(item)) return 0;
    }
  }
  const SimpleSetupStmt setup = to_simple_setup_stmt(
      file.model().setupFunctionParseTree(), [](const nvf::CxId&) -> std::optional<SetupDiagnosticFunction> {
        return [](const std::vector<nvf::ustring>& arguments, const nvf::Range& range) {
          return SetupDiagnostic(
              SimpleSetupErrorStmt(nvf::MessageId::make(arguments.at(0)).value(), arguments.at(1), range));
        };
      });
  return result + bytes + setup.id();
}

/// Lets the n-th allocation of `task(n)` fail, for each n, or for one in `stride`, until there are fewer.
void failAtEach(const std::function<void(std::size_t)>& task, std::size_t stride = 1) {
  for (std::size_t n = 1;; n += stride) {
    bool hasFailed = false;
    try {
      failing = n;
      task(n);
    } catch (const std::bad_alloc&) {
      hasFailed = true;
    } catch (const std::exception& error) {
      failing = 0;
      FAIL() << "allocation " << n << " becomes " << typeid(error).name() << ": " << error.what();
    }
    const bool isReached = failing == 0;
    failing = 0;
    ASSERT_EQ(hasFailed, isReached) << "allocation " << n << " fails unseen";
    if (!isReached) {
      EXPECT_GT(n, 100U);
      return;
    }
  }
}

/// The functions above have to be in use; valgrind puts its own in their place.
class AllocationFailure : public testing::Test {
protected:
  void SetUp() override {
    const std::ptrdiff_t before = live;
    const std::string text(100, ' ');
    if (live == before) GTEST_SKIP() << "somebody else allocates";
  }
};

TEST_F(AllocationFailure, AModelOnItsWay) {
  failAtEach([](std::size_t n) {
    const std::size_t failsAt = std::exchange(failing, 0);
    const std::string text = modelOf(n);
    failing = failsAt;
    (void)work(text);
  });
  // As if nothing had happened: equal texts are one, and everything is given back.
  const std::string text = modelOf(7);
  const std::size_t first = work(text);
  EXPECT_NE(first, 0U);
  const std::ptrdiff_t before = live;
  EXPECT_EQ(work(text), first);
  EXPECT_EQ(live, before);
}

TEST_F(AllocationFailure, OnSegmentsOfTheStack) {
  const std::string text = "component c\nequations\nx == " + std::string(4000, '-') + "y\nend\nend\n";
  onSmallStack([&] {
    failAtEach([&](std::size_t) { (void)work(text); }, 997);
    const std::ptrdiff_t before = live;
    (void)work(text);
    EXPECT_EQ(live, before);
  });
}

} // namespace
} // namespace tessarin::test
