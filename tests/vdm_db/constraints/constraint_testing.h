// A drawing with constraints, a solver's extension, and verbs for the tests of both.
#pragma once

#include <string>
#include <vector>

#include "platform/db/audit_info.h"
#include "tests/support/model_testing.h"
#include "tests/support/plain_solver.h"

/// Counts what it hears, and answers with what is set.
class TestSolver : public PlainSolver {
 public:
  bool isLinearDimension(const VdmConstraint* constraint) override {
    return isParametric(constraint) && !isAngularDimension(constraint);
  }
  bool isAngularDimension(const VdmConstraint* constraint) override {
    return constraint->type() == angularType;
  }
  void constraintsRemoved(const OdStringArray& names, const OdDbObjectId&) override {
    removed = names;
  }
  OdString generateConstraintName(OdString& name, VdmDbConstraintManager*, VdmConstraint*,
                                  const OdString& wanted, bool) override {
    if (raises) throw OdError(eGeneralFailure);
    return name = wanted;
  }
  void invalidateTCCache(OdDbDatabase*) override { ++invalidations; }
  bool getAlignmentFromDrawing(const VdmConstraint*, AlignmentOrientation& alignment) override {
    alignment = drawnAlignment;
    return alignment != kAlignmentNotSpecified;
  }
  bool getHalfSpacesFromDrawing(const VdmConstraint*,
                                std::vector<HalfSpaceOrientation>& halfSpaces) override {
    halfSpaces = drawnSides;
    return !halfSpaces.empty();
  }
  VdmConstraintOrientationProperties getConstraintOrientationProperties(
      const VdmConstraint*) override {
    return offers;
  }

  OdStringArray removed;
  int invalidations = 0;
  bool raises = false;  ///< instead of giving a name
  OdLong angularType = -1;
  VdmConstraintOrientationProperties offers;
  AlignmentOrientation drawnAlignment = kAlignmentNotSpecified;
  std::vector<HalfSpaceOrientation> drawnSides;
};

/// The stored form of a constraint in memory.
struct ConstraintRecord {
  OdDbFilerBuffer buffer;

  explicit ConstraintRecord(const VdmConstraint& constraint);
  /// Of an older version: name "old", type, no arguments, node id 0.
  ConstraintRecord(OdInt16 version, OdLong type, const std::vector<std::string>& map,
                   double value = 2.5);
  VdmConstraintPtr read(OdResult expected = eOk);
  /// The name field.
  [[nodiscard]] OdString name();
  /// The type in the stream.
  [[nodiscard]] OdLong storedType();
};

/// Constraints of the model space.
class ConstraintTest : public ModelTest {
 protected:
  using Manager = VdmDbConstraintManager;

  ConstraintTest();
  ~ConstraintTest() override;

  OdDbObjectId newLine() { return addLine(m_modelSpace); }
  static VdmExtendedPath argument(OdDbObjectId entity);
  /// A constraint with an argument in each entity.
  VdmConstraintPtr addConstraint(OdLong type, const std::vector<OdDbObjectId>& entities,
                                 const OdString& name = L"C");
  [[nodiscard]] VdmDbConstraintManagerPtr manager(OdDb::OpenMode mode = OdDb::kForRead) const {
    return open<Manager>(m_constraints, mode);
  }
  [[nodiscard]] VdmDbConstraintManagerPtr editManager() const { return manager(OdDb::kForWrite); }
  void setStatus(Manager::ConstraintManagerStatus status) { editManager()->setStatus(status); }
  [[nodiscard]] OdDbObjectIdArray registry() const { return manager()->vdmDbObjects(); }
  [[nodiscard]] std::vector<OdULong> nodeIds() const;

  TestSolver m_solver;
};
