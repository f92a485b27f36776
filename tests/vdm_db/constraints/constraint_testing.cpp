// A drawing with constraints.
#include "tests/vdm_db/constraints/constraint_testing.h"

#include "vdm_db/constraints/vdm_constraint_manager_services.h"

// ---- Records

ConstraintRecord::ConstraintRecord(const VdmConstraint& constraint) {
  OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer);
  constraint.dwgOutFields(&filer);
}

ConstraintRecord::ConstraintRecord(OdInt16 version, OdLong type,
                                   const std::vector<std::string>& map, double value) {
  OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer);
  filer.wrInt16(version);
  filer.wrString(L"old");
  filer.wrInt32(type);
  filer.wrInt32(77);
  filer.wrDouble(value);
  filer.wrInt32(0);
  filer.wrHardPointerId(OdDbObjectId::kNull);
  filer.wrBool(false);
  if (version < 2) return;
  filer.wrInt32(static_cast<OdInt32>(map.size() / 2));
  for (const std::string& text : map) filer.wrString(OdString(text));
}

VdmConstraintPtr ConstraintRecord::read(OdResult expected) {
  OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer);
  filer.startReading(0, 0);
  VdmConstraintPtr constraint = VdmConstraint::createObject();
  EXPECT_EQ(constraint->dwgInFields(&filer), expected);
  return constraint;
}

OdString ConstraintRecord::name() {
  OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer);
  filer.startReading(0, 0);
  filer.rdInt16();
  return filer.rdString();
}

OdLong ConstraintRecord::storedType() {
  OdDbMemoryFiler filer(OdDbDwgFiler::kFileFiler, buffer);
  filer.startReading(0, 0);
  filer.rdInt16();
  filer.rdString();
  return filer.rdInt32();
}

// ---- Drawing

ConstraintTest::ConstraintTest() {
  Manager::desc()->addX(VdmDbConstraintManagerPE::desc(), &m_solver);
}

ConstraintTest::~ConstraintTest() { Manager::desc()->delX(VdmDbConstraintManagerPE::desc()); }

VdmExtendedPath ConstraintTest::argument(OdDbObjectId entity) {
  VdmExtendedPath path;
  path.path = face(entity, 1);
  return path;
}

VdmConstraintPtr ConstraintTest::addConstraint(OdLong type,
                                               const std::vector<OdDbObjectId>& entities,
                                               const OdString& name) {
  VdmExtendedPathArray arguments;
  for (const OdDbObjectId& entity : entities) arguments.append(argument(entity));
  VdmConstraintManagerServices services;
  return editManager()->addConstraint(type, arguments, services, name, /*flag=*/false);
}

std::vector<OdULong> ConstraintTest::nodeIds() const {
  std::vector<OdULong> ids;
  for (const VdmConstraintPtr& constraint : manager()->constraints()) {
    ids.push_back(constraint->nodeId());
  }
  return ids;
}
