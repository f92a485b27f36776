// What every reference must be after an edit, known from the construction of both parts.
#include "bench/naming/truth.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "bench/naming/shape_relation.h"
#include "platform/base/sort_unique.h"

namespace naming_bench {
namespace {

using Type = OdModelerSubentType;
using Key = std::vector<int>;
using Subents = std::vector<OdModelerSubent>;

// Lying on each other: the confusion of the modeller, with what its operations add.
constexpr double kOnEachOther = 1e-5;

Key sortedKey(Key key) {
  std::ranges::sort(key);
  return key;
}

/// Works out the truths of one edit.
class Judgement {
 public:
  Judgement(const Plan& oldPlan, const NamedBody& before, const Plan& newPlan, const NamedBody& now,
            const EditMeaning& meaning)
      : m_oldPlan(oldPlan), m_newPlan(newPlan), m_before(before), m_now(now), m_meaning(meaning) {
    nameSuccessors();
    for (const OdModelerSubent subent : referable(m_now.body())) {
      m_newByKey[{subent.type, m_now.meeting(subent)}].push_back(subent);
    }
    for (const OdModelerSubent subent : referable(m_before.body())) {
      if (const auto key = successor(subent)) m_oldByKey[{subent.type, *key}].push_back(subent);
    }
    if (m_meaning.anywhere) mapSymmetries();
  }

  [[nodiscard]] Truth of(OdModelerSubent subent) const {
    const Key& own = m_before.meeting(subent);
    if (std::ranges::count(own, -1) != 0) return {};
    if (touchesTwin(own)) return {TruthKind::kAmbiguous, {}};
    if (movedBySymmetry(own)) return {TruthKind::kAmbiguous, {}};
    const auto key = successor(subent);
    const auto found = key ? m_newByKey.find({subent.type, *key}) : m_newByKey.end();
    if (found == m_newByKey.end()) return {TruthKind::kGone, {}};
    const Subents& rivals = m_oldByKey.at({subent.type, *key});
    if (rivals.size() > 1) return amongRivals(subent, rivals, found->second);
    if (subent.type == Type::kVertex && found->second.size() > 1) return {};
    return {TruthKind::kAnswer, found->second};
  }

 private:
  using TypedKey = std::pair<Type, Key>;

  void nameSuccessors() {
    std::map<std::string, int> numbers;
    for (std::size_t i = 0; i < m_now.carriers().size(); ++i) {
      numbers.emplace(m_now.carriers()[i].name, static_cast<int>(i));
    }
    for (const Carrier& carrier : m_before.carriers()) {
      const auto renamed = m_meaning.successors.find(carrier.name);
      const std::string& name =
          renamed == m_meaning.successors.end() ? carrier.name : renamed->second;
      const auto found = numbers.find(name);
      m_successors.push_back(found == numbers.end() ? -1 : found->second);
    }
  }

  [[nodiscard]] std::optional<Key> successor(OdModelerSubent subent) const {
    Key key;
    for (const int carrier : m_before.meeting(subent)) {
      if (carrier < 0 || m_successors[static_cast<std::size_t>(carrier)] < 0) return {};
      key.push_back(m_successors[static_cast<std::size_t>(carrier)]);
    }
    key = sortedKey(std::move(key));
    if (subent.type == Type::kVertex) odSortUnique(key);
    return key;
  }

  [[nodiscard]] bool touchesTwin(const Key& key) const {
    return std::ranges::any_of(key, [&](int carrier) {
      return m_meaning.twins.contains(m_before.carriers()[static_cast<std::size_t>(carrier)].name);
    });
  }

  void mapSymmetries() {
    const std::vector<Carrier>& all = m_before.carriers();
    for (const OdGeMatrix3d& local : m_oldPlan.symmetry) {
      const OdGeMatrix3d motion = m_oldPlan.placement * local * m_oldPlan.placement.inverse();
      std::vector<int>& images = m_symmetries.emplace_back();
      for (Carrier carrier : all) {
        carrier.moveBy(motion);
        const auto found = std::ranges::find_if(
            all, [&](const Carrier& other) { return sameCarrier(other, carrier); });
        images.push_back(found == all.end() ? -1 : static_cast<int>(found - all.begin()));
      }
    }
  }

  [[nodiscard]] bool movedBySymmetry(const Key& key) const {
    return std::ranges::any_of(m_symmetries, [&](const std::vector<int>& images) {
      Key moved;
      for (const int carrier : key) moved.push_back(images[static_cast<std::size_t>(carrier)]);
      return sortedKey(moved) != key;
    });
  }

  /// How the feature to which the subentity belongs moved; the whole part when none.
  [[nodiscard]] OdGeMatrix3d motionOf(OdModelerSubent subent) const {
    for (const int carrier : m_before.meeting(subent)) {
      const int feature = m_before.carriers()[static_cast<std::size_t>(carrier)].feature;
      if (feature < 0) continue;
      const Feature& old = m_oldPlan.features[static_cast<std::size_t>(feature)];
      if (const Feature* now = m_newPlan.find(old.name)) {
        return m_newPlan.frameOf(*now) * m_oldPlan.frameOf(old).inverse();
      }
    }
    return m_newPlan.placement * m_oldPlan.placement.inverse();
  }

  [[nodiscard]] bool overlap(OdModelerSubent old, OdModelerSubent now,
                             const OdGeMatrix3d& motion) const {
    const auto onNow = motion * pointOn(m_before.body(), old);
    if (distanceTo(onNow, m_now.body(), now) < kOnEachOther) return true;
    const auto onOld = motion.inverse() * pointOn(m_now.body(), now);
    return distanceTo(onOld, m_before.body(), old) < kOnEachOther;
  }

  [[nodiscard]] Truth amongRivals(OdModelerSubent subent, const Subents& rivals,
                                  const Subents& images) const {
    if (m_meaning.resized) return pairedByDistance(subent, rivals, images);
    const OdGeMatrix3d motion = motionOf(subent);
    Truth truth{TruthKind::kAnswer, {}};
    for (const OdModelerSubent image : images) {
      if (overlap(subent, image, motion)) truth.subents.push_back(image);
    }
    if (!truth.subents.empty()) return truth;
    // Removed only if each image belongs to another one.
    const bool allTaken = std::ranges::all_of(images, [&](OdModelerSubent image) {
      return std::ranges::any_of(rivals, [&](OdModelerSubent rival) {
        return rival != subent && overlap(rival, image, motionOf(rival));
      });
    });
    return {allTaken ? TruthKind::kGone : TruthKind::kUndecided, {}};
  }

  [[nodiscard]] OdModelerSubent nearest(OdModelerSubent old, const Subents& images) const {
    const OdGePoint3d point = motionOf(old) * pointOn(m_before.body(), old);
    return *std::ranges::min_element(images, {}, [&](OdModelerSubent image) {
      return point.distanceTo(pointOn(m_now.body(), image));
    });
  }

  [[nodiscard]] Truth pairedByDistance(OdModelerSubent subent, const Subents& rivals,
                                       const Subents& images) const {
    if (rivals.size() != images.size()) return {};
    std::set<OdModelerSubent> taken;
    for (const OdModelerSubent rival : rivals) taken.insert(nearest(rival, images));
    if (taken.size() != rivals.size()) return {};
    return {TruthKind::kAnswer, {nearest(subent, images)}};
  }

  const Plan& m_oldPlan;
  const Plan& m_newPlan;
  const NamedBody& m_before;
  const NamedBody& m_now;
  const EditMeaning& m_meaning;
  std::vector<int> m_successors;
  std::vector<std::vector<int>> m_symmetries;
  std::map<TypedKey, Subents> m_newByKey;
  std::map<TypedKey, Subents> m_oldByKey;
};

/// Kind, measure and place of a subentity, for comparing identical geometry.
struct Likeness {
  int kind = 0;
  double size = 0.0;
  OdGePoint3d place;
};

Likeness likenessOf(const OdModelerBody& body, OdModelerSubent subent) {
  switch (subent.type) {
    case Type::kFace: {
      const OdModelerFace& face = body.face(subent.index);
      return {static_cast<int>(face.kind), face.area, face.centroid};
    }
    case Type::kEdge: {
      const OdModelerEdge& edge = body.edge(subent.index);
      return {static_cast<int>(edge.kind), edge.length, edge.midPoint};
    }
    default:
      return {0, 0.0, body.vertex(subent.index).point};
  }
}

// Relative: what areas, lengths and centroids lose in exchange files and numeric integration.
constexpr double kIdentical = 1e-4;

bool identical(const Likeness& a, const Likeness& b, double scale) {
  return a.kind == b.kind && std::abs(a.size - b.size) <= kIdentical * (1.0 + a.size) &&
         a.place.distanceTo(b.place) <= kIdentical * scale;
}

}  // namespace

std::vector<OdModelerSubent> referable(const OdModelerBody& body) {
  Subents result;
  for (OdUInt32 i = 1; i <= body.numFaces(); ++i) result.push_back({Type::kFace, i});
  for (OdUInt32 i = 1; i <= body.numEdges(); ++i) {
    if (!body.edge(i).degenerate) result.push_back({Type::kEdge, i});
  }
  for (OdUInt32 i = 1; i <= body.numVertices(); ++i) result.push_back({Type::kVertex, i});
  return result;
}

NamedBody::NamedBody(const Plan& plan, OdModelerBodyPtr body)
    : m_body(std::move(body)), m_carriers(carriersOf(plan)) {
  for (OdUInt32 i = 1; i <= m_body->numFaces(); ++i) {
    m_faces.push_back(carrierOf(m_body->face(i), m_carriers));
    m_faceKeys.push_back({m_faces.back()});
  }
  for (OdUInt32 i = 1; i <= m_body->numEdges(); ++i) {
    const OdModelerEdge& edge = m_body->edge(i);
    Key key;
    for (const OdUInt32 face : edge.faces) key.push_back(carrierOfFace(face));
    if (edge.seam) key.push_back(key.front());
    m_edgeKeys.push_back(sortedKey(std::move(key)));
  }
  for (OdUInt32 i = 1; i <= m_body->numVertices(); ++i) {
    std::set<int> meeting;
    for (const OdUInt32 edge : m_body->vertex(i).edges) {
      meeting.insert(m_edgeKeys[edge - 1].begin(), m_edgeKeys[edge - 1].end());
    }
    m_vertexKeys.emplace_back(meeting.begin(), meeting.end());
  }
}

const std::vector<int>& NamedBody::meeting(OdModelerSubent subent) const {
  if (subent.type == Type::kFace) return m_faceKeys[subent.index - 1];
  return (subent.type == Type::kEdge ? m_edgeKeys : m_vertexKeys)[subent.index - 1];
}

std::size_t NamedBody::unnamed() const {
  return static_cast<std::size_t>(std::ranges::count(m_faces, -1));
}

std::vector<Truth> truthsOf(const Plan& oldPlan, const NamedBody& before, const Plan& newPlan,
                            const NamedBody& now, const EditMeaning& meaning,
                            std::span<const OdModelerSubent> subents) {
  const Judgement judgement(oldPlan, before, newPlan, now, meaning);
  std::vector<Truth> result;
  for (const OdModelerSubent subent : subents) result.push_back(judgement.of(subent));
  return result;
}

std::vector<Truth> truthsByGeometry(const OdModelerBody& before, const OdModelerBody& now,
                                    const OdGeMatrix3d& motion, const OdGeExtents3d& touched,
                                    std::span<const OdModelerSubent> subents) {
  const Subents all = referable(now);
  const double scale = now.extents().diagonal().length();
  std::vector<Truth> result;
  for (const OdModelerSubent subent : subents) {
    Truth& truth = result.emplace_back();
    if (touched.isValidExtents() && !boxAround(before, subent).isDisjoint(touched)) continue;
    Likeness wanted = likenessOf(before, subent);
    wanted.place = motion * wanted.place;
    for (const OdModelerSubent candidate : all) {
      if (candidate.type == subent.type && identical(wanted, likenessOf(now, candidate), scale)) {
        truth.subents.push_back(candidate);
      }
    }
    if (truth.subents.size() == 1) truth.kind = TruthKind::kAnswer;
    if (truth.kind == TruthKind::kUndecided) truth.subents.clear();
  }
  return result;
}

}  // namespace naming_bench
