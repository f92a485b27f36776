// Reads the faces of a body under one motion, stage by stage.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "host/naming/reading.h"

namespace vdm_host {

/// The signatures after a motion, in their order.
[[nodiscard]] std::vector<SubentSignature> movedBy(const OdGeMatrix3d& motion,
                                                   const std::vector<SubentSignature>& items);
/// Faces that look alike wherever they lie; numbers from 1.
struct LookAlikes {
  std::vector<OdUInt32> olds;
  std::vector<OdUInt32> nows;
};

[[nodiscard]] SubentSignature shiftedBy(const SubentSignature& face, const OdGeVector3d& by);
/// Outward normals, or axes whatever their sign, within 25 degrees.
[[nodiscard]] bool facesTheSameWay(const SubentSignature& a, const SubentSignature& b);

/// The stages of readFaces(), each named after its law. The laws of displacement are in
/// face_reader_displaced.cpp.
class FaceReader {
 public:
  FaceReader(const FaceScene& scene, const BodyMotion& motion)
      : m_scene(scene),
        m_motion(motion),
        m_old(movedBy(motion.matrix, scene.oldFaces.items)),
        m_now(scene.newFaces.items),
        m_pairs(m_old, m_now, scene.grid, scene.tolerance),
        m_isIdentical(m_now.size() + 1, 0) {}

  FaceReading run();

 private:
  [[nodiscard]] const SubentSignature& old(OdUInt32 face) const { return m_old[face - 1]; }
  [[nodiscard]] const SubentSignature& now(OdUInt32 face) const { return m_now[face - 1]; }
  [[nodiscard]] bool isFresh(OdUInt32 face) const { return !m_pairs.isTaken(face); }
  [[nodiscard]] double length() const { return m_scene.tolerance.length; }

  [[nodiscard]] std::size_t countOpen() const;
  template <class Stage>
  void stageAt(double cost, const Stage& stage) {
    const std::size_t open = countOpen();
    stage();
    const std::size_t decided = open - countOpen();
    m_cost -= static_cast<double>(decided) * (1.0 - cost);
  }

  // ---- Law 1

  void takeIdentical();

  // ---- Law 2

  // Classes of faces that look alike and face the same way, among those that `counts` accepts.
  template <class CountsOld, class CountsNow>
  [[nodiscard]] std::vector<LookAlikes> classesOf(const CountsOld& countsOld,
                                                  const CountsNow& countsNow) const {
    std::vector<LookAlikes> classes;
    std::unordered_map<OdUInt32, std::vector<std::size_t>> byShape;
    const auto classOf = [&](const SubentSignature& face) -> LookAlikes& {
      std::vector<std::size_t>& rows = byShape[face.shapeHash()];
      for (const std::size_t row : rows) {
        const LookAlikes& known = classes[row];
        const SubentSignature& first =
            known.olds.empty() ? now(known.nows.front()) : old(known.olds.front());
        if (facesTheSameWay(face, first)) return classes[row];
      }
      rows.push_back(classes.size());
      return classes.emplace_back();
    };
    for (OdUInt32 face = 1; face <= m_old.size(); ++face) {
      if (countsOld(face)) classOf(old(face)).olds.push_back(face);
    }
    for (OdUInt32 face = 1; face <= m_now.size(); ++face) {
      if (countsNow(face)) classOf(now(face)).nows.push_back(face);
    }
    return classes;
  }

  [[nodiscard]] OdUInt32 landing(const SubentSignature& face) const;

  void contestRows();

  [[nodiscard]] bool isContestedRow(const LookAlikes& row) const;

  // ---- Law 3

  struct Landing {
    OdUInt32 old = 0;
    OdUInt32 now = 0;
  };
  struct Field {
    OdGeVector3d by;
    std::vector<Landing> landings;
  };

  void takeDisplacedTogether();

  bool takeBestField();

  void take(const Field& field);

  [[nodiscard]] bool isHeldInPlace(const Landing& one, const std::vector<OdUInt8>& moves) const;

  [[nodiscard]] std::vector<OdGeVector3d> votedVectors() const;

  [[nodiscard]] Field fieldOf(const OdGeVector3d& by) const;

  [[nodiscard]] static std::size_t countGroups(std::vector<OdUInt32> faces,
                                               const SignatureLevel& level);
  [[nodiscard]] std::size_t countFeatures(const Field& field) const;

  [[nodiscard]] bool isMostOfTheBody(const Field& field) const;

  [[nodiscard]] bool isWithinReach(const Field& field) const;

  [[nodiscard]] bool isContested(const std::vector<Field>& fields) const;

  [[nodiscard]] bool explainsAllLookAlikes(const Field& field) const;

  // ---- Law 3, stretched

  void takeStretched();

  [[nodiscard]] bool isInner(const SubentSignature& face) const;

  [[nodiscard]] OdUInt32 stretchedLanding(const SubentSignature& before,
                                          const SubentSignature& stretched) const;

  // ---- Law 4

  void takeParts();

  [[nodiscard]] bool overlap(OdUInt32 oldFace, OdUInt32 newFace) const;

  [[nodiscard]] bool isContained(OdUInt32 newFace, OdUInt32 oldFace) const;

  [[nodiscard]] bool anyInside(const OdModelerBody& from, OdUInt32 face, const OdGeMatrix3d& motion,
                               const OdModelerBody& into, OdUInt32 other) const;

  [[nodiscard]] bool isInside(const OdGePoint3d& point, const OdModelerBody& body,
                              OdUInt32 face) const;

  // ---- Law 5

  void takeNear();

  [[nodiscard]] std::optional<double> costOfNeighbours(OdUInt32 oldFace, OdUInt32 newFace) const;

  // ---- What the weighing asks

  [[nodiscard]] double shareInPlace() const;
  [[nodiscard]] bool isInPlace(OdUInt32 face) const;

  // ---- Law 6

  void markMovedAway();

  const FaceScene& m_scene;
  const BodyMotion& m_motion;
  std::vector<SubentSignature> m_old;  // under the motion
  const std::vector<SubentSignature>& m_now;
  SignaturePairing m_pairs;
  std::vector<OdUInt8> m_isIdentical;  // by new face
  double m_cost = 0.0;
  std::size_t m_identical = 0;
};

}  // namespace vdm_host
