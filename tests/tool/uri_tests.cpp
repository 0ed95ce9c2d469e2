#include "tools/tsn/Uri.hpp"

#include <gtest/gtest.h>

namespace {

TEST(Uri, OfPaths) {
  struct Case {
    std::string path;
    std::string uri;
  };
  const Case cases[] = {
      {"a.tsn", "a.tsn"},
      {"models/A-z_0~9.tsn", "models/A-z_0~9.tsn"},
      {"a b/é.tsn", "a%20b/%C3%A9.tsn"},
      {"100%/a%20b.tsn", "100%25/a%2520b.tsn"},
      {"<stdin>", "%3Cstdin%3E"},
      // Neither a scheme, a query, a fragment nor another host comes of a name.
      {"c:x.tsn", "c%3Ax.tsn"},
      {"what?#.tsn", "what%3F%23.tsn"},
      {"//host/x.tsn", "file:///host/x.tsn"},
      {"a\\b", "a%5Cb"},
      // Bytes are bytes.
      {"\xFF\x01.tsn", "%FF%01.tsn"},
      {"/", "file:///"},
      {"/tmp/a b.tsn", "file:///tmp/a%20b.tsn"},
      {"./a.tsn", "a.tsn"},
      {"/tmp/.//b/./a.tsn", "file:///tmp/b/a.tsn"},
      {"models/", "models"},
      {".", "."},
      // `..` behind a symbolic link leads elsewhere than its text says, so it stays.
      {"../a/../b.tsn", "../a/../b.tsn"},
      {"...", "..."},
  };
  for (const Case& c : cases) EXPECT_EQ(tessarin::tool::uriOf(c.path), c.uri) << c.path;
}

} // namespace
