// Constraint managers: one takes over from another.
//
// Cloning into a block that has a manager gives the block a second one, whose constraints refer to
// the clones. Merge moves them into the manager of the block. What it touches is decided by one
// rule: a constraint moves with the model objects that its arguments belong to, and a constraint
// whose arguments cannot be reached does not move. The phases are in run(). Failure midway is not
// rolled back here; the caller's transaction does that. The source is erased last, so that until
// then everything can be found from it.
//
// The set of merged objects belongs to the whole clone, and a manager takes all of them, also those
// that another one has registered. It takes them in rising handle order, so that the same drawings
// give the same names. Each constraint, argument
// and object is dealt with once, and free numbers for names are looked up instead of counted: the
// cost is linear but for those look-ups, which cost a logarithm.
#include <algorithm>
#include <vector>

#include "platform/assoc/assoc_variable.h"
#include "platform/base/case_compare.h"
#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "vdm_db/constraints/vdm_constraint_names.h"
#include "vdm_db/constraints/vdm_db_constraint_manager.h"
#include "vdm_db/constraints/vdm_db_constraint_manager_names.h"
#include "vdm_db/constraints/vdm_taken_names.h"
#include "vdm_db/drawing_utils/vdm_block_utils.h"
#include "vdm_db/drawing_utils/vdm_db_reverse_id_mapping.h"
#include "vdm_db/drawing_utils/vdm_object_id_class.h"
#include "vdm_db/drawing_utils/vdm_open_upgrade.h"
#include "vdm_db/drawing_utils/vdm_reactor_utils.h"
#include "vdm_db/model/vdm_db_object.h"
#include "vdm_db/model/vdm_db_object_dependency.h"
#include "vdm_db/model/vdm_merge_context.h"
#include "vdm_db/parameters/vdm_variable_names.h"
#include "vdm_db/references/vdm_clone_mapping.h"
#include "vdm_db/references/vdm_path_utils.h"

namespace {

bool refersToSomething(const ExtendedDep& argument) {
  return !argument.isDefaultGeometry || !argument.dependency.isNull();
}

bool hasVariable(const VdmConstraint& constraint) {
  return vdmu::isIdOf<OdDbAssocVariable>(constraint.userVariable()) &&
         !constraint.userVariable().isErased();
}

/// What is known about the arguments of a constraint.
struct Arguments {
  bool areReached = true;
  bool haveOpenReference = false;  ///< default geometry of nothing in particular
};

Arguments argumentsOf(const VdmConstraint& constraint, VdmMergeContext& context) {
  Arguments arguments;
  for (const ExtendedDep& argument : constraint.dependencies()) {
    if (!refersToSomething(argument)) {
      arguments.haveOpenReference = true;
      continue;
    }
    const OdDbObjectId owner = argument.dependency.ownerId();
    const bool isReached = !argument.dependency.openAs<VdmDbObjectDependency>().isNull() &&
                           !owner.openAs<VdmDbObject>().isNull();
    if (isReached) {
      context.mergedObjects.insert(owner);
    } else {
      arguments.areReached = false;
    }
  }
  return arguments;
}

}  // namespace

struct VdmDbConstraintManager::Merge {
  Merge(VdmDbConstraintManager& into, VdmDbConstraintManager& from, VdmMergeContext& shared)
      : target(into),
        source(from),
        context(shared),
        block(into.blockId()),
        isModelSpace(block == into.database()->getModelSpaceId()),
        paths(shared.mapping) {}

  VdmDbConstraintManager& target;
  VdmDbConstraintManager& source;
  VdmMergeContext& context;
  const OdDbObjectId block;
  const bool isModelSpace;
  vdmu::VdmClonedPaths paths;
  std::vector<VdmConstraintPtr> moved;

  void run() {
    if (!isModelSpace) target.setDesignIntentOptions(source.getDesignIntentOptions());
    target.assertWriteEnabled();
    source.assertWriteEnabled();
    std::set<OdString> names;
    vdmu::getConstraintNamesSet(&target, names);
    vdmu::getVariableNames(block, names);
    vdmu::VdmTakenNames taken(names);
    moveConstraints();
    renameMoved(taken);
    if (!moved.empty() || !context.mergedObjects.empty()) adoptStatus();
    adoptObjects();
    leaveSource();
  }

  // ---- Constraints

  void moveConstraints() {
    const auto pe = VdmDbConstraintManagerPE::cast(&target);
    const OdDbObjectId reactor = source.variableReactor(/*create=*/false);
    for (const auto& [nodeId, constraint] : source.m_constraints) {
      if (!constraint->userVariable().isNull()) {
        vdmu::detachReactor({constraint->userVariable()}, reactor, nullptr);
      }
      const bool isWanted = context.keepAll || remap(*constraint, pe.get()) || pe.isNull() ||
                            !pe->dropUnmappedConstraint();
      const Arguments arguments = isWanted ? argumentsOf(*constraint, context) : Arguments();
      if (!isWanted || !arguments.areReached) {
        constraint->setOwner(OdDbObjectId::kNull);
        continue;
      }
      move(constraint, arguments);
    }
    source.m_constraints.clear();
  }

  void move(VdmConstraintPtr constraint, const Arguments& arguments) {
    constraint->setOwner(target.objectId());
    const bool isExploded = context.mapping.deepCloneContext() == OdDb::kDcExplode;
    if (isModelSpace && arguments.haveOpenReference && isExploded) constraint->setEnabled(false);
    target.addConstraint(constraint);
    target.attachVariable(*constraint);
    moved.push_back(constraint);
  }

  /// False for a constraint that stays as it is; its arguments may then be anywhere.
  bool remap(VdmConstraint& constraint, VdmDbConstraintManagerPE* pe) {
    if (pe == nullptr || pe->skipRemapping(&constraint, context.mapping.deepCloneContext())) {
      return false;
    }
    std::vector<ExtendedDep> arguments = constraint.dependencies();
    bool anyChanged = false;
    for (ExtendedDep& argument : arguments) {
      if (!refersToSomething(argument)) continue;
      const OdDbObjectId mapped = remapped(argument.dependency);
      if (mapped.isNull()) return false;
      anyChanged = anyChanged || mapped != argument.dependency;
      argument.dependency = mapped;
    }
    if (anyChanged) constraint.setDependencies(arguments);
    return true;
  }

  /// The counterpart of a dependency in the target; itself where it is there already, null when
  /// there is none. The path of a clone that does not resolve is mapped from that of its origin.
  OdDbObjectId remapped(const OdDbObjectId& id) {
    const auto dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull()) return OdDbObjectId::kNull;
    const OdDbObjectId entity = dependency->getInsertId();
    if (!vdmu::isIdOf<OdDbEntity>(entity) || entity.isErased()) return OdDbObjectId::kNull;
    OdDbFullSubentPath path;
    const bool resolves = dependency->getLinkObject(path, /*openErased=*/false) == vdmu::ePathOk &&
                          vdmu::isValidObjectIdPath(path.objectIds(), /*allowErased=*/false);
    if (entity.ownerId() == block && resolves) return id;
    if (entity.ownerId() == block) {
      OdDbIdPair origin;
      context.reverse.compute(id, origin);
      const auto original = origin.key().openAs<VdmDbObjectDependency>();
      if (original.isNull()) return OdDbObjectId::kNull;
      path = original->getLinkObject(/*openErased=*/false);
    }
    OdDbObjectIdArray mapped;
    if (!paths.map(path.objectIds(), mapped) || mapped.first().ownerId() != block) {
      return OdDbObjectId::kNull;
    }
    const auto object = VdmDbObject::getInstance(mapped.first(), target.objectId())
                            .openAs<VdmDbObject>(OdDb::kForWrite);
    return object.isNull() ? OdDbObjectId::kNull
                           : object->append(OdDbFullSubentPath(mapped, path.subentId()));
  }

  /// A name without a variable stays where it is free, and so does one that the constraint itself
  /// knows its variable by. Any other variable gets a name of its number.
  void renameMoved(vdmu::VdmTakenNames& taken) const {
    for (const VdmConstraintPtr& constraint : moved) {
      const OdString name = constraint->name();
      if (hasVariable(*constraint)) {
        if (name == constraint->m_name) continue;
        taken.erase(name);
      } else if (taken.insert(name)) {
        continue;
      }
      const auto number = static_cast<int>(constraint->nodeId());
      constraint->setName(taken.takeNumbered(vdmu::removeNumericSuffix(name), number));
    }
  }

  // ---- Status

  void adoptStatus() const {
    OdDbIdPair pair;
    if (!context.reverse.compute(source.objectId(), pair)) return;
    const auto origin = pair.key().openAs<VdmDbConstraintManager>();
    if (origin.isNull()) return;
    if (origin->getStatus() > target.m_status) target.setStatus(origin->getStatus());
    if (target.m_status > kPartlyModified) return;
    for (const OdDbObjectId& id : origin->getModifiedObjects()) {
      const OdDbObjectId clone = vdmu::findClone(context.mapping, id);
      if (!clone.isNull()) target.notifyAboutModifications(clone, /*modified=*/true);
    }
  }

  // ---- Model objects

  void adoptObjects() const {
    // Renaming an object outdates the manager's own record of names, so this one is kept up here.
    std::set<OdString> taken = target.presentNames().taken;
    std::map<OdString, int> nexts;
    std::vector<OdDbObjectId> ids(context.mergedObjects.begin(), context.mergedObjects.end());
    std::sort(ids.begin(), ids.end(), vdmu::ObjectIdLess());
    for (const OdDbObjectId& id : ids) {
      if (target.m_vdmDbObjects.contains(id)) continue;
      const auto object = id.openAs<VdmDbObject>(OdDb::kForWrite);
      if (object.isNull()) continue;
      const OdString stem = vdmu::removeNumericSuffix(object->name());
      int& next = nexts.try_emplace(odToUpper(stem), 1).first->second;
      object->setName(vdmu::takeNumberedName(stem, taken, next));
      object->setOwnerId(target.objectId());
      target.registerVdmDbObject(object);
    }
  }

  void leaveSource() const {
    const OdDbObjectIdArray left = source.m_vdmDbObjects.ids();
    source.dropFromRegistry(left);
    for (const OdDbObjectId& id : left) {
      const auto object = id.openAs<VdmDbObject>(OdDb::kForWrite);
      if (!object.isNull() && object->ownerId() != target.objectId()) object->eraseWithSubObjects();
    }
    context.replaced[source.objectId()] = target.objectId();
    if (const OdDbObjectId reactor = source.variableReactor(/*create=*/false); !reactor.isNull()) {
      context.replaced[reactor] = target.variableReactor(/*create=*/true);
    }
    const auto root =
        getRootCM(target.database(), /*create=*/false).openAs<VdmDbConstraintManager>();
    if (!root.isNull() && root->m_childManagers.contains(source.objectId())) {
      const VdmOpenUpgrade upgrade(root);
      root->removeChild(source.objectId());
    }
    source.erase();
  }
};

void VdmDbConstraintManager::mergeManagers(VdmDbConstraintManager* source, OdDbIdMapping& mapping,
                                           VdmDbReverseIdMapping& reverse,
                                           std::unordered_set<OdDbObjectId>& mergedObjects,
                                           bool keepAll,
                                           std::map<OdDbObjectId, OdDbObjectId>& replaced) {
  if (source == nullptr) {
    throw OdError(eNullPointer, L"mergeManagers : Constraint manager is NULL");
  }
  if (source == this) return;
  VdmMergeContext context{mapping, reverse, keepAll, mergedObjects, replaced};
  Merge(*this, *source, context).run();
}
