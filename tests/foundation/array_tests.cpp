#include "tessarin/foundation/array.hpp"
#include "tessarin/foundation/concatenator.hpp"

#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

using nvf::Array;
using nvf::ArraySize;
using nvf::ArrayType;
using nvf::Concatenator;
using nvf::Dimension;
using nvf::ElementType;
using nvf::Indexer;
using nvf::InvalidArraySize;
using nvf::ustring;
using tessarin::test::digestBytes;
using tessarin::test::expectDistinctInOrder;
using tessarin::test::expectEqualValues;

constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan = std::numeric_limits<double>::quiet_NaN();

template <class T>
Array<T> row(std::vector<T> elements) {
  const ArraySize size(1, elements.size());
  return Array<T>(size, std::move(elements));
}

TEST(ArraySize, ChecksNumbersOfElements) {
  const ArraySize size(2, 3);
  EXPECT_EQ(size.size(), (std::array<std::size_t, 2>{2, 3}));
  EXPECT_EQ(size.numElements(), 6U);
  EXPECT_EQ(size.reshape(6, 1), ArraySize(6, 1));
  EXPECT_THROW(static_cast<void>(size.reshape(4, 2)), InvalidArraySize);
  EXPECT_THROW(size.check(5), InvalidArraySize);
  EXPECT_NO_THROW(size.check(6));
  EXPECT_TRUE(ArraySize(0, huge).isEmpty());
  EXPECT_EQ(ArraySize(1, huge).numElements(), huge);
  EXPECT_THROW(ArraySize(2, huge / 2 + 1), InvalidArraySize);
  EXPECT_THROW(ArraySize(huge, huge), InvalidArraySize);
}

TEST(Array, TypesHaveNamesThatReadBack) {
  struct Case {
    std::string name;
    std::optional<ArrayType> type;
  };
  const Case cases[] = {
      {"bool 1x1", ArrayType{ElementType::Bool, ArraySize(1, 1)}},
      {"int32 2x3", ArrayType{ElementType::Int32, ArraySize(2, 3)}},
      {"uint64 0x0", ArrayType{ElementType::UInt64, ArraySize()}},
      {"double 999999999999x0", std::nullopt}, // rows that no element pays for
      {"double 0x18446744073709551615", ArrayType{ElementType::Double, ArraySize(0, huge)}},
      {"string 10x1", ArrayType{ElementType::Text, ArraySize(10, 1)}},
      {"double 2x18446744073709551615", std::nullopt},
      {"double 1x18446744073709551616", std::nullopt},
      {"double -1x1", std::nullopt},
      {"double 1x1x1", std::nullopt},
      {"double 1", std::nullopt},
      {"double x1", std::nullopt},
      {"double 1x", std::nullopt},
      {"double  1x1", std::nullopt},
      {"double1x1", std::nullopt},
      {"float 1x1", std::nullopt},
      {"x", std::nullopt},
      {" ", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [name, type] : cases) {
    EXPECT_EQ(nvf::array_type(name), type) << name;
    if (type) {
      EXPECT_EQ(nvf::to_user_name(*type), name);
    }
  }
}

TEST(Array, ElementsRunDownTheColumns) {
  const Array<int> array(ArraySize(2, 3), {1, 2, 3, 4, 5, 6});
  EXPECT_EQ(array.at(0, 0), 1);
  EXPECT_EQ(array.at(1, 0), 2);
  EXPECT_EQ(array.at(0, 2), 5);
  EXPECT_EQ(array.reshape(3, 2).at(0, 1), 4);
  EXPECT_EQ(array.reshape(3, 2).begin(), array.begin());
  EXPECT_EQ(Array<int>(array.size(), array.begin()), array);
  EXPECT_THROW(Array<int>(ArraySize(2, 3), {1, 2, 3}), InvalidArraySize);
  EXPECT_EQ(Array<bool>(true).type(), (ArrayType{ElementType::Bool, ArraySize(1, 1)}));
}

TEST(Array, KeepsTheLaws) {
  expectDistinctInOrder<Array<double>>({
      Array<double>(),
      Array<double>(ArraySize(0, 1), {}),
      Array<double>(-infinity),
      Array<double>(-1.0),
      Array<double>(-std::numeric_limits<double>::denorm_min()),
      Array<double>(-0.0),
      Array<double>(0.0),
      Array<double>(1.0),
      Array<double>(infinity),
      Array<double>(nan),
      row<double>({1, 2}),
      row<double>({1, nan}),
      row<double>({2, 1}),
      Array<double>(ArraySize(2, 1), {1, 2}),
  });
  expectDistinctInOrder<Array<int>>({Array<int>(-2), Array<int>(-1), Array<int>(0), Array<int>(1)});
  expectDistinctInOrder<Array<bool>>({Array<bool>(false), Array<bool>(true)});
  expectDistinctInOrder<Array<unsigned long>>({Array<unsigned long>(1), Array<unsigned long>(~0UL)});
  expectDistinctInOrder<Array<ustring>>({row<ustring>({u"", u"ab"}), row<ustring>({u"a", u"b"}),
                                         row<ustring>({u"ab", u""}), row<ustring>({u"\uffff", u""})});
  expectEqualValues(Array<double>(nan), Array<double>(std::copysign(nan, -1.0)));
}

TEST(Array, DigestIsTheSameOnEveryMachine) {
  const std::string scalar = "00000000000000010000000000000001";
  EXPECT_EQ(digestBytes(Array<bool>(true)), scalar + "01");
  EXPECT_EQ(digestBytes(Array<int>(-2)), scalar + "fffffffe");
  EXPECT_EQ(digestBytes(Array<unsigned long>(258)), scalar + "0000000000000102");
  EXPECT_EQ(digestBytes(Array<double>(1.0)), scalar + "3ff0000000000000");
  EXPECT_EQ(digestBytes(Array<double>(-nan)), scalar + "7ff8000000000000");
  EXPECT_EQ(digestBytes(Array<ustring>(u"a\u20ac")), scalar + "0000000000000002006120ac");
  EXPECT_EQ(digestBytes(Array<int>(ArraySize(0, 3), {})), "00000000000000000000000000000003");
}

TEST(Indexer, WalksOverABlock) {
  const ArraySize whole(3, 4);
  std::vector<std::size_t> offsets;
  for (Indexer place(whole, ArraySize(2, 2), 1, 2); !place.done(); ++place) {
    EXPECT_EQ(place.offset(), place.column() * 3 + place.row());
    offsets.push_back(place.offset());
  }
  EXPECT_EQ(offsets, (std::vector<std::size_t>{7, 8, 10, 11}));
  for (const ArraySize empty : {ArraySize(), ArraySize(3, 0), ArraySize(0, 4), ArraySize(0, huge)}) {
    EXPECT_TRUE(Indexer(empty).done());
  }
  EXPECT_THROW(Indexer(whole, ArraySize(2, 2), 2, 0), InvalidArraySize);
  EXPECT_THROW(Indexer(whole, ArraySize(2, 2), 0, 3), InvalidArraySize);
  EXPECT_THROW(Indexer(whole, ArraySize(2, 2), huge, 0), InvalidArraySize);
}

template <class T>
std::optional<Array<T>> joined(Dimension dimension, const std::vector<Array<T>>& parts) {
  Concatenator<T> concatenator(dimension);
  try {
    for (const Array<T>& part : parts) concatenator.append(part);
  } catch (const InvalidArraySize&) {
    return std::nullopt;
  }
  EXPECT_EQ(concatenator.result().size(), concatenator.size());
  return concatenator.result();
}

TEST(Concatenator, JoinsAlongEachDimension) {
  using A = Array<int>;
  const A none;
  const A column(ArraySize(2, 1), {1, 2});
  const A square(ArraySize(2, 2), {3, 4, 5, 6});
  const A wide = row<int>({7, 8});
  struct Case {
    Dimension dimension;
    std::vector<A> parts;
    std::optional<A> result; // nothing where the parts do not fit
  };
  const Case cases[] = {
      {Dimension::Columns, {}, none},
      {Dimension::Rows, {none, none}, none},
      {Dimension::Columns, {A(1), A(2), A(3)}, row<int>({1, 2, 3})},
      {Dimension::Rows, {A(1), A(2)}, column},
      {Dimension::Columns, {column, square}, A(ArraySize(2, 3), {1, 2, 3, 4, 5, 6})},
      {Dimension::Columns, {column, none, square}, A(ArraySize(2, 3), {1, 2, 3, 4, 5, 6})},
      {Dimension::Rows, {square, wide}, A(ArraySize(3, 2), {3, 4, 7, 5, 6, 8})},
      {Dimension::Rows, {none, wide, square}, A(ArraySize(3, 2), {7, 3, 4, 8, 5, 6})},
      {Dimension::Rows, {A(ArraySize(0, 2), {}), wide}, wide},
      {Dimension::Columns, {A(ArraySize(2, 0), {}), column, square}, A(ArraySize(2, 3), {1, 2, 3, 4, 5, 6})},
      {Dimension::Columns, {square, wide}, std::nullopt},
      {Dimension::Rows, {square, column}, std::nullopt},
      {Dimension::Rows, {A(ArraySize(0, 3), {}), wide}, std::nullopt},
      {Dimension::Columns, {A(ArraySize(0, huge), {}), A(ArraySize(0, huge), {})}, std::nullopt},
  };
  for (const auto& [dimension, parts, result] : cases) {
    SCOPED_TRACE(&result - &cases[0].result);
    EXPECT_EQ(joined(dimension, parts), result);
  }
  EXPECT_EQ(joined<bool>(Dimension::Columns, {Array<bool>(true), Array<bool>(false)}), row<bool>({true, false}));
  EXPECT_EQ(joined<ustring>(Dimension::Columns, {Array<ustring>(u"a"), Array<ustring>(u"b")}),
            row<ustring>({u"a", u"b"}));
}

TEST(Concatenator, APartThatDoesNotFitLeavesTheOthers) {
  Concatenator<int> concatenator(Dimension::Columns);
  concatenator.append(Array<int>(1));
  EXPECT_THROW(concatenator.append(Array<int>(ArraySize(2, 1), {1, 2})), InvalidArraySize);
  concatenator.append(Array<int>(2));
  EXPECT_EQ(concatenator.result(), row<int>({1, 2}));
}

TEST(ArrayType, OrdersByElementThenSize) {
  const ArrayType types[] = {{ElementType::Bool, ArraySize(2, 2)},
                             {ElementType::Int32, ArraySize(1, 1)},
                             {ElementType::Int32, ArraySize(1, 2)}};
  for (std::size_t i = 0; i < std::size(types); ++i) {
    for (std::size_t j = 0; j < std::size(types); ++j) {
      EXPECT_EQ(compare(types[i], types[j]), nvf::order(i, j));
      EXPECT_EQ(hash_value(types[i]) == hash_value(types[j]), i == j);
    }
  }
}

} // namespace
