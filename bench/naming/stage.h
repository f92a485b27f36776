// A part under edit: carries out operations at the modeller and writes down what a host would know
// of them: the journal of changes, and which tool cut which face.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/naming/plan.h"
#include "platform/modeler/modeler.h"
#include "platform/modeler/solid_journal.h"

namespace naming_bench {

/// A tool that cut or grew the part. `faces[k]` are the faces of the present body that come from
/// face k + 1 of the tool; `residue` is the piece of material that it took or gave.
struct ToolTrack {
  OdModelerBodyPtr tool;
  OdModelerBodyPtr residue;
  bool unites = false;
  std::vector<std::vector<OdUInt32>> faces;
};

/// A part ready to be edited: bodies are immutable, so copies are cheap and independent.
struct Part {
  Plan plan;
  OdModelerBodyPtr body;
  std::map<std::string, ToolTrack> tracks;  ///< by feature
};

/// A tool that went, and perhaps came again: the faces that it made before and makes now, by tool
/// face.
struct Respawn {
  std::string feature;
  std::vector<std::vector<OdUInt32>> before;  ///< faces of the body before the edit
  std::vector<std::vector<OdUInt32>>
      after;            ///< faces of the body after it; empty when none is left
  OdGeMatrix3d motion;  ///< of the tool
};

/// One operation, so that it can be done again.
struct Operation {
  enum class Kind { kBoolean, kFillet, kChamfer, kMove, kReplace };
  Kind kind = Kind::kReplace;
  OdModelerBooleanKind boolean = OdModelerBooleanKind::kUnite;
  OdModelerBodyPtr body;  ///< tool of a boolean, new body of a replacement
  OdUInt32 edge = 0;
  double size = 0.0;  ///< of a blend
  OdGeMatrix3d motion;
};

/// What one edit did. The changes name no solid.
struct EditTrace {
  OdModelerBodyPtr before;
  OdModelerBodyPtr after;
  std::vector<Operation> operations;
  std::vector<OdSolidChange> changes;  ///< of each operation
  std::vector<Respawn> respawns;
};

/// Edits one part. Operations raise std::runtime_error when the modeller refuses.
class Stage {
 public:
  explicit Stage(Part& part) : m_part(part) { begin(); }

  [[nodiscard]] const OdModelerBodyPtr& body() const { return m_part.body; }
  Part& part() { return m_part; }

  /// Starts a new trace at the present body.
  void begin();
  /// The edit since begin().
  [[nodiscard]] const EditTrace& finish();

  // Operations with a history.
  void combine(OdModelerBooleanKind kind, const OdModelerBodyPtr& tool);
  void fillet(OdUInt32 edge, double radius);
  void chamfer(OdUInt32 edge, double distance);
  // Operations without.
  void move(const OdGeMatrix3d& motion);
  void replace(const OdModelerBodyPtr& body);

  // Features of the plan, which the caller keeps in step.
  void insert(const Feature& feature);
  void heal(const std::string& feature);
  /// Heals the features of these names in turn and inserts `now`, their new forms, in turn.
  void recut(const std::vector<Feature>& now);

 private:
  struct Pending {
    std::string feature;
    OdGeMatrix3d frame;  ///< before the edit
    std::vector<std::vector<OdUInt32>> before;
  };

  using Blending = decltype(&OdModeler::fillet);
  void blend(Operation::Kind kind, Blending operation, OdUInt32 edge, double size);
  void change(Operation operation, OdSolidChange change);

  Part& m_part;
  Part m_atBegin;
  EditTrace m_trace;
  std::vector<Pending> m_pending;
};

/// The part of a plan, its features inserted one after the other.
[[nodiscard]] Part startPart(const Plan& plan);

}  // namespace naming_bench
