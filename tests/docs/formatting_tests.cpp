// docs/formatting.md shows what the formatter does.
#include "tessarin/ide/Format.hpp"

#include "docs/markdown.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using namespace tessarin;
using namespace tessarin::test;

TEST(FormattingGuide, TextsBecomeWhatIsShown) {
  const std::filesystem::path file = std::filesystem::path(TESSARIN_SOURCE_DIR) / "docs" / "formatting.md";
  const std::vector<FencedBlock> blocks = fencedBlocks(file);
  int shown = 0;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    if (blocks[i].info == "ini") continue;
    SCOPED_TRACE("docs/formatting.md:" + std::to_string(blocks[i].line));
    ASSERT_EQ(blocks[i].info, "tsn before");
    ASSERT_LT(i + 1, blocks.size());
    ASSERT_EQ(blocks[i + 1].info, "tsn after");
    const ide::FormatResult result = ide::format(nvf::decode_utf8(blocks[i].text));
    EXPECT_FALSE(result.refusal);
    EXPECT_TRUE(result.faulty.empty());
    const std::string text = nvf::encode_utf8(result.text);
    ++i;
    ++shown;
    if (std::getenv("TESSARIN_UPDATE_GOLDEN") == nullptr) {
      EXPECT_EQ(text, blocks[i].text);
    } else if (text != blocks[i].text) {
      return rewriteBlock(file, blocks[i], text); // the lines of the others move
    }
  }
  EXPECT_GT(shown, 12);
}

} // namespace
