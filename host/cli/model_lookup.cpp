// What the command line names in a model.
#include "host/cli/model_lookup.h"

#include <algorithm>

#include "host/cli/cli_error.h"
#include "host/cli/drawing_facts.h"
#include "host/cli/find_object.h"
#include "host/cli/text_lines.h"
#include "host/modeling/component_library.h"
#include "host/modeling/component_query.h"
#include "host/naming/name_feature.h"
#include "host/naming/subent_name.h"
#include "platform/db/block_table.h"
#include "platform/db/block_table_record.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/model/vdm_db_object_dependency.h"

namespace cli {

namespace {

[[noreturn]] void refuseKind(const OdDbObject& object, const char* wanted) {
  throw CliError("object " + str(object.getDbHandle()) + " is of class " + classNameOf(object) +
                 ", not " + wanted);
}

/// The one feature of a name; null when there is none.
OdDbObjectId featureNamed(OdDbDatabase& drawing, const std::string& name) {
  const std::vector<OdDbObjectId> found = featuresNamed(drawing, name);
  if (found.size() > 1) {
    throw CliError(counted(found.size(), "feature") + " have the name " + quote(name) +
                   ", the first two are " + handleOf(found[0]) + " and " + handleOf(found[1]) +
                   ", use a handle");
  }
  return found.empty() ? OdDbObjectId() : found.front();
}

bool isSuppressed(const VdmFeature* feature) {
  const auto* component = dynamic_cast<const VdmComponentFeature*>(feature);
  return component != nullptr && component->state() == VdmComponentFeature::kStateSuppressed;
}

/// The one solid whose body has the name; null when there is none.
OdDbObjectId solidNamed(OdDbDatabase& drawing, const std::string& name) {
  std::vector<OdDbObjectId> found;
  const OdString wanted(name);
  for (const OdDbObjectId& id : shownSolids(drawing)) {
    const OdDb3dSolidPtr solid = id.openAs<OdDb3dSolid>();
    OdModelerBodyPtr body;
    if (solid.isNull() || !solid->getBody(body).ok() || !body) continue;
    if (body->attributes().name == wanted) found.push_back(id);
  }
  if (found.size() > 1) {
    throw CliError(counted(found.size(), "solid") + " have the name " + quote(name) +
                   ", the first two are " + handleOf(found[0]) + " and " + handleOf(found[1]) +
                   ", use a handle");
  }
  return found.empty() ? OdDbObjectId() : found.front();
}

bool isHandle(const std::string& text) {
  OdDbHandle handle;
  return OdDbHandle::parse(text.c_str(), handle);
}

/// An object by handle; a text that is none is a name that nothing has.
OdDbObjectPtr openNamed(OdDbDatabase& drawing, const std::string& text, const char* what) {
  if (!isHandle(text)) {
    throw CliError(std::string("there is no ") + what + " with the name or handle " + quote(text));
  }
  return openByHandle(drawing, text, OdDb::kForRead);
}

}  // namespace

std::string handleOf(const OdDbObjectId& id) { return id.isNull() ? "" : str(id.getHandle()); }

std::vector<OdDbObjectId> allFeatures(OdDbDatabase& drawing) {
  std::vector<OdDbObjectId> features;
  for (const OdDbObjectId& managerId : vdm_host::featureManagers(&drawing)) {
    const VdmDbFeatureManagerPtr manager = managerId.openAs<VdmDbFeatureManager>();
    if (manager.isNull()) continue;
    for (const OdDbObjectId& id : manager->featureIds()) {
      if (!id.isErased()) features.push_back(id);
    }
  }
  return features;
}

std::vector<OdDbObjectId> featuresNamed(OdDbDatabase& drawing, const std::string& name) {
  std::vector<OdDbObjectId> found;
  const OdString wanted(name);
  for (const OdDbObjectId& id : allFeatures(drawing)) {
    const VdmFeaturePtr feature = VdmFeature::open(id);
    if (!feature.isNull() && feature->name() == wanted) found.push_back(id);
  }
  return found;
}

OdDbObjectId findSolid(OdDbDatabase& drawing, const std::string& text) {
  OdDbHandle handle;
  const bool isHandled = OdDbHandle::parse(text.c_str(), handle) &&
                         !drawing.getOdDbObjectId(handle).openAs<OdDb3dSolid>().isNull();
  if (!isHandled) {
    if (const OdDbObjectId named = solidNamed(drawing, text); !named.isNull()) return named;
  }
  const OdDbObjectPtr object = openNamed(drawing, text, "solid");
  if (!object->isKindOf(OdDb3dSolid::desc())) refuseKind(*object, "a solid");
  return object->objectId();
}

std::vector<OdDbObjectId> findReferences(OdDbDatabase& drawing, const std::string& text) {
  OdDbObjectId feature = featureNamed(drawing, text);
  if (feature.isNull()) {
    const OdDbObjectPtr object = openNamed(drawing, text, "reference");
    if (object->isKindOf(VdmDbObjectDependency::desc())) return {object->objectId()};
    feature = object->objectId();
    if (VdmFeature::open(feature).isNull()) refuseKind(*object, "a reference");
  }
  const VdmNameFeaturePtr name = VdmNameFeature::cast(VdmFeature::open(feature).get());
  if (name.isNull()) throw CliError(objectText(feature) + " is no name of a reference");
  const OdDbObjectIdArray ids = name->referenceIds();
  if (ids.isEmpty()) throw CliError("the reference " + quote(text) + " was erased");
  return {ids.begin(), ids.end()};
}

OdDbObjectId findReference(OdDbDatabase& drawing, const std::string& text) {
  const std::vector<OdDbObjectId> found = findReferences(drawing, text);
  if (found.size() == 1) return found.front();
  throw CliError(quote(text) + " was split into " + counted(found.size(), "reference") +
                 ", the first two are " + handleOf(found[0]) + " and " + handleOf(found[1]) +
                 ", use a handle");
}

OdDbObjectId findFeature(OdDbDatabase& drawing, const std::string& text) {
  if (const OdDbObjectId named = featureNamed(drawing, text); !named.isNull()) return named;
  const OdDbObjectPtr object = openNamed(drawing, text, "feature");
  if (!VdmFeature::open(object->objectId()).isNull()) return object->objectId();
  const OdDbObjectId component = vdm_host::componentOf(object->objectId());
  if (component.isNull()) refuseKind(*object, "a feature");
  return component;
}

OdDbObjectId findEntity(OdDbDatabase& drawing, const std::string& text) {
  OdDbObjectId feature = featureNamed(drawing, text);
  if (feature.isNull()) {
    const OdDbObjectPtr object = openNamed(drawing, text, "entity or component");
    if (object->isKindOf(OdDbEntity::desc())) return object->objectId();
    feature = object->objectId();
    if (VdmFeature::open(feature).isNull()) refuseKind(*object, "an entity");
  }
  const auto component = VdmComponentFeature::cast(VdmFeature::open(feature).get());
  if (component.isNull()) throw CliError(objectText(feature) + " has no insert");
  return component->insertId();
}

OdDbObjectId findBlock(const OdDbDatabase& drawing, const std::string& name) {
  if (name.empty()) return drawing.getModelSpaceId();
  const auto table = drawing.getBlockTableId().safeOpenAs<OdDbBlockTable>();
  const OdDbObjectId block = table->getAt(OdString(name));
  if (block.isNull()) throw CliError("there is no block " + quote(name));
  return block;
}

OdDbObjectId findComponentBlock(OdDbDatabase& drawing, const std::string& text) {
  const OdDbObjectId block = vdm_host::findComponent(&drawing, OdString(text));
  if (block.isNull()) {
    throw CliError("there is no component " + quote(text) +
                   ", see 'component list' and 'component add'");
  }
  return block;
}

OdModelerBodyPtr bodyOfSolid(const OdDbObjectId& solid) {
  const OdDb3dSolidPtr object = solid.openAs<OdDb3dSolid>();
  if (object.isNull()) throw CliError("object " + handleOf(solid) + " is no solid");
  OdModelerBodyPtr body;
  requireModelled(object->getBody(body));
  if (!body) throw CliError("solid " + handleOf(solid) + " is empty");
  return body;
}

std::string solidText(const OdDbObjectId& solid) {
  std::string text = handleOf(solid);
  const OdDb3dSolidPtr object = solid.openAs<OdDb3dSolid>();
  OdModelerBodyPtr body;
  if (!object.isNull() && object->getBody(body).ok() && body) {
    const std::string name = str(body->attributes().name);
    if (!name.empty()) text += " " + quote(name);
  }
  return text;
}

std::string objectText(const OdDbObjectId& id) {
  const OdDbObjectPtr object = id.openObject();
  const std::string handle = handleOf(id);
  if (object.isNull()) return "object " + handle;
  if (const VdmFeaturePtr feature = VdmFeature::open(id); !feature.isNull()) {
    return "feature " + quote(feature->name().utf8()) + " (" + handle + ")";
  }
  if (const auto insert = OdDbBlockReference::cast(object.get()); !insert.isNull()) {
    const auto block = insert->blockTableRecord().openAs<OdDbBlockTableRecord>();
    return "insert " + handle + (block.isNull() ? "" : " of " + quote(block->getName().utf8()));
  }
  if (object->isKindOf(OdDb3dSolid::desc())) return "solid " + solidText(id);
  return classNameOf(*object) + " " + handle;
}

ReferenceText referenceText(const vdm_host::ReferenceEntry& entry) {
  const vdm_host::ResolvedReference& now = entry.now;
  ReferenceText text;
  text.handle = handleOf(now.dependency);
  text.solid = handleOf(now.solid);
  text.grade = str(vdm_host::gradeName(now.grade));
  text.note = str(now.note);
  const OdDbSubentId& subent = now.path.subentId();
  if (subent.type() != OdDb::kNullSubentType) {
    const OdModelerSubent number{static_cast<OdModelerSubentType>(subent.type()),
                                 static_cast<OdUInt32>(subent.index())};
    text.subent = str(vdm_host::subentName(number));
    const OdDb3dSolidPtr solid = now.solid.openAs<OdDb3dSolid>();
    OdModelerBodyPtr body;
    if (!now.resolved()) {
      text.subent = text.subent.substr(0, 2) + "?";
    } else if (!solid.isNull() && solid->getBody(body).ok() && body) {
      text.geometry = str(vdm_host::describeSubent(*body, number));
    }
  }
  text.isExpected = !now.resolved();
  for (const OdDbObjectId& watcher : entry.watchers) {
    const VdmFeaturePtr feature = VdmFeature::open(watcher.ownerId());
    if (!isSuppressed(feature.get())) text.isExpected = false;
    const bool isName = !VdmNameFeature::cast(feature.get()).isNull();
    if (isName && text.name.empty()) {
      text.name = str(feature->name());
    } else {
      std::string who = feature.isNull() ? objectText(watcher) : str(feature->name());
      if (std::ranges::find(text.watchers, who) == text.watchers.end()) {
        text.watchers.push_back(std::move(who));
      }
    }
  }
  return text;
}

ReferenceText referenceText(const OdDbObjectId& dependency) {
  vdm_host::ReferenceEntry entry;
  entry.now = vdm_host::resolveReference(dependency);
  if (const OdDbObjectPtr object = dependency.openObject(); !object.isNull()) {
    for (const OdDbObjectId& watcher : object->getPersistentReactors()) {
      if (!watcher.isErased()) entry.watchers.append(watcher);
    }
  }
  return referenceText(entry);
}

}  // namespace cli
