// VdmFeatureUpdateDataHelper: the solids of an update pass and the faces that features know by
// marker.
#include "vdm_db/update/vdm_feature_update_data_helper.h"

#include "vdm_db/drawing_utils/vdm_auto_save_solid_properties.h"
#include "vdm_db/drawing_utils/vdm_handle_text.h"
#include "vdm_db/update/vdm_feature_update_data.h"
#include "vdm_utils/vdmc_assert.h"

namespace {

constexpr const char* kSource = "vdm_db/vdm_feature_update_data_helper";
constexpr std::size_t kBucketsAfterUse = 8;

OdDbObjectId redirected(OdDbObjectId id) {
  id.convertToRedirectedId();
  return id;
}

template <class Map>
auto* entryOf(Map& map, const OdDbObjectId& id) {
  const auto found = map.find(redirected(id));
  return found == map.end() ? nullptr : &found->second;
}

void match(VdmFeatureUpdateDataUtils::Face& face,
           const VdmFeatureUpdateDataHelper::MarkerMap& markers) {
  const auto found = markers.find(face.marker);
  if (found != markers.end() && !found->second.empty()) face.matchedMarker = found->second.front();
}

VdmFeatureUpdateDataHelper::Tools joined(const VdmFeatureUpdateDataHelper::ToolsBySource& sources) {
  VdmFeatureUpdateDataHelper::Tools tools;
  for (const auto& [source, ofSource] : sources) tools.append(ofSource);
  return tools;
}

OdDbObjectIdArray keysOf(const VdmFeatureUpdateDataHelper::ToolsBySource& sources) {
  OdDbObjectIdArray ids(static_cast<OdUInt32>(sources.size()));
  for (const auto& [source, ofSource] : sources) ids.append(source);
  return ids;
}

// One operation for all is the faster way. Where it fails, one tool after the other shows which.
bool uniteAtOnce(OdDb3dSolid* result, const std::vector<OdDb3dSolid*>& tools) {
  std::vector<OdModelerBodyPtr> bodies(tools.size());
  for (std::size_t i = 0; i < tools.size(); ++i) {
    if (!tools[i]->getBody(bodies[i]).ok() || bodies[i] == nullptr) return false;
  }
  return result->booleanOper(OdDb::kBoolUnite, bodies).ok();
}

}  // namespace

VdmFeatureUpdateDataHelper::VdmFeatureUpdateDataHelper(VdmFeatureUpdateData& data)
    : m_updateData(&data) {}
VdmFeatureUpdateDataHelper::VdmFeatureUpdateDataHelper(const VdmFeatureUpdateDataHelper& other) =
    default;
VdmFeatureUpdateDataHelper& VdmFeatureUpdateDataHelper::operator=(
    const VdmFeatureUpdateDataHelper& other) = default;
VdmFeatureUpdateDataHelper::~VdmFeatureUpdateDataHelper() = default;

// ---- The outcome

bool VdmFeatureUpdateDataHelper::acceptSolids() { return true; }

void VdmFeatureUpdateDataHelper::solidsAborted(VdmUpdatePhase /*phase*/, const OdString& /*text*/) {
}

void VdmFeatureUpdateDataHelper::withdrawFeature(const OdDbObjectId& feature) {
  const OdDbObjectId id = redirected(feature);
  for (Queue* queue : {&m_solidsToPrepareSubtract, &m_solidsToSubtract, &m_solidsToUnite}) {
    for (auto& [solid, sources] : *queue) sources.erase(id);
    std::erase_if(*queue, [](const auto& entry) { return entry.second.empty(); });
  }
  m_sampleFeatureMap.erase(id);
  m_subtrBaseFaceMap.erase(id);
}

// ---- Faces by marker

const std::map<int, VdmFeatureUpdateDataUtils::Face>* VdmFeatureUpdateDataHelper::subtrBaseFaceMap(
    OdDbObjectId feature) const {
  return entryOf(m_subtrBaseFaceMap, feature);
}

void VdmFeatureUpdateDataHelper::appendSubtrBaseFace(const OdDbObjectId& feature,
                                                     std::map<int, Face>& faces) {
  m_subtrBaseFaceMap[redirected(feature)] = faces;
}

const std::map<int, OdArray<VdmFeatureUpdateDataUtils::Face>>*
VdmFeatureUpdateDataHelper::sampleFeatureFaces(const OdDbObjectId& feature) const {
  return entryOf(m_sampleFeatureMap, feature);
}

void VdmFeatureUpdateDataHelper::appendSampleFeature(const OdDbObjectId& feature,
                                                     std::map<int, OdArray<Face>>& faces) {
  m_sampleFeatureMap[redirected(feature)] = faces;
}

void VdmFeatureUpdateDataHelper::fillSampleFeatureMapWithMarkers(OdDbObjectId feature,
                                                                 const MarkerMap& markers) {
  auto* byTag = entryOf(m_sampleFeatureMap, feature);
  if (byTag == nullptr) return;
  for (auto& [tag, faces] : *byTag) {
    for (Face& face : faces) match(face, markers);
  }
}

void VdmFeatureUpdateDataHelper::fillBaseFaceMapWithMarkers(OdDbObjectId feature, int tag,
                                                            const MarkerMap& markers) {
  auto* byTag = entryOf(m_subtrBaseFaceMap, feature);
  if (byTag == nullptr) return;
  const auto found = byTag->find(tag);
  if (found != byTag->end()) match(found->second, markers);
}

bool VdmFeatureUpdateDataHelper::hasBaseFace(OdDbObjectId id) const {
  return entryOf(m_baseFaceMap, id) != nullptr;
}

OdDbFullSubentPathArray VdmFeatureUpdateDataHelper::baseFaces(OdDbObjectId id) const {
  const auto* faces = entryOf(m_baseFaceMap, id);
  return faces == nullptr ? OdDbFullSubentPathArray() : *faces;
}

void VdmFeatureUpdateDataHelper::setBaseFace(OdDbObjectId id, const OdDbFullSubentPath& path) {
  m_baseFaceMap[redirected(id)].append(path);
}

// ---- Queues

void VdmFeatureUpdateDataHelper::appendSolid(const OdDbObjectId& source, const OdDbObjectId& solid,
                                             OdDb3dSolid* tool, Queue& queue) {
  if (tool == nullptr) return;
  m_updateData->initReactor(solid);
  queue[redirected(solid)][redirected(source)].append(OdSmartPtr<OdDb3dSolid>(tool));
}

void VdmFeatureUpdateDataHelper::appendSolidToSubtract(const OdDbObjectId& source,
                                                       const OdDbObjectId& solid,
                                                       OdDb3dSolid* tool) {
  appendSolid(source, solid, tool, m_solidsToSubtract);
}

void VdmFeatureUpdateDataHelper::appendSolidToPrepareSubtract(const OdDbObjectId& source,
                                                              const OdDbObjectId& solid,
                                                              OdDb3dSolid* tool,
                                                              OdGePoint3d* /*point*/) {
  appendSolid(source, solid, tool, m_solidsToPrepareSubtract);
}

void VdmFeatureUpdateDataHelper::appendSolidToUnite(const OdDbObjectId& source,
                                                    const OdDbObjectId& solid, OdDb3dSolid* tool) {
  appendSolid(source, solid, tool, m_solidsToUnite);
}

bool VdmFeatureUpdateDataHelper::hasSolidsModifications() const {
  return !m_solidsToSubtract.empty() || !m_solidsToPrepareSubtract.empty();
}

VdmFeatureUpdateDataHelper::ToolsBySource VdmFeatureUpdateDataHelper::getSubtractorsOnLayers(
    OdDbObjectId solid) const {
  const auto* sources = entryOf(m_subtractorsOnLayers, solid);
  return sources == nullptr ? ToolsBySource() : *sources;
}

VdmFeatureUpdateDataHelper::ToolsBySource VdmFeatureUpdateDataHelper::getUnitersOnLayers(
    OdDbObjectId solid) const {
  const auto* sources = entryOf(m_unitersOnLayers, solid);
  return sources == nullptr ? ToolsBySource() : *sources;
}

// ---- Booleans

bool VdmFeatureUpdateDataHelper::subtractOperation() {
  return booleanOperation(OdDb::kBoolSubtract, m_solidsToSubtract);
}

bool VdmFeatureUpdateDataHelper::unionOperation() {
  return booleanOperation(OdDb::kBoolUnite, m_solidsToUnite);
}

bool VdmFeatureUpdateDataHelper::booleanOperation(OdDb::BoolOperType type, Queue& queue) {
  if (queue.empty()) return true;
  if (type != OdDb::kBoolUnite && type != OdDb::kBoolSubtract) return false;
  for (const auto& [solidId, sources] : queue) {
    if (!runSolid(type, solidId, sources)) return false;
  }
  queue.clear();
  queue.rehash(kBucketsAfterUse);
  return true;
}

// False only when the boolean itself fails.
bool VdmFeatureUpdateDataHelper::runSolid(OdDb::BoolOperType type, const OdDbObjectId& solidId,
                                          const ToolsBySource& sources) {
  Tools tools = joined(sources);
  if (tools.isEmpty()) return true;
  OdDb3dSolidPtr solid = solidId.openAs<OdDb3dSolid>(OdDb::kForWrite);
  if (solid.isNull()) {
    reportLeftOut(type, solidId,
                  "solid " + vdmu::handleText(solidId) + " cannot be opened for write", __LINE__);
    return true;
  }
  if (!checkTools(solid, tools)) return true;
  const OdDb3dSolidPtr united = uniteSolids(tools, solid);
  if (united.isNull()) {
    reportLeftOut(type, solidId, "no tool for solid " + vdmu::handleText(solidId), __LINE__);
    return true;
  }
  OdStatus status;
  {
    const vdmu::AutoSaveSolidProperties properties{OdDbEntityPtr(solid)};
    status = solid->booleanOper(type, *united);
  }
  VdmUpdateObserver* observer = m_updateData->observer();
  if (observer == nullptr) return status.ok();
  if (status.ok()) {
    observer->solidChanged(solidId, type, keysOf(sources));
  } else {
    observer->solidFailed(solidId, type, status.text);
  }
  return status.ok();
}

void VdmFeatureUpdateDataHelper::reportLeftOut(OdDb::BoolOperType type, const OdDbObjectId& solidId,
                                               const OdString& text, int line) const {
  vdmcCallAssert("false", text, kSource, line);
  if (m_updateData->observer() != nullptr) {
    m_updateData->observer()->solidFailed(solidId, type, text);
  }
}

OdSmartPtr<OdDb3dSolid> VdmFeatureUpdateDataHelper::uniteSolids(Tools& tools, OdDb3dSolid* base) {
  OdSmartPtr<OdDb3dSolid> result;
  std::vector<OdDb3dSolid*> others;
  for (const OdSmartPtr<OdDb3dSolid>& tool : tools) {
    if (tool.isNull()) continue;
    if (base != nullptr) tool->setPropertiesFrom(base);
    if (result.isNull()) {
      result = tool;
    } else {
      others.push_back(tool);
    }
  }
  if (others.empty() || uniteAtOnce(result, others)) return result;
  for (const OdDb3dSolid* tool : others) {
    const OdStatus status = result->booleanOper(OdDb::kBoolUnite, *tool);
    if (!status.ok()) vdmcCallAssert("false", status.text, kSource, __LINE__);
  }
  return result;
}
