// Tests of the rows of a batch: sweeps, names, order, who computes which.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>

#include "host/batch/row_choice.h"
#include "host/batch/row_order.h"
#include "host/batch/row_queue.h"
#include "host/batch/sweep.h"

namespace {

using namespace batch;

std::string joined(const std::vector<std::string>& texts) {
  std::string text;
  for (const std::string& one : texts) text += (text.empty() ? "" : "|") + one;
  return text;
}

/// The values of a sweep, or what is wrong with it.
std::string valuesOf(const char* text) {
  Sweep sweep;
  const OdStatus status = parseSweep(text, sweep);
  return status.ok() ? joined(sweep.values) : std::string(status.text.utf8());
}

TEST(Sweep, HasTheValuesThatAUserMeans) {
  const std::pair<const char*, const char*> kRows[] = {
      {"d=6..7.5:0.5", "6|6.5|7|7.5"},
      {" d = 6 mm .. 8 mm : 1", "6 mm|7 mm|8 mm"},
      {"d=0..1:0.1", "0|0.1|0.2|0.3|0.4|0.5|0.6|0.7|0.8|0.9|1"},
      {"d=1..-1", "1|0|-1"},
      {"d=0.3..-0.3:0.3 in", "0.3 in|0 in|-0.3 in"},
      {"d=1..2:0.4", "1|1.4|1.8"},
      {"d=6,max(n, 2) , 8 mm", "6|max(n, 2)|8 mm"},
      {"d=1..2:0", "sweep 'd=1..2:0': the step must be above 0"},
      {"d=1..2:-1", "sweep 'd=1..2:-1': the step must be above 0"},
      {"d=1..x", "sweep 'd=1..x': write from..to:step, such as d=6..12:0.5"},
      {"d=1..inf", "sweep 'd=1..inf': write from..to:step, such as d=6..12:0.5"},
      {"d=0..1:1e-9", "sweep 'd=0..1:1e-9': there are too many values"},
      {"d=1 mm..2 in", "sweep 'd=1 mm..2 in': the units mm and in cannot be mixed"},
      {"d=1,,2", "sweep 'd=1,,2': a value is missing"},
      {"d=1,1", "sweep 'd=1,1': the value 1 comes twice"},
      {"=1", "sweep '=1': write parameter=from..to:step, or parameter=value,value"},
  };
  for (const auto& [text, values] : kRows) EXPECT_EQ(valuesOf(text), values);
}

TEST(Sweep, ProductsHaveAllCombinationsOnce) {
  std::vector<SweepPoint> points;
  ASSERT_TRUE(multiplySweeps({{"a", {"1", "2"}}, {"b", {"x", "y", "z"}}}, points).ok());
  EXPECT_EQ((std::set<SweepPoint>(points.begin(), points.end()).size()), 6U);
  EXPECT_EQ(points[1], (SweepPoint{{"a", "1"}, {"b", "y"}}));
  EXPECT_FALSE(multiplySweeps({{"a", {"1"}}, {"A", {"2"}}}, points).ok());
  const std::vector<std::string> many(400, "1");
  EXPECT_FALSE(multiplySweeps({{"a", many}, {"b", many}}, points).ok());
}

TEST(RowChoice, TakesNamesListsAndRanges) {
  const std::vector<std::string> names{"S", "M", "L", "a,b", "X..Y"};
  const std::pair<const char*, std::vector<std::size_t>> kRows[] = {{"all", {0, 1, 2, 3, 4}},
                                                                    {"m", {1}},
                                                                    {"L,S", {2, 0}},
                                                                    {"S..L", {0, 1, 2}},
                                                                    {"L..S", {2, 1, 0}},
                                                                    {"S..M,M,L", {0, 1, 2}},
                                                                    {"a,b", {3}},
                                                                    {"X..Y", {4}}};
  for (const auto& [text, wanted] : kRows) {
    std::vector<std::size_t> chosen;
    EXPECT_TRUE(chooseRows(names, text, chosen).ok()) << text;
    EXPECT_EQ(chosen, wanted) << text;
  }
  std::vector<std::size_t> chosen;
  EXPECT_EQ(chooseRows(names, "S..XL", chosen).text,
            L"there is no configuration XL, there are S, M, L, a,b, X..Y");
}

TEST(RowOrder, NeighboursOfAProductDifferInOneValueAndHeavyOnesChangeSeldom) {
  // Rows of 4 x 5 x 3, in an order without any.
  std::vector<RowColumn> columns{{{}, 1.0}, {{}, 100.0}, {{}, 10.0}};
  for (std::size_t i = 0; i < 60; ++i) {
    const std::size_t at = i * 37 % 60;
    columns[0].values.push_back(std::to_string(at % 4));
    columns[1].values.push_back(std::to_string(at / 4 % 5));
    columns[2].values.push_back(std::to_string(at / 20));
  }
  std::vector<std::size_t> order = orderRows(columns, 60);
  EXPECT_DOUBLE_EQ(changesOf(columns, order), 4 * 100 + 10 * 10 + 45 * 1);
  std::ranges::sort(order);
  std::vector<std::size_t> all(60);
  std::iota(all.begin(), all.end(), std::size_t{0});
  EXPECT_EQ(order, all);
}

TEST(RowQueue, GivesEachRowOnceAndNeighboursToOneWorker) {
  std::vector<std::size_t> order(20);
  std::iota(order.rbegin(), order.rend(), std::size_t{0});
  RowQueue queue(order, 3);
  EXPECT_EQ(queue.take(0), 19U);
  EXPECT_EQ(queue.take(0), 18U);
  std::set<std::size_t> taken{19, 18};
  while (const auto row = queue.take(2)) EXPECT_TRUE(taken.insert(*row).second);
  EXPECT_EQ(taken.size(), 20U);  // what the others have not begun is taken over
  EXPECT_FALSE(queue.take(1));
}

}  // namespace
