// EditedModel: a drawing with solids and components, the edits of scripts, and the truth about it.
#pragma once

#include <memory>
#include <string>

#include "host/modeling/component_feature.h"
#include "host/modeling/model_editor.h"
#include "host/naming/reference_query.h"
#include "platform/base/non_copyable.h"
#include "platform/db/host_app_services.h"
#include "tests/host/modeling/modeling_testing.h"
#include "tests/reliability/model_edit.h"
#include "tests/reliability/model_play.h"
#include "tests/reliability/model_truth.h"
#include "tests/support/failing_modeler.h"

[[noreturn]] void fail(const std::string& what);
/// Raises what() when it does not hold.
void expect(bool holds, const std::string& what);

/// Does edits on the drawing and on the truth. Installs a modeller that can be made to fail.
class EditedModel : OdNonCopyable {
 protected:
  explicit EditedModel(const ModelParts& parts);
  ~EditedModel();

  /// Any edit but undo and redo. After one that fails the truth is to be set back.
  vdm_host::EditResult apply(const ModelEdit& edit);

  [[nodiscard]] OdDbObjectId idOf(const OdDbHandle& handle) const;
  [[nodiscard]] OdModelerBodyPtr bodyOf(std::size_t solid) const;
  [[nodiscard]] VdmComponentFeaturePtr openComponent(const TruthInsert& insert) const;
  static OdUInt32 numberOf(const vdm_host::ResolvedReference& reference);

  std::shared_ptr<FailingModeler> m_modeler;
  OdDbHostAppServices m_services;
  OdDbDatabasePtr m_database;
  std::unique_ptr<vdm_host::ModelEditor> m_editor;
  ModelTruth m_truth;

 private:
  void addSolid(const OdModelerBodyPtr& body);
  void addBlocks();
  vdm_host::EditResult applyToInsert(const ModelEdit& edit);
  vdm_host::EditResult insert(const ModelEdit& edit);
  vdm_host::EditResult transformSolid(const ModelEdit& edit, const OdGeMatrix3d& transform);
  vdm_host::EditResult drill(const ModelEdit& edit);
  vdm_host::EditResult refer(const ModelEdit& edit);
  static OdGeVector3d stepOf(const ModelEdit& edit);
  [[nodiscard]] OdGePoint3d placeOf(const ModelEdit& edit, std::size_t solid) const;
  TruthInsert* chooseInsert(std::uint64_t which);
};
