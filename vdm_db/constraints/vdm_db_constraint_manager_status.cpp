// Constraint managers: what a solver has to solve again.
//
// The class comment in vdm_db_constraint_manager.h has the table of transitions. The idea: a status
// below kNotEvaluated means that a solution is known, and the set of modified objects says in what
// the drawing differs from it; kNotEvaluated and kFullyModified mean that everything is to be
// solved, and then the set has no meaning. So an event adds or removes one object in the first case
// (markModified, markFinished, markArgumentsModified), and in the second it can only make the
// status kFullyModified. changeState() changes both and records the difference for undo: a step
// costs what it changes, however large the set is.
#include <algorithm>
#include <iterator>
#include <utility>

#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

bool keepsModifiedObjects(VdmDbConstraintManager::ConstraintManagerStatus status) {
  return status == VdmDbConstraintManager::kSolvedWithChanges ||
         status == VdmDbConstraintManager::kPartlyModified;
}

}  // namespace

void VdmDbConstraintManager::setStatus(ConstraintManagerStatus status) {
  if (status == m_status) return;
  changeState(status, {}, keepsModifiedObjects(status) ? ModifiedObjects() : m_modifiedObjects);
}

VdmDbConstraintManager::ConstraintManagerStatus VdmDbConstraintManager::getStatus() const {
  return read(m_status);
}

void VdmDbConstraintManager::notifyConstraintModify(VdmConstraint* constraint,
                                                    VdmConstraint::NotifyCode code) {
  if (code == VdmConstraint::kBeforeModify) assertWriteEnabled();
  if (code != VdmConstraint::kDataChanged) return;
  assertReadEnabled();
  if (m_status < kNotEvaluated) {
    markArgumentsModified(*constraint);
  } else {
    setStatus(kFullyModified);
  }
}

// An argument that refers to nothing adds a null id, one that cannot be resolved adds none. One of
// another class raises.
void VdmDbConstraintManager::markArgumentsModified(const VdmConstraint& constraint) {
  ModifiedObjects added;
  for (const OdDbFullSubentPath& path : constraint.getArguments()) {
    const OdDbObjectId object = vdmu::getInsertId(path);
    if (!m_modifiedObjects.contains(object)) added.insert(object);
  }
  if (!added.empty() || m_status < kPartlyModified) {
    changeState(std::max(m_status, kPartlyModified), added, {});
  }
}

void VdmDbConstraintManager::notifyAboutModifications(const OdDbObjectId& object, bool modified) {
  invalidateTCCache();
  if (m_status >= kNotEvaluated) {
    if (m_status == kFullyModified) return;
    const VdmOpenUpgrade upgrade(this);
    setStatus(kFullyModified);
  } else if (modified) {
    markModified(object);
  } else {
    markFinished(object);
  }
}

void VdmDbConstraintManager::markModified(const OdDbObjectId& object) {
  ModifiedObjects added;
  if (!m_modifiedObjects.contains(object)) added.insert(object);
  if (added.empty() && m_status == kPartlyModified) return;
  const VdmOpenUpgrade upgrade(this);
  changeState(kPartlyModified, added, {});
}

void VdmDbConstraintManager::markFinished(const OdDbObjectId& object) {
  ModifiedObjects removed;
  if (m_modifiedObjects.contains(object)) removed.insert(object);
  ConstraintManagerStatus status = m_status;
  if (status == kSolvedWithChanges) status = kPartlyModified;
  if (status == kPartlyModified && m_modifiedObjects.size() == removed.size()) status = kUpToDate;
  if (removed.empty() && status == m_status) return;
  const VdmOpenUpgrade upgrade(this);
  changeState(status, {}, removed);
}

OdDbObjectIdArray VdmDbConstraintManager::getModifiedObjects() const {
  assertReadEnabled();
  OdDbObjectIdArray objects;
  for (const OdDbObjectId& object : m_modifiedObjects) objects.append(object);
  return objects;
}

void VdmDbConstraintManager::setModifiedObjects(const OdDbObjectIdArray& objects) {
  ModifiedObjects next;
  for (const OdDbObjectId& object : objects) next.insert(object);
  if (m_status == kNotEvaluated) {
    m_modifiedObjects = std::move(next);
    return;
  }
  ModifiedObjects added;
  ModifiedObjects removed;
  const vdmu::ObjectIdLess less;
  std::set_difference(next.begin(), next.end(), m_modifiedObjects.begin(), m_modifiedObjects.end(),
                      std::inserter(added, added.end()), less);
  std::set_difference(m_modifiedObjects.begin(), m_modifiedObjects.end(), next.begin(), next.end(),
                      std::inserter(removed, removed.end()), less);
  const VdmOpenUpgrade upgrade(this);
  changeState(m_status, added, removed);
}
