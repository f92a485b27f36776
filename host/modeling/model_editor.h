// ModelEditor: edits of a model, each with the update pass that it calls for.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "host/modeling/update_report.h"
#include "platform/base/array.h"
#include "platform/base/non_copyable.h"
#include "platform/base/status.h"
#include "platform/db/database.h"
#include "platform/db/subent.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/db_3d_solid.h"

namespace vdm_host {

/// Outcome of an edit. When `status` is not ok the drawing is as it was before, to the byte.
struct [[nodiscard]] EditResult {
  OdStatus status;
  UpdateReport report;
  OdDbObjectId created;  ///< insertComponent: the block reference; its feature is in `feature`
  OdDbObjectId feature;

  [[nodiscard]] bool ok() const { return status.ok(); }
};

/// The place of a component. All coordinates are those of the solid's block, in drawing units.
struct ComponentPlacement {
  OdDbObjectId solid;
  OdGePoint3d point;
  /// The base face, kept as a reference. Without one it is the face in which `point`
  /// lies; none when the point lies in no face, which needs `direction`.
  std::optional<OdDbSubentId> face;
  /// Out of the material, along the component's z axis; the face's normal at the point by default.
  std::optional<OdGeVector3d> direction;
  double rotation = 0.0;  ///< of the component about that axis, radians
  OdString name;          ///< of the feature; numbered names by default
  /// A component that changes nothing is inserted all the same, and the report says so; by default
  /// that is refused.
  bool acceptsNoEffect = false;
};

/// A component, by its block, and where it is to be inserted.
struct ComponentInsert {
  OdDbObjectId block;
  ComponentPlacement placement;
};

/// Each edit runs in one transaction of the drawing, under a journal of the solids it touches, and
/// ends with the update pass: components are healed away and cut anew where they moved, references
/// follow. An edit that fails, or whose pass fails, rolls back all of it.
///
/// A reference is a VdmDbObjectDependency; operations on edges take references or edge numbers.
class ModelEditor : OdNonCopyable {
 public:
  explicit ModelEditor(OdDbDatabase* database);

  /// Each edit becomes one step of undo; true at first. Within an EditGroup the group decides.
  void setUndoSteps(bool steps) { m_undoSteps = steps; }

  // Components.
  EditResult insertComponent(const OdDbObjectId& block, const ComponentPlacement& placement);
  /// Inserts components with one pass for all of them: those that `next` gives, which is asked
  /// until it gives none or one that needs the outcome of an earlier one (insert_row.h); that one
  /// is left to the caller. The results and reports are those of insertComponent one by one, in
  /// order. Empty, and the drawing as before, where they could not be: a component fails or has no
  /// effect, other features or references are concerned. The caller then tries fewer of them.
  [[nodiscard]] std::vector<EditResult> insertRow(
      const std::function<std::optional<ComponentInsert>()>& next);
  /// By moving its insert to the layer "*SUPPRESS", and back to where it was. Accepts the insert or
  /// the feature.
  EditResult suppress(const OdDbObjectId& insert);
  EditResult unsuppress(const OdDbObjectId& insert);
  /// Heals what the feature did and erases it with its insert. A feature of another kind is erased.
  EditResult removeFeature(const OdDbObjectId& feature);
  EditResult renameFeature(const OdDbObjectId& feature, const OdString& name);

  // Entities. A solid takes its components along; so does erasing one.
  EditResult moveObject(const OdDbObjectId& entity, const OdGeVector3d& by);
  /// `angle` in radians; without `center` about the insert's own position, the middle of the box
  /// around other entities.
  EditResult rotateObject(const OdDbObjectId& entity, const OdGeVector3d& axis, double angle,
                          const std::optional<OdGePoint3d>& center = std::nullopt);
  EditResult transformObject(const OdDbObjectId& entity, const OdGeMatrix3d& transform);
  EditResult eraseObject(const OdDbObjectId& entity);

  // Bodies.
  /// The new body has no openings: components are cut into it anew.
  EditResult replaceBody(const OdDbObjectId& solid, OdModelerBodyPtr body);
  EditResult filletEdges(const OdDbObjectId& solid, std::span<const OdUInt32> edges, double radius);
  EditResult chamferEdges(const OdDbObjectId& solid, std::span<const OdUInt32> edges,
                          double distance);
  /// Edges by their references, which lie on one solid.
  EditResult filletReferences(std::span<const OdDbObjectId> references, double radius);
  EditResult chamferReferences(std::span<const OdDbObjectId> references, double distance);
  /// The tool solid stays unless it is to be consumed.
  EditResult booleanSolid(OdModelerBooleanKind kind, const OdDbObjectId& solid,
                          const OdDbObjectId& tool, bool consumeTool);

  /// Brings everything up to date after edits of others; `force` does every component anew.
  EditResult update(bool force = false);

  /// Any change of the drawing by others as an edit of this editor: `change` runs within the
  /// transaction and the journal, then the pass follows. An OdError that it raises becomes the
  /// status.
  EditResult edit(const OdString& what, const std::function<OdStatus()>& change);

 private:
  friend class EditGroup;
  using Blend = OdStatus (OdDb3dSolid::*)(std::span<const OdUInt32> edges, double size,
                                          OdModelerHistory* history);
  using BlendEdges = EditResult (ModelEditor::*)(const OdDbObjectId& solid,
                                                 std::span<const OdUInt32> edges, double size);

  void beginStep();
  EditResult edit(const OdString& what, const std::function<OdStatus()>& change,
                  const std::function<OdStatus(UpdateReport&)>& accept);
  EditResult blendEdges(const OdString& what, Blend blend, const OdDbObjectId& solid,
                        std::span<const OdUInt32> edges, double size);
  EditResult blendReferences(BlendEdges blend, std::span<const OdDbObjectId> references,
                             double size);

  OdDbDatabase* m_database;
  bool m_undoSteps = true;
  bool m_inGroup = false;
};

/// Many operations of one editor as one: one step of undo, all or nothing. Each operation ends with
/// its own pass. Aborts in its destructor unless commit() was called; an operation that
/// failed has rolled back itself only, and the owner of the group decides about the others.
class EditGroup : OdNonCopyable {
 public:
  explicit EditGroup(ModelEditor& editor);
  ~EditGroup();
  void commit();

 private:
  ModelEditor& m_editor;
  std::unique_ptr<OdDbTransaction> m_transaction;
};

}  // namespace vdm_host
