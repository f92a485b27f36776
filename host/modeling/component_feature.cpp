// VdmComponentFeature: a component that cuts or fills a solid, and the reactor of its insert.
#include "host/modeling/component_feature.h"

#include <algorithm>

#include "platform/base/non_copyable.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/db/locked_layers.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/features/vdm_db_pers_id_reactor.h"

VDM_DEFINE_FEATURE_CLASS(VdmComponentFeature, VdmFeature, L"VdmComponentFeature")
OD_RX_DEFINE_DB(VdmDbInsertReactor, VdmDbFeatureReactor, L"VdmDbInsertReactor", 33, 0,
                kOdRxEraseAllowed | kOdRxDisableProxyWarning, L"VDMDBINSERTREACTOR",
                L"vdm_host|Description: reactor of a component's insert")

using vdm_host::ToolKind;

/// State of the reactor: the bag keys "insert" and "changed".
class VdmDbInsertReactorImpl : public VdmDbFeatureReactorImpl {
 public:
  VdmDbInsertReactorImpl() {
    m_properties.setVersion(1);
    m_properties.mapProperty(OdString(L"insert"), &insert, OdDb::kSoftPointerRef);
    m_properties.mapProperty<bool>(OdString(L"changed"), &changed);
  }

  OdDbObjectId insert;
  bool changed = false;

  OdResult subErase(VdmDbFeatureReactor* reactor) override {
    if (reactor->isUndoing()) return eOk;
    const OdDbObjectPtr object = oddbOpenThroughLock<OdDbObject>(insert);
    if (!object.isNull()) object->removePersistentReactor(reactor->objectId());
    return eOk;
  }
};

namespace {

constexpr OdUInt32 kPlacedSize = 16 + 6 * vdm_host::kToolKindCount + 6;

class OpenForChange : OdNonCopyable {
 public:
  explicit OpenForChange(OdDbObject* object)
      : m_object(object->isWriteEnabled() ? nullptr : object) {
    if (m_object != nullptr) m_object->upgradeOpen();
  }
  ~OpenForChange() {
    if (m_object != nullptr) m_object->downgradeOpen();
  }

 private:
  OdDbObject* m_object;
};

OdGePoint3d pointAt(const VdmDoubleArray& values, OdUInt32 at) {
  return {values[at], values[at + 1], values[at + 2]};
}

void append(VdmDoubleArray& values, double x, double y, double z) {
  values.append(x);
  values.append(y);
  values.append(z);
}

}  // namespace

// ---- The insert's reactor

VdmDbInsertReactor::VdmDbInsertReactor()
    : VdmDbFeatureReactor(std::make_unique<VdmDbInsertReactorImpl>()) {}
VdmDbInsertReactor::~VdmDbInsertReactor() = default;

VdmDbInsertReactorImpl& VdmDbInsertReactor::state() const {
  return static_cast<VdmDbInsertReactorImpl&>(impl());
}

void VdmDbInsertReactor::watch(const OdDbObjectId& insert) {
  static_cast<VdmDbInsertReactorImpl&>(implForWrite()).insert = insert;
  const OdDbLockedLayerAccess access(insert.database());
  insert.safeOpenObject(OdDb::kForWrite)->addPersistentReactor(objectId());
}

OdDbObjectId VdmDbInsertReactor::insertId() const {
  assertReadEnabled();
  return state().insert;
}

bool VdmDbInsertReactor::hasChanges() const {
  assertReadEnabled();
  return state().changed;
}

void VdmDbInsertReactor::setChanged(bool changed) {
  if (state().changed == changed) return;
  const OpenForChange open(this);
  static_cast<VdmDbInsertReactorImpl&>(implForWrite()).changed = changed;
}

bool VdmDbInsertReactor::doAudit() {
  return state().changed || !state().insert.openObject().isNull();
}

void VdmDbInsertReactor::modified(const OdDbObject* object) {
  if (!object->isUndoing()) setChanged(true);
}

void VdmDbInsertReactor::erased(const OdDbObject* object, bool /*erasing*/) {
  if (!object->isUndoing()) setChanged(true);
}

// ---- The feature

OdUInt64 VdmComponentFeature::toolStamp() const {
  if (m_toolStamp.size() != 2) return 0;
  return static_cast<OdUInt64>(static_cast<OdUInt32>(m_toolStamp[0])) << 32 |
         static_cast<OdUInt32>(m_toolStamp[1]);
}

bool VdmComponentFeature::placed(Placed& placed) const {
  if (m_placed.size() != kPlacedSize) return false;
  std::copy_n(m_placed.begin(), 16, placed.transform.getElements());
  OdUInt32 at = 16;
  for (OdGeExtents3d& box : placed.box) {
    box = OdGeExtents3d(pointAt(m_placed, at), pointAt(m_placed, at + 3));
    at += 6;
  }
  placed.basePoint = pointAt(m_placed, at);
  placed.baseNormal = pointAt(m_placed, at + 3).asVector();
  return true;
}

void VdmComponentFeature::setPlaced(const Placed& placed) {
  m_placed.clear();
  for (int i = 0; i < 16; ++i) m_placed.append(placed.transform.getElements()[i]);
  for (const OdGeExtents3d& box : placed.box) {
    append(m_placed, box.minPoint().x, box.minPoint().y, box.minPoint().z);
    append(m_placed, box.maxPoint().x, box.maxPoint().y, box.maxPoint().z);
  }
  append(m_placed, placed.basePoint.x, placed.basePoint.y, placed.basePoint.z);
  append(m_placed, placed.baseNormal.x, placed.baseNormal.y, placed.baseNormal.z);
}

void VdmComponentFeature::setApplied(State state, const Placed& placed, OdUInt64 toolStamp) {
  setPlaced(placed);
  m_state = state;
  m_toolStamp.clear();
  m_toolStamp.append(static_cast<OdLong>(static_cast<OdUInt32>(toolStamp >> 32)));
  m_toolStamp.append(static_cast<OdLong>(static_cast<OdUInt32>(toolStamp)));
}

void VdmComponentFeature::forgetApplied() {
  setPiece(ToolKind::kCut, nullptr);
  setPiece(ToolKind::kFill, nullptr);
  m_toolStamp.clear();
  if (m_state == kStateApplied) m_state = kStateNew;
}

OdModelerBodyPtr VdmComponentFeature::piece(ToolKind kind) const {
  const OdDb3dSolidPtr solid = m_pieceIds[static_cast<std::size_t>(kind)].openAs<OdDb3dSolid>();
  return solid.isNull() ? nullptr : solid->body();
}

bool VdmComponentFeature::hasLostPiece() const {
  return std::any_of(m_pieceIds.begin(), m_pieceIds.end(), [](const OdDbObjectId& id) {
    return !id.isNull() && id.openAs<OdDb3dSolid>().isNull();
  });
}

void VdmComponentFeature::setPiece(ToolKind kind, const OdModelerBodyPtr& body) {
  OdDbObjectId& id = m_pieceIds[static_cast<std::size_t>(kind)];
  OdDb3dSolidPtr solid = id.openAs<OdDb3dSolid>(OdDb::kForWrite);
  if (!solid.isNull()) {
    solid->setBody(body);
    return;
  }
  if (!body) return;
  solid = OdDb3dSolid::createObject();
  OdDbDatabase* const database = getDbObject()->database();
  solid->setDatabaseDefaults(database);
  solid->setBody(body);
  id = database->addOdDbObject(solid, objectId());
}

OdDbObjectId VdmComponentFeature::insertReactorId() const {
  for (const OdDbObjectId& id : reactorIds()) {
    if (id.objectClass() == VdmDbInsertReactor::desc()) return id;
  }
  return {};
}

OdDbObjectIdArray VdmComponentFeature::ownObjectIds() const {
  OdDbObjectIdArray ids;
  const OdDbObjectId reactor = insertReactorId();
  if (reactor.isNull()) return ids;
  ids.append(reactor);
  for (const OdDbObjectId& piece : m_pieceIds) {
    if (!piece.isNull()) ids.append(piece);
  }
  return ids;
}

OdDbObjectIdArray VdmComponentFeature::baseFaceDependencies() const {
  return getDependencies(kBaseFaceMask, kBaseFaceTag, /*filtered=*/false);
}

std::map<int, OdDbObjectIdArray> VdmComponentFeature::openingDependencies() const {
  std::map<int, OdDbObjectIdArray> groups;
  getDependenciesGroupedByTags(kOpeningMask, groups);
  return groups;
}

void VdmComponentFeature::dropOpening(int toolFace, const OdDbObjectIdArray& dependencies) {
  for (const OdDbObjectId& id : reactors()) {
    VdmDbPersIdReactorPtr reactor = id.openAs<VdmDbPersIdReactor>(OdDb::kForWrite);
    if (reactor.isNull() || !reactor->hasMask(kOpeningMask) || !reactor->hasTag(toolFace)) continue;
    reactor->removePersIds(dependencies);
    const bool isEmpty = reactor->persIdsRef().isEmpty();
    reactor.release();
    if (isEmpty) removeReactor(id, /*eraseReactor=*/true);
  }
}

OdString VdmComponentFeature::componentName() const {
  const OdDbBlockReferencePtr insert =
      m_insertId.openAs<OdDbBlockReference>(OdDb::kForRead, /*openErased=*/true);
  if (insert.isNull()) return {};
  const OdDbBlockTableRecordPtr block = insert->blockTableRecord().openAs<OdDbBlockTableRecord>();
  return block.isNull() ? OdString() : block->getName();
}

void VdmComponentFeature::bind(const OdDbObjectId& solid, const OdDbObjectId& insert) {
  m_solidId = solid;
  m_insertId = insert;
  const OdDbObjectId reactor = addReactor(VdmDbInsertReactor::desc(), 0, 0);
  const VdmDbInsertReactorPtr watcher = reactor.safeOpenAs<VdmDbInsertReactor>(OdDb::kForWrite);
  watcher->watch(insert);
  watcher->setChanged(true);
}

const OdArray<int>& VdmComponentFeature::masks() const {
  static const OdArray<int> kMasks = [] {
    OdArray<int> masks;
    masks.append(kBaseFaceMask);
    masks.append(kOpeningMask);
    return masks;
  }();
  return kMasks;
}

void VdmComponentFeature::subMapProperties(VdmProperties& bag) {
  bag.mapProperty(OdString(L"Solid"), &m_solidId, OdDb::kSoftPointerRef);
  bag.mapProperty(OdString(L"Insert"), &m_insertId, OdDb::kSoftPointerRef);
  bag.mapProperty(OdString(L"CutPiece"), &m_pieceIds[0], OdDb::kHardOwnershipRef);
  bag.mapProperty(OdString(L"FillPiece"), &m_pieceIds[1], OdDb::kHardOwnershipRef);
  bag.mapProperty<VdmDoubleArray>(OdString(L"Placed"), &m_placed);
  bag.mapProperty<VdmLongArray>(OdString(L"ToolStamp"), &m_toolStamp);
  bag.mapProperty<OdLong>(OdString(L"State"), &m_state);
  bag.mapProperty(OdString(L"Layer"), &m_layerId, OdDb::kSoftPointerRef);
  m_sizes.map(bag);
}
