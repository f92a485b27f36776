// Rows of inserts with one pass give what one pass for each gives: bodies, names, openings,
// reports.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <sstream>

#include "host/modeling/component_query.h"
#include "tests/host/modeling/modeling_testing.h"
#include "tests/support/test_seed.h"

using namespace vdm_host;

namespace {

using Lines = std::vector<std::string>;

class InsertRowTest : public ModelingTest {
 protected:
  InsertRowTest() {
    m_blocks = {hole(L"hole", 18.0), hole(L"pit", 12.0, 4.0), boss(L"boss", 15.0, 7.0)};
    OdDbObjectId& bore = m_blocks.emplace_back();
    EXPECT_TRUE(succeeded(makeCounterbore(m_database, L"bore", {6.0, {}, 14.0, 3.0}, bore)));
  }

  /// Inserts on a grid on which tools are apart, touch, meet, hang over the rim or lie off the
  /// plate; without a direction those off the plate fail, unless something earlier is there.
  std::vector<ComponentInsert> randomInserts(std::mt19937& random, int numSteps) const {
    const auto upTo = [&random](int limit) {
      return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    std::vector<ComponentInsert> inserts;
    for (int i = 0; i < numSteps; ++i) {
      ComponentInsert& insert = inserts.emplace_back();
      insert.block = m_blocks[static_cast<std::size_t>(upTo(4))];
      insert.placement.solid = m_plate;
      const double z = upTo(12) == 0 ? 17.0 : 10.0;
      insert.placement.point = {20.0 * upTo(17) - 10.0, 10.0 + 20.0 * upTo(10), z};
      if (upTo(40) != 0) insert.placement.direction = OdGeVector3d::kZAxis;
      if (upTo(6) == 0) insert.placement.direction = OdGeVector3d(0.0, 0.6, 0.8);
      insert.placement.acceptsNoEffect = upTo(10) != 0;
      if (upTo(5) == 0) insert.placement.name = OdString("own " + std::to_string(i));
    }
    return inserts;
  }

  static std::string rounded(const OdGePoint3d& p) {
    std::ostringstream text;
    for (const double value : {p.x, p.y, p.z}) text << std::round(1e4 * value) / 1e4 + 0.0 << ' ';
    return text.str();
  }

  [[nodiscard]] Lines describe(const EditResult& result) const {
    Lines lines{std::string(result.status.text.utf8()), std::to_string(result.ok())};
    if (!result.ok()) return lines;
    const UpdateReport& report = result.report;
    lines.push_back(std::string(component(result.feature)->name().utf8()) + ", skipped " +
                    std::to_string(report.numSkipped) + ", rounds " +
                    std::to_string(report.numRounds) + ", references " +
                    std::to_string(report.references.size()));
    for (const ReferenceReport& r : report.references) {
      lines.push_back(std::string(r.before.utf8()) + " -> " + std::string(r.after.utf8()) + ", " +
                      std::string(r.text.utf8()));
    }
    for (const FeatureReport& feature : report.features) {
      std::string line(feature.name.utf8());
      for (const OdString& part :
           {feature.component, toText(feature.outcome), feature.reason, feature.text}) {
        line += "; " + std::string(part.utf8());
      }
      for (const SolidStep& step : feature.steps) {
        line += "; " + std::string(toText(step.action).utf8());
      }
      lines.push_back(line);
    }
    return lines;
  }

  [[nodiscard]] Lines describeBody() const {
    const OdModelerBodyPtr body = plateBody();
    Lines lines;
    for (OdUInt32 i = 1; i <= body->numFaces(); ++i) {
      lines.push_back("face " + rounded(body->face(i).centroid));
    }
    for (OdUInt32 i = 1; i <= body->numEdges(); ++i) {
      lines.push_back("edge " + rounded(body->edge(i).midPoint));
    }
    std::ranges::sort(lines);
    lines.push_back("volume " + std::to_string(volume()));
    return lines;
  }

  [[nodiscard]] Lines describeOpenings(const std::vector<OdDbObjectId>& features) const {
    Lines lines;
    for (const OdDbObjectId& feature : features) {
      for (const auto& [toolFace, references] : component(feature)->openingDependencies()) {
        Lines faces;
        for (const OdDbObjectId& id : references) {
          const OdUInt32 face = resolvedIndexOf(id);
          faces.push_back(face == 0 ? "nowhere" : rounded(plateBody()->face(face).centroid));
        }
        std::ranges::sort(faces);
        for (const std::string& face : faces) {
          lines.push_back("opening " + std::to_string(toolFace) + ": " + face);
        }
      }
    }
    return lines;
  }

  /// Plays the inserts up to the first one that fails, takes them back, and tells what they did.
  /// `rows` counts those that shared a pass.
  Lines play(const std::vector<ComponentInsert>& inserts, std::size_t* rows) {
    Lines lines;
    std::vector<OdDbObjectId> features;
    {
      EditGroup group(*m_editor);
      const auto take = [&](const EditResult& result) {
        for (std::string& line : describe(result)) lines.push_back(std::move(line));
        if (result.ok()) features.push_back(result.feature);
        return result.ok();
      };
      for (std::size_t at = 0; at < inserts.size();) {
        const std::vector<EditResult> row =
            rows == nullptr ? std::vector<EditResult>() : rowFrom(inserts, at);
        for (const EditResult& result : row) EXPECT_TRUE(take(result));
        at += row.size();
        if (row.size() > 1) *rows += row.size();
        if (!row.empty()) continue;
        const ComponentInsert& one = inserts[at++];
        if (!take(m_editor->insertComponent(one.block, one.placement))) break;
      }
      EXPECT_TRUE(succeeded(plateBody()->check()));
      for (const Lines& part : {describeBody(), describeOpenings(features)}) {
        lines.insert(lines.end(), part.begin(), part.end());
      }
      group.commit();
    }
    if (!features.empty()) m_database->undo();  // a group without changes is no step
    return lines;
  }

  std::vector<EditResult> rowFrom(const std::vector<ComponentInsert>& inserts, std::size_t at) {
    for (std::size_t length = std::min<std::size_t>(inserts.size() - at, 16); length > 1;
         length /= 2) {
      std::size_t next = at;
      std::vector<EditResult> row = m_editor->insertRow([&]() -> std::optional<ComponentInsert> {
        if (next == at + length) return {};
        return inserts[next++];
      });
      if (!row.empty()) return row;
    }
    return {};
  }

  std::vector<OdDbObjectId> m_blocks;
};

TEST_F(InsertRowTest, RandomRowsGiveWhatOnePassForEachGives) {
  const bool isLong = std::getenv("VDM_LONG_TESTS") != nullptr;
  const std::uint32_t seed = isLong ? freshSeed() : 5;
  const auto before = snapshot();
  std::size_t numTogether = 0;
  const std::uint32_t numCases = isLong ? 100 : 4;
  for (std::uint32_t number = 0; number < numCases; ++number) {
    SCOPED_TRACE("seed " + std::to_string(seed + number));
    std::mt19937 random(seed + number);
    const std::vector<ComponentInsert> inserts = randomInserts(random, 12);
    const Lines single = play(inserts, nullptr);
    EXPECT_EQ(snapshot(), before);
    ASSERT_EQ(play(inserts, &numTogether), single);
    EXPECT_EQ(snapshot(), before);
  }
  EXPECT_GT(numTogether, 0U);
}

TEST_F(InsertRowTest, AHundredHolesAreOneCut) {
  std::vector<ComponentInsert> inserts;
  for (int i = 0; i < 100; ++i) {
    ComponentInsert& insert = inserts.emplace_back();
    insert.block = m_blocks[0];
    insert.placement.solid = m_plate;
    insert.placement.point = {15.0 + 29.0 * (i % 10), 10.0 + 19.9 * (i / 10), 10.0};
  }
  auto next = inserts.begin();
  const auto results = m_editor->insertRow([&]() -> std::optional<ComponentInsert> {
    if (next == inserts.end()) return {};
    return *next++;
  });
  ASSERT_EQ(results.size(), 100U);
  EXPECT_EQ(results.back().report.solidWork.size(), 1U);
  EXPECT_EQ(results.back().report.numSkipped, 99U);
  EXPECT_TRUE(isAsFresh(m_base));
  EXPECT_TRUE(done(m_editor->eraseObject(results[37].created)));
  EXPECT_TRUE(isAsFresh(m_base));
}

}  // namespace
