// Marks the tests of very large and very deep texts, which take minutes under a sanitizer.
#pragma once

#include <gtest/gtest.h>

/// A test that has the label `large` for CTest, so that `./dev test --quick` and `./dev memcheck` leave it out. The
/// build reads the mark off the source (cmake/TessarinMarkLarge.cmake), so it stands at the beginning of a line.
#define LARGE_TEST(suite, name) TEST(suite, name)
