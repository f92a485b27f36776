// What a solver's module would say about constraints, by the plainest rules.
#pragma once

#include <vector>

#include "platform/rx/rx_object.h"
#include "vdm_db/constraints/vdm_constraint.h"
#include "vdm_db/constraints/vdm_db_constraint_manager_pe.h"

/// Types from 10 on are parametric; names are taken as they are wished; nothing is dropped or shown
/// by the drawing.
class PlainSolver : public OdStaticRxObject<VdmDbConstraintManagerPE> {
 public:
  bool isParametric(const VdmConstraint* constraint) override { return constraint->type() >= 10; }
  bool isLinearDimension(const VdmConstraint*) override { return false; }
  bool isAngularDimension(const VdmConstraint*) override { return false; }
  bool attachmentWanted() override { return false; }
  void reservedOperationA() override {}
  bool dropUnmappedConstraint() override { return false; }
  void constraintsRemoved(const OdStringArray&, const OdDbObjectId&) override {}
  OdString generateConstraintName(OdString& name, VdmDbConstraintManager*, VdmConstraint*,
                                  const OdString& wanted, bool) override {
    return name = wanted;
  }
  bool skipRemapping(VdmConstraint*, OdInt32) override { return false; }
  void invalidateTCCache(OdDbDatabase*) override {}
  void reservedOperationB() override {}
  bool getAlignmentFromDrawing(const VdmConstraint*, AlignmentOrientation&) override {
    return false;
  }
  bool getHalfSpacesFromDrawing(const VdmConstraint*, std::vector<HalfSpaceOrientation>&) override {
    return false;
  }
  VdmConstraintOrientationProperties getConstraintOrientationProperties(
      const VdmConstraint*) override {
    return {};
  }
};
