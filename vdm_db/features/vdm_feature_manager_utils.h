// VdmFeatureManagerUtils: from an entity or a subentity to the features on it.
#pragma once

#include <initializer_list>
#include <map>
#include <set>

#include "platform/db/subent.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/references/vdm_path_utils.h"

class OdRxClass;

namespace vdmu {
using OdDbObjectIdLess = ObjectIdLess;
}

/// Features are given by the ids of their carriers. They must be of one of `classes`, or derive
/// from one; an empty list accepts all. Results are added to the sets.
namespace VdmFeatureManagerUtils {

using IdSet = std::set<OdDbObjectId, vdmu::OdDbObjectIdLess>;
using TagsByFeature = std::map<OdDbObjectId, std::set<int>, vdmu::OdDbObjectIdLess>;
using Classes = std::initializer_list<OdRxClass*>;

/// Features that refer to the entity or a part of it.
VDM_DB_EXPORT void getFeatures(OdDbObjectId entity, IdSet& features, Classes classes);
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getFeatures(OdDbObjectId entity, Classes classes);
/// Features that refer to exactly this subentity along this path.
VDM_DB_EXPORT void getFeatures(const OdDbFullSubentPath& path, IdSet& features, Classes classes);
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getFeatures(const OdDbFullSubentPath& path,
                                                          Classes classes);
/// Features that hold the dependency; with the tags under which they do.
VDM_DB_EXPORT void getFeaturesByDep(OdDbObjectId dependency, IdSet& features, Classes classes);
VDM_DB_EXPORT void getFeaturesByDep(OdDbObjectId dependency, TagsByFeature& features,
                                    Classes classes);
/// The first feature on the entity in the order of its dependencies; else the first component
/// feature of the insert that it is; else null.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectId getFeature(OdDbObjectId entity, Classes classes);
/// Features that work through the insert: an object of their update interface's own is a persistent
/// reactor of it. Only the first with `first`.
[[nodiscard]] VDM_DB_EXPORT OdDbObjectIdArray getComponentFeatures(OdDbObjectId insert,
                                                                   Classes classes, bool first);

}  // namespace VdmFeatureManagerUtils
