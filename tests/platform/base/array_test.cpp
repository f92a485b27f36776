// Tests of OdArray: sharing, aliasing, exceptions, a random walk against std::vector.
#include "platform/base/array.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "platform/base/error.h"
#include "tests/support/test_seed.h"

namespace {

// Counts living instances; throws from its copy when told to.
struct Counted {
  static int alive;
  static int copiesUntilThrow;

  Counted(int number = 0) : value(number) { ++alive; }
  Counted(const Counted& other) : value(other.value) {
    if (copiesUntilThrow >= 0 && copiesUntilThrow-- == 0) throw std::runtime_error("copy");
    ++alive;
  }
  Counted& operator=(const Counted&) = default;
  ~Counted() { --alive; }
  bool operator==(const Counted&) const = default;

  int value;
};
int Counted::alive = 0;
int Counted::copiesUntilThrow = -1;

template <class T>
std::vector<T> contents(const OdArray<T>& array) {
  return std::vector<T>(array.begin(), array.end());
}

}  // namespace

TEST(OdArray, ChangesOneCopyOnly) {
  const OdArray<OdString> original{L"a", L"b", L"c"};
  const auto expectUnshared = [&](auto change) {
    OdArray<OdString> copy(original);
    EXPECT_EQ(std::as_const(copy).asArrayPtr(), original.asArrayPtr());
    change(copy);
    EXPECT_EQ(contents(original), (std::vector<OdString>{L"a", L"b", L"c"}));
    EXPECT_FALSE(copy == original);
  };
  expectUnshared([](auto& array) { array[0] = L"x"; });
  expectUnshared([](auto& array) { array.setAt(1, array[2]); });
  expectUnshared([](auto& array) { *array.begin() = L"x"; });
  expectUnshared([](auto& array) { array.append(array); });
  expectUnshared([](auto& array) { array.removeAt(1); });
  expectUnshared([](auto& array) { array.resize(5); });
}

TEST(OdArray, TakesItsOwnElementsAsArguments) {
  OdArray<OdString> array;
  for (int i = 0; i < 100; ++i) {
    array.append(array.isEmpty() ? OdString("seed") : array[0]);
    array.insertAt(0, array.last());
  }
  array.setPhysicalLength(array.size());
  array.resize(500, array[3]);
  array.setAt(0, array[499]);
  EXPECT_EQ(array.size(), 500U);
  for (const OdString& each : std::as_const(array)) EXPECT_EQ(each, "seed");
}

TEST(OdArray, RefusesIndicesOutOfRange) {
  OdArray<int> array{1, 2, 3};
  const OdArray<int> none;
  EXPECT_THROW(array[3], OdError_InvalidIndex);
  EXPECT_THROW(array.at(3) = 1, OdError_InvalidIndex);
  EXPECT_THROW(array.setAt(3, 1), OdError_InvalidIndex);
  EXPECT_THROW(array.insertAt(4, 1), OdError_InvalidIndex);
  EXPECT_THROW(array.removeAt(3), OdError_InvalidIndex);
  EXPECT_THROW(array.removeSubArray(2, 1), OdError_InvalidIndex);
  EXPECT_THROW(std::ignore = none.first(), OdError_InvalidIndex);
  EXPECT_THROW(std::ignore = none.last(), OdError_InvalidIndex);
  EXPECT_EQ(contents(array), (std::vector<int>{1, 2, 3}));
}

TEST(OdArray, RaisesOutOfMemoryForMoreThanCanBeAddressed) {
  struct Huge {
    char bytes[std::size_t{1} << 40];
  };
  OdArray<Huge> array;
  try {
    array.reserve(std::numeric_limits<OdUInt32>::max());
    FAIL() << "the request wrapped around";
  } catch (const OdError& error) {
    EXPECT_EQ(error.code(), eOutOfMemory);
  }
  EXPECT_EQ(array.capacity(), 0U);
}

TEST(OdArray, LosesAndLeaksNothingWhenACopyThrows) {
  {
    OdArray<Counted> array;
    for (int i = 0; i < 8; ++i) array.append(Counted(i));
    array.setPhysicalLength(8);
    for (int failAt = 0; failAt < 9; ++failAt) {
      const OdArray<Counted> before(array);
      Counted::copiesUntilThrow = failAt;
      EXPECT_THROW(array.append(Counted(8)), std::runtime_error);
      Counted::copiesUntilThrow = failAt;
      EXPECT_THROW(array.resize(20, Counted(9)), std::runtime_error);
      Counted::copiesUntilThrow = -1;
      EXPECT_TRUE(array == before);
    }
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(OdArray, FollowsAVectorThroughRandomEdits) {
  std::mt19937 random(freshSeed());
  {
    OdArray<Counted> array;
    std::vector<Counted> model;
    std::vector<OdArray<Counted>> copies;
    for (int step = 0; step < 5000; ++step) {
      const auto position = static_cast<OdUInt32>(random() % (model.size() + 1));
      const auto at = static_cast<std::ptrdiff_t>(position);
      switch (random() % 8) {
        case 0:
        case 1:
          array.append(Counted(step));
          model.emplace_back(step);
          break;
        case 2:
          array.insertAt(position, Counted(step));
          model.insert(model.begin() + at, step);
          break;
        case 3:
          if (position == model.size()) break;
          array.removeAt(position);
          model.erase(model.begin() + at);
          break;
        case 4:
          array.resize(position);
          model.resize(position);
          break;
        case 5:
          copies.push_back(array);
          break;
        case 6:
          if (!copies.empty()) copies.erase(copies.begin());
          break;
        default:
          if (position == model.size()) break;
          array[position] = Counted(step);
          model[position] = Counted(step);
      }
      ASSERT_EQ(contents(array), model);
    }
  }
  EXPECT_EQ(Counted::alive, 0);
}
