// The laws that every value class keeps: equality, order, hash and digest agree.
#pragma once

#include "tessarin/foundation/hash.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace tessarin::test {

/// The pieces that a value feeds to a digest.
template <class T>
std::vector<std::string> digestOf(const T& value) {
  std::vector<std::string> pieces;
  nvf::DigestSink sink = [&pieces](const char* bytes, unsigned long size) { pieces.emplace_back(bytes, size); };
  incorporate_data(sink, value);
  return pieces;
}

/// The bytes that a value feeds to a digest, in hexadecimal.
template <class T>
std::string digestBytes(const T& value) {
  std::string out;
  for (const std::string& piece : digestOf(value)) {
    for (const char c : piece) {
      const auto byte = static_cast<unsigned char>(c);
      out += "0123456789abcdef"[byte >> 4U];
      out += "0123456789abcdef"[byte & 0xfU];
    }
  }
  return out;
}

/// Two values that are equal, in whatever way they were made.
template <class T>
void expectEqualValues(const T& a, const T& b) {
  EXPECT_TRUE(a == b);
  EXPECT_EQ(compare(a, b), nvf::Ordering::Equal);
  EXPECT_EQ(hash_value(a), hash_value(b));
  EXPECT_EQ(digestOf(a), digestOf(b));
}

/// Two or more values that all differ, each less than the next.
template <class T>
void expectDistinctInOrder(const std::vector<T>& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (std::size_t j = 0; j < values.size(); ++j) {
      SCOPED_TRACE(std::to_string(i) + " and " + std::to_string(j));
      if (i == j) {
        expectEqualValues(values[i], T(values[j]));
        continue;
      }
      EXPECT_FALSE(values[i] == values[j]);
      EXPECT_EQ(compare(values[i], values[j]), i < j ? nvf::Ordering::Less : nvf::Ordering::Greater);
      EXPECT_NE(hash_value(values[i]), hash_value(values[j]));
      EXPECT_NE(digestOf(values[i]), digestOf(values[j]));
    }
  }
  T a = values.at(0);
  T b = values.at(1);
  using std::swap;
  swap(a, b);
  EXPECT_TRUE(a == values[1] && b == values[0]);
}

} // namespace tessarin::test
