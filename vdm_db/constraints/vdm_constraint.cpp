// Constraints: their arguments and properties, and the signals of their changes.
#include "vdm_db/constraints/vdm_constraint.h"

#include <utility>

#include "platform/base/error.h"
#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

OD_RX_DEFINE(VdmConstraint, OdRxObject, L"VdmDbConstraint")

namespace {

/// Raises for what is no dependency and for what cannot be opened.
VdmDbObjectDependencyPtr openArgument(const OdDbObjectId& id) {
  const OdDbObjectPtr object = id.openObject();
  if (object.isNull()) {
    throw OdError(eNotOpenForRead, OdString("constraint argument ") + id.getHandle().ascii());
  }
  return VdmDbObjectDependencyPtr(object);  // raises for another class
}

/// A letter that says something about the side of an argument.
bool isHalfSpaceLetter(wchar_t letter) {
  return letter == L'0' || letter == L'+' || letter == L'-' || letter == L'K';
}

}  // namespace

const OdString& VdmConstraint::nodeIdKey() {
  static const OdString kKey(L"nodeId");
  return kKey;
}

VdmConstraint::VdmConstraint() { m_properties.mapProperty(nodeIdKey(), &m_nodeId); }
VdmConstraint::~VdmConstraint() = default;

// ---- Place

OdResult VdmConstraint::setOwner(const OdDbObjectId& owner) {
  m_owner = owner;
  return eOk;
}

OdDbDatabase* VdmConstraint::database() const { return m_owner.database(); }

VdmDbConstraintManagerPEPtr VdmConstraint::getConstraintManagerPE() const {
  const OdDbObjectPtr manager = m_owner.openObject(OdDb::kForRead);
  return manager.isNull() ? VdmDbConstraintManagerPEPtr()
                          : VdmDbConstraintManagerPE::cast(manager.get());
}

// ---- Signals of changes

void VdmConstraint::notifyOwner(NotifyCode code) {
  const auto manager = m_owner.openAs<VdmDbConstraintManager>(OdDb::kForWrite);
  if (!manager.isNull()) manager->notifyConstraintModify(this, code);
}

void VdmConstraint::signalModification(NotifyCode code) {
  notifyOwner(code);
  if (code == kAfterModify) decideLowestSoftVersionCode();
}

void VdmConstraint::decideLowestSoftVersionCode() {
  if (m_type == 0 || m_type > kNewestType) return;
  OdLong present = 0;
  m_properties.getProperty(kVdmSoftVersion, present);
  if (present > kNewestSoftVersion) return;  // a newer writer's marks stay

  const OdLong code = lowestSoftVersionCode();
  if (code == 0) {
    m_properties.removeProperty(kVdmSoftVersion);
    m_properties.removeProperty(kVdmExType);
    return;
  }
  putProperty(kVdmSoftVersion, code);
  putProperty(kVdmExType, m_type);
}

// 1: the newest types, explicit measurement modes. 2: default geometry. 3: alignment, half spaces.
// Angle orientations and the mode for circles say nothing: readers of all versions know them.
OdLong VdmConstraint::lowestSoftVersionCode() const {
  constexpr OdLong kFirstNewType = 15;
  OdLong code = 0;
  if (m_type >= kFirstNewType || m_properties.hasProperty(kVdmMeasureMode0) ||
      m_properties.hasProperty(kVdmMeasureMode1)) {
    code = 1;
  }
  for (const OdLong geometry : m_defaultGeometry) {
    if (geometry != vdmu::kDefaultGeometryNone) code = 2;
  }
  OdLong alignment = 0;
  if (m_properties.getProperty(kVdmAlignmentOrientation, alignment)) code = 3;
  OdString halfSpaces;
  if (!m_properties.getProperty(kVdmHalfSpaceOrientation, halfSpaces)) return code;
  const OdUInt32 letters = static_cast<OdUInt32>(halfSpaces.getLength());
  for (OdUInt32 i = 0; i < m_arguments.size() && i < letters; ++i) {
    if (isHalfSpaceLetter(halfSpaces[i])) return 3;
  }
  return code;
}

// ---- Kind and state

void VdmConstraint::setType(OdLong type) {
  change([&] { m_type = type; });
}

void VdmConstraint::setEnabled(bool enabled) {
  change([&] { m_enabled = enabled; });
}

bool VdmConstraint::isParametric() const {
  const VdmDbConstraintManagerPEPtr pe = getConstraintManagerPE();
  return !pe.isNull() && pe->isParametric(this);
}

bool VdmConstraint::isLinearDimension() const {
  const VdmDbConstraintManagerPEPtr pe = getConstraintManagerPE();
  return !pe.isNull() && pe->isLinearDimension(this);
}

bool VdmConstraint::isAngularDimension() const {
  const VdmDbConstraintManagerPEPtr pe = getConstraintManagerPE();
  return !pe.isNull() && pe->isAngularDimension(this);
}

void VdmConstraint::setUserValue(double value) {
  if (!isParametric()) return;
  change([&] { m_userValue = value; });
}

bool VdmConstraint::isSupportedVersion() const {
  OdLong softVersion = 0;
  return !m_properties.getProperty(kVdmSoftVersion, softVersion) ||
         softVersion <= kNewestSoftVersion;
}

// ---- Arguments

void VdmConstraint::setDependencies(const std::vector<ExtendedDep>& dependencies) {
  signalModification(kBeforeModify);
  m_arguments.clear();
  m_defaultGeometry.clear();
  bool anyDefaultGeometry = false;
  for (const ExtendedDep& dependency : dependencies) {
    m_arguments.append(dependency.dependency);
    m_defaultGeometry.append(dependency.isDefaultGeometry
                                 ? dependency.defaultGeometry
                                 : static_cast<OdLong>(vdmu::kDefaultGeometryNone));
    anyDefaultGeometry = anyDefaultGeometry || dependency.isDefaultGeometry;
  }
  m_properties.removeProperty(kVdmArrayRefCsType);
  if (anyDefaultGeometry) m_properties.setProperty(kVdmArrayRefCsType, m_defaultGeometry);
  notifyOwner(kDataChanged);
  decideLowestSoftVersionCode();
}

std::vector<ExtendedDep> VdmConstraint::dependencies() const {
  std::vector<ExtendedDep> dependencies;
  dependencies.reserve(m_arguments.size());
  for (OdUInt32 i = 0; i < m_arguments.size(); ++i) {
    ExtendedDep& dependency = dependencies.emplace_back();
    dependency.dependency = m_arguments[i];
    if (i >= m_defaultGeometry.size()) continue;
    dependency.defaultGeometry = m_defaultGeometry[i];
    dependency.isDefaultGeometry = m_defaultGeometry[i] != vdmu::kDefaultGeometryNone;
  }
  return dependencies;
}

bool VdmConstraint::getArgument(OdUInt32 index, OdDbFullSubentPath& path) const {
  path = OdDbFullSubentPath();
  return m_arguments[index].isNull() ||
         openArgument(m_arguments[index])->getLinkObject(path, /*openErased=*/false) !=
             vdmu::ePathInvalid;
}

bool VdmConstraint::getExtArgument(OdUInt32 index, VdmExtendedPath& path) const {
  path = VdmExtendedPath();
  if (!getArgument(index, path.path)) return false;
  path.isDefaultGeometry = m_defaultGeometry[index] != vdmu::kDefaultGeometryNone;
  if (path.isDefaultGeometry) path.defaultGeometry = m_defaultGeometry[index];
  return true;
}

VdmExtendedPathArray VdmConstraint::getExtArguments() const {
  VdmExtendedPathArray paths;
  VdmExtendedPath path;
  for (OdUInt32 i = 0; i < m_arguments.size(); ++i) {
    if (getExtArgument(i, path)) paths.append(path);
  }
  return paths;
}

OdArray<OdDbFullSubentPath> VdmConstraint::getArguments() const {
  OdArray<OdDbFullSubentPath> paths;
  for (const VdmExtendedPath& path : getExtArguments()) paths.append(path.path);
  return paths;
}

bool VdmConstraint::isValid() const {
  OdDbFullSubentPath path;
  for (OdUInt32 i = 0; i < m_arguments.size(); ++i) {
    if (!getArgument(i, path)) return false;
  }
  return true;
}

// ---- Side conditions

VdmConstraintOrientationProperties VdmConstraint::getConstraintOrientationProperties() const {
  const VdmDbConstraintManagerPEPtr pe = getConstraintManagerPE();
  return pe.isNull() ? VdmConstraintOrientationProperties()
                     : pe->getConstraintOrientationProperties(this);
}

bool VdmConstraint::hasHalfSpaces() const {
  return getConstraintOrientationProperties().checkConstraintSupportsHalfSpaces();
}

bool VdmConstraint::hasAlignment() const {
  return getConstraintOrientationProperties().checkConstraintSupportsAlignment();
}

// ---- Properties

bool VdmConstraint::removeProperty(const OdString& key) {
  signalModification(kBeforeModify);
  const bool removed = m_properties.removeProperty(key);
  signalModification(kAfterModify);
  return removed;
}
