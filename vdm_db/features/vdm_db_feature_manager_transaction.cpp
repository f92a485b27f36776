// Making the references of many features in one step.
#include "vdm_db/features/vdm_db_feature_manager_transaction.h"

#include "platform/base/error.h"
#include "vdm_db/common/vdm_constants.h"
#include "vdm_db/drawing_utils/vdm_dictionary_utils.h"
#include "vdm_db/drawing_utils/vdm_display_utils.h"
#include "vdm_db/features/vdm_feature.h"
#include "vdm_db/features/vdm_feature_colors.h"
#include "vdm_db/features/vdm_feature_reactor_walk.h"
#include "vdm_db/features/vdm_feature_results.h"
#include "vdm_db/model/vdm_db_pers_id_manager.h"
#include "vdm_db/references/vdm_path_utils.h"
#include "vdm_utils/vdmc_assert.h"

OD_RX_DEFINE_COMMON(VdmDbFeatureManagerTransaction, OdRxObject, L"VdmDbFeatureManagerTransaction",
                    &VdmDbFeatureManagerTransaction::pseudoConstructor, 0, 0, 0, OdString(),
                    OdString())

namespace {

// The active transaction; null while there is none.
VdmDbFeatureManagerTransaction* g_active = nullptr;

}  // namespace

OdSmartPtr<VdmDbFeatureManagerTransaction> VdmDbFeatureManagerTransaction::createObject() {
  if (g_active != nullptr) return VdmDbFeatureManagerTransactionPtr(g_active);
  VdmDbFeatureManagerTransactionPtr made =
      OdRxSingleObjectImpl<VdmDbFeatureManagerTransaction>::createObject();
  g_active = made;
  return made;
}

OdRxObjectPtr VdmDbFeatureManagerTransaction::pseudoConstructor() { return createObject(); }

VdmDbFeatureManagerTransaction::VdmDbFeatureManagerTransaction() = default;

// What makes the references may itself make a transaction, which is a new one.
VdmDbFeatureManagerTransaction::~VdmDbFeatureManagerTransaction() {
  if (g_active == this) g_active = nullptr;
  if (m_paths.isEmpty()) return;
  try {
    makeReferences();
  } catch (const std::exception& error) {
    vdmcCallAssert("makeReferences", OdString(error.what()),
                   "vdm_db/vdm_db_feature_manager_transaction", 1);
  }
}

// ---- Gathering

void VdmDbFeatureManagerTransaction::append(VdmFeature* feature,
                                            const OdDbFullSubentPathArray& paths, int mask) {
  appendTo(feature, paths, mask, nullptr);
}

void VdmDbFeatureManagerTransaction::append(VdmFeature* feature,
                                            const OdDbFullSubentPathArray& paths, int mask,
                                            int tag) {
  appendTo(feature, paths, mask, &tag);
}

void VdmDbFeatureManagerTransaction::appendTo(VdmFeature* feature,
                                              const OdDbFullSubentPathArray& paths, int mask,
                                              const int* tag) {
  if (feature == nullptr) throw OdError(kVdmNullFeature, "paths of a feature");
  if (paths.isEmpty()) return;
  Entry entry;
  entry.reactorId = feature->findPersIdReactor(mask, tag);
  if (entry.reactorId.isNull()) {
    entry.reactorId = tag == nullptr ? feature->addReactor(VdmDbPersIdReactor::desc(), mask)
                                     : feature->addReactor(VdmDbPersIdReactor::desc(), mask, *tag);
  }
  entry.pathCount = paths.size();
  OdCmEntityColor color(OdCmEntityColor::kByColor);
  entry.overrideColor = feature->overrideColor(mask, color);
  m_entries.append(entry);
  m_paths.append(paths);
}

// ---- Making the references

void VdmDbFeatureManagerTransaction::makeReferences() const {
  const OdDbObjectIdArray ids = makeIds();
  if (ids.size() == m_paths.size()) handOut(ids);
}

OdDbObjectIdArray VdmDbFeatureManagerTransaction::makeIds() const {
  const OdDbEntityPtr entity = vdmu::getInsertId(m_paths.first()).openAs<OdDbEntity>();
  if (entity.isNull()) return {};
  const OdDbObjectId managerId = VdmDbPersIdManager::getInstance(entity->ownerId(), true);
  const VdmDbPersIdManagerPtr manager = managerId.openAs<VdmDbPersIdManager>(OdDb::kForWrite);
  return manager.isNull() ? OdDbObjectIdArray() : manager->append(m_paths, m_userIO);
}

// The position moves on only for entries whose reactor opens.
void VdmDbFeatureManagerTransaction::handOut(const OdDbObjectIdArray& ids) const {
  OdDbObjectIdArray toRedraw;
  const OdDbObjectId* next = ids.begin();
  for (const Entry& entry : m_entries) {
    const VdmDbPersIdReactorPtr reactor =
        entry.reactorId.openAs<VdmDbPersIdReactor>(OdDb::kForWrite);
    if (reactor.isNull()) continue;
    OdDbObjectIdArray own;
    own.assign(next, next + entry.pathCount);
    next += entry.pathCount;
    reactor->addPersIds(own);
    if (entry.overrideColor) toRedraw.append(own);
  }
  if (!toRedraw.isEmpty() && vdmu::GetFEATURECOLORS::getValue()) {
    vdmu::markEntToRedraw(vdmEntitiesOf(toRedraw));
  }
}
