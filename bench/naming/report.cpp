// The benchmark's tables.
#include "bench/naming/report.h"

#include <cstdarg>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>

namespace naming_bench {
namespace {

using Scores = std::vector<Score>;

[[gnu::format(printf, 1, 2)]] std::string printed(const char* format, ...) {
  char buffer[256];
  va_list values;
  va_start(values, format);
  std::vsnprintf(buffer, sizeof buffer, format, values);
  va_end(values);
  return buffer;
}

std::size_t sumOf(const Score& score) {
  return score.total(TruthKind::kAnswer) + score.total(TruthKind::kGone) +
         score.total(TruthKind::kAmbiguous);
}

/// Sums by a key of the cases, in the order in which the keys first come.
template <class KeyOf>
std::vector<std::pair<std::string, Scores>> sumsBy(const RunResult& result, KeyOf keyOf) {
  std::vector<std::pair<std::string, Scores>> sums;
  std::map<std::string, std::size_t> places;
  for (const CaseResult& one : result.cases) {
    const auto [place, isNew] = places.emplace(keyOf(one), sums.size());
    if (isNew) sums.emplace_back(place->first, Scores(result.methods.size()));
    Scores& scores = sums[place->second].second;
    for (std::size_t m = 0; m < scores.size(); ++m) scores[m].add(one.scores[m]);
  }
  return sums;
}

constexpr const char* kLegend = "right, lost, wrong, ambiguous";

std::string sectionOf(const char* title, const RunResult& result,
                      const std::vector<std::pair<std::string, Scores>>& sums) {
  std::string text = printed("%-24s %7s", title, "refs");
  for (const std::string& method : result.methods) text += printed(" | %-23s", method.c_str());
  text += "\n";
  for (const auto& [name, scores] : sums) {
    text += printed("%-24s %7zu", name.c_str(), sumOf(scores.front()));
    for (const Score& score : scores) {
      text +=
          printed(" | %5zu %5zu %5zu %5zu", score.all(Verdict::kRight), score.all(Verdict::kLost),
                  score.all(Verdict::kWrong), score.all(Verdict::kAmbiguous));
    }
    text += "\n";
  }
  return text;
}

double share(std::size_t part, std::size_t whole) {
  return whole == 0 ? 0.0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

std::string summaryOf(const RunResult& result, const Scores& scores) {
  std::string text = printed("%-16s %28s %20s %26s %8s\n", "method", "right where an answer is",
                             "lost when gone", "ambiguous when built so", "wrong");
  for (std::size_t m = 0; m < scores.size(); ++m) {
    const Score& s = scores[m];
    const auto part = [&](TruthKind kind) {
      return printed("%zu of %zu, %.2f %%", s.of(kind, Verdict::kRight), s.total(kind),
                     share(s.of(kind, Verdict::kRight), s.total(kind)));
    };
    text += printed("%-16s %28s %20s %26s %8zu\n", result.methods[m].c_str(),
                    part(TruthKind::kAnswer).c_str(), part(TruthKind::kGone).c_str(),
                    part(TruthKind::kAmbiguous).c_str(), s.all(Verdict::kWrong));
  }
  return text;
}

nlohmann::json jsonOf(const Score& score) {
  const auto row = [&](TruthKind kind) {
    return nlohmann::json{{"right", score.of(kind, Verdict::kRight)},
                          {"lost", score.of(kind, Verdict::kLost)},
                          {"wrong", score.of(kind, Verdict::kWrong)},
                          {"ambiguous", score.of(kind, Verdict::kAmbiguous)}};
  };
  return {{"answer", row(TruthKind::kAnswer)},
          {"gone", row(TruthKind::kGone)},
          {"ambiguous", row(TruthKind::kAmbiguous)}};
}

}  // namespace

std::string tableOf(const RunResult& result) {
  std::size_t undecided = 0;
  for (const CaseResult& one : result.cases) undecided += one.undecided;
  const auto all = sumsBy(result, [](const CaseResult&) { return std::string("all"); });
  if (all.empty()) return "no case\n";
  std::string text = printed("%zu references over %zu edits; each method: %s\n",
                             sumOf(all.front().second.front()), result.cases.size(), kLegend);
  text += printed("%zu more references not judged, %zu edits refused by the modeller\n\n",
                  undecided, result.refused);
  text += sectionOf("edit", result, sumsBy(result, [](const CaseResult& c) {
                      return c.hasHistory ? c.edit : c.edit + " *";
                    }));
  text += "* without history\n\n";
  text += sectionOf("family", result, sumsBy(result, [](const CaseResult& c) { return c.family; }));
  text += "\n" + sectionOf("", result, all);
  return text + "\n" + summaryOf(result, all.front().second);
}

std::string jsonOf(const RunResult& result) {
  nlohmann::json cases = nlohmann::json::array();
  Scores sums(result.methods.size());
  for (const CaseResult& one : result.cases) {
    nlohmann::json methods;
    for (std::size_t m = 0; m < result.methods.size(); ++m) {
      methods[result.methods[m]] = jsonOf(one.scores[m]);
      sums[m].add(one.scores[m]);
    }
    cases.push_back({{"family", one.family},
                     {"model", one.model},
                     {"edit", one.edit},
                     {"seed", one.seed},
                     {"history", one.hasHistory},
                     {"judged", one.judged},
                     {"undecided", one.undecided},
                     {"methods", methods}});
  }
  nlohmann::json totals;
  for (std::size_t m = 0; m < result.methods.size(); ++m) {
    totals[result.methods[m]] = jsonOf(sums[m]);
  }
  return nlohmann::json{{"totals", totals}, {"cases", cases}, {"refused", result.refused}}.dump(1);
}

}  // namespace naming_bench
