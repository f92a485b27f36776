// Dependencies by the paths that they refer to.
#include "vdm_db/model/vdm_dependency_paths.h"

#include <algorithm>

#include "platform/db/xref_registry.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

void VdmDependencyPaths::enter(const OdDbObjectId& id) {
  if (id.isErased()) m_erased.append(id);
  const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
  if (dependency.isNull()) return;
  OdDbFullSubentPath path;
  if (dependency->getLinkObject(path, /*openErased=*/true) == vdmu::ePathOk) {
    m_ids.try_emplace(path, id);
  }
}

void VdmDependencyPaths::build(const OdDbObjectIdArray& ids) {
  m_ids.clear();
  m_erased.clear();
  m_ids.reserve(ids.size());
  for (const OdDbObjectId& id : ids) enter(id);
  m_isBuilt = true;
  // Read after the walk: resolving a path may load external drawings.
  m_linkGeneration = VdmDbObjectDependency::linkGeneration();
  m_xrefGeneration = OdDbXrefRegistry::generation();
}

bool VdmDependencyPaths::isCurrent() const {
  return m_isBuilt && m_linkGeneration == VdmDbObjectDependency::linkGeneration() &&
         m_xrefGeneration == OdDbXrefRegistry::generation();
}

void VdmDependencyPaths::added(const OdDbObjectIdArray& ids) {
  if (!m_isBuilt) return;
  for (const OdDbObjectId& id : ids) enter(id);
}

OdDbObjectId VdmDependencyPaths::lookUp(const OdDbFullSubentPath& path) const {
  const auto found = m_ids.find(path);
  return found == m_ids.end() ? OdDbObjectId::kNull : found->second;
}

bool VdmDependencyPaths::hasOneComeBack() const {
  return std::any_of(m_erased.begin(), m_erased.end(),
                     [](const OdDbObjectId& id) { return !id.isErased(); });
}

OdDbObjectId VdmDependencyPaths::find(const OdDbFullSubentPath& path,
                                      const OdDbObjectIdArray& ids) {
  if (isCurrent()) {
    const OdDbObjectId id = lookUp(path);
    if (id.isNull() ? !hasOneComeBack() : !id.isErased()) return id;
  }
  build(ids);
  return lookUp(path);
}
