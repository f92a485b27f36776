// A drawing with a part, its components and names into it, kept in step with their construction.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/naming/component_truth.h"
#include "bench/naming/method.h"
#include "platform/base/non_copyable.h"
#include "platform/db/database.h"
#include "platform/db/host_app_services.h"
#include "platform/filer/object_id.h"

namespace vdm_host {
class ModelEditor;
}

namespace naming_bench {

/// A name in the drawing, and the births of the face or edge that has it.
struct NamedReference {
  OdDbHandle feature;
  Birth birth;
  std::string text;  ///< for reports
};

/// Each edit is one of the host's editor and one step of undo. Edits raise std::runtime_error when
/// the host refuses them. Needs a DrawingRuntime.
class ComponentPlay : OdNonCopyable {
 public:
  explicit ComponentPlay(const PartPlan& plan);
  ~ComponentPlay();

  [[nodiscard]] const PartPlan& plan() const { return m_now.plan; }
  [[nodiscard]] const std::vector<NamedReference>& references() const { return m_now.references; }
  [[nodiscard]] OdModelerBodyPtr body() const;

  // Edits.
  int insert(OpeningPlan opening);
  void move(int opening, double dx, double dy);
  void turn(int opening, double angle);
  void resize(int opening, double length, double width, double depth);
  void remove(int opening);
  void suppress(int opening, bool suppressed);
  /// Names all faces and edges that can be named as wholes, at most `most` new ones.
  void nameWholes(Random& random, std::size_t most);
  // Round about.
  /// False when there is nothing to undo or redo.
  bool undo();
  bool redo();
  void saveAndOpen();
  /// Goes on with a copy of the part in the place of the part.
  void clone();

  [[nodiscard]] Answer answerOf(const NamedReference& reference) const;

 private:
  struct State {
    PartPlan plan;
    std::vector<NamedReference> references;
    std::map<int, OdDbHandle> inserts;
    OdDbHandle solid;
  };
  [[nodiscard]] OdDbObjectId idOf(const OdDbHandle& handle) const;
  [[nodiscard]] OdDbObjectId insertOf(int opening) const;
  void keep();
  void forgetSteps();
  bool travel(std::vector<State>& from, std::vector<State>& to, OdResult (OdDbDatabase::*step)());

  OdDbHostAppServices m_services;
  OdDbDatabasePtr m_database;
  std::unique_ptr<vdm_host::ModelEditor> m_editor;
  State m_now;
  std::vector<State> m_undo;
  std::vector<State> m_redo;
  int m_last = -1;  // the last number of an opening
};

}  // namespace naming_bench
