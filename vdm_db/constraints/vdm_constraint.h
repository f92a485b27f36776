// VdmConstraint: one 3D constraint of a block.
#pragma once

#include <vector>

#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/db/subent.h"
#include "platform/filer/dwg_filer.h"
#include "platform/filer/object_id.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/constraints/vdm_constraint_orientation.h"
#include "vdm_db/constraints/vdm_db_constraint_manager_pe.h"
#include "vdm_db/properties/vdm_properties.h"
#include "vdm_db/references/vdm_extended_path.h"

class OdDbAssocVariable;
class OdDbDatabase;
class VdmConstraint;
using VdmConstraintPtr = OdSmartPtr<VdmConstraint>;

/// One 3D constraint: a type code, arguments that refer to geometry by VdmDbObjectDependency
/// objects, a value, and a bag of typed properties. It is no database object: a
/// VdmDbConstraintManager holds it by reference, files it within its own record and records its
/// changes for undo. Undo, redo and reading make new objects and set the owner of the old ones to
/// null, so users keep the node id across them and not the object. VdmDbConstraintManagerPE gives
/// type codes their meaning. A parametric constraint can have a variable in the network of its
/// block, kept by its id, which carries the name and the value. Used on the thread that holds the
/// drawing.
///
/// A change of a filed field is four steps: kBeforeModify, store, kDataChanged, kAfterModify.
/// Changing the name and removing a property leave kDataChanged out, because they do not outdate a
/// solution.
class VDM_DB_EXPORT VdmConstraint : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmConstraint)

  /// Signals of a change to the manager.
  enum NotifyCode : OdInt32 {
    kBeforeModify = 0,  ///< the manager is made ready for writing
    kAfterModify = 1,
    kDataChanged = 2,  ///< what a solver depends on has changed
  };
  /// The newest type code and the newest soft version that this build understands.
  static constexpr OdLong kNewestType = 16;
  static constexpr OdLong kNewestSoftVersion = 3;

  VdmConstraint();
  ~VdmConstraint() override;

  // ---- Place

  /// The manager; null when the constraint is in none.
  [[nodiscard]] OdDbObjectId owner() const { return m_owner; }
  OdResult setOwner(const OdDbObjectId& owner);
  [[nodiscard]] OdDbDatabase* database() const;
  /// Identity within the manager. Set by it; no signal.
  [[nodiscard]] OdULong nodeId() const { return static_cast<OdULong>(m_nodeId); }
  void setNodeId(OdULong nodeId) { m_nodeId = static_cast<OdLong>(nodeId); }
  /// The protocol extension of the manager's class; null without one, and without a manager.
  [[nodiscard]] VdmDbConstraintManagerPEPtr getConstraintManagerPE() const;

  // ---- Kind and state

  [[nodiscard]] OdLong type() const { return m_type; }
  void setType(OdLong type);
  /// That of the variable when there is one.
  [[nodiscard]] OdString name() const;
  /// Renames the variable when there is one, and expressions that use it follow. Refused, with
  /// nothing changed: what OdDbAssocVariable::setName refuses.
  OdResult setName(const OdString& name, OdString* errorMessage = nullptr);
  [[nodiscard]] bool isEnabled() const { return m_enabled; }
  void setEnabled(bool enabled);
  /// Asked of the extension; false without one.
  [[nodiscard]] bool isParametric() const;
  [[nodiscard]] bool isLinearDimension() const;
  [[nodiscard]] bool isAngularDimension() const;
  [[nodiscard]] double userValue() const { return m_userValue; }
  /// Nothing happens unless the constraint is parametric.
  void setUserValue(double value);
  /// Id of the variable that carries the value; null without one.
  [[nodiscard]] OdDbObjectId userVariable() const;
  /// Expression of the variable; empty without one.
  [[nodiscard]] OdString userExpression() const;
  /// The constraint whose value a variable carries, found by the persistent reactors of the
  /// variable; null when there is none, and for null. The manager holds it.
  [[nodiscard]] static VdmConstraint* getDimConstraint(const OdDbAssocVariable* variable);
  /// False for a constraint of a newer writer: its marks are kept as they are.
  [[nodiscard]] bool isSupportedVersion() const;

  // ---- Arguments

  void setDependencies(const std::vector<ExtendedDep>& dependencies);
  /// Arguments that a damaged record has no default geometry for have none here.
  [[nodiscard]] std::vector<ExtendedDep> dependencies() const;
  [[nodiscard]] OdUInt32 getArgumentsCount() const { return m_arguments.size(); }
  /// Ids of the dependencies; null for an argument that refers to nothing.
  [[nodiscard]] const OdDbObjectIdArray& argumentIds() const { return m_arguments; }
  /// The paths of the arguments. An argument that cannot be resolved is left out; one that refers
  /// to nothing has an empty path. Raises OdError_NotThatKindOfClass for an argument that is no
  /// dependency, eNotOpenForRead (61) for one that cannot be opened, OdError_InvalidIndex for one
  /// that a damaged record has no default geometry for.
  [[nodiscard]] OdArray<OdDbFullSubentPath> getArguments() const;
  [[nodiscard]] VdmExtendedPathArray getExtArguments() const;
  /// One of them; false for an argument that cannot be resolved.
  bool getExtArgument(OdUInt32 index, VdmExtendedPath& path) const;
  /// All arguments can be resolved or refer to nothing. Raises as getArguments, and not for default
  /// geometry.
  [[nodiscard]] bool isValid() const;

  // ---- Side conditions

  [[nodiscard]] VdmConstraintOrientationProperties getConstraintOrientationProperties() const;
  [[nodiscard]] bool hasHalfSpaces() const;
  [[nodiscard]] bool hasAlignment() const;
  /// Changes to the previous combination of sides with `down`, otherwise to the next one; without
  /// sides the alignment changes. What is left to the drawing counts as it is drawn. False when the
  /// constraint offers neither.
  bool flipSide(bool down);

  // ---- Properties

  [[nodiscard]] const VdmProperties& properties() const { return m_properties; }
  /// Stores a value, also in place of one of another kind, with the signals of a change.
  template <VdmPropertyValue T>
  void changeProperty(const OdString& key, const T& value) {
    change([&] { putProperty(key, value); });
  }
  /// True when it was there.
  bool removeProperty(const OdString& key);

  // ---- Filing; vdm_constraint_filing.cpp has the form

  void dwgOutFields(OdDbDwgFiler* filer) const;
  /// eCorruptData (83) for a version above 3 and for a map that cannot be read; the result of the
  /// bag otherwise. The constraint is not to be used when it is not eOk.
  OdResult dwgInFields(OdDbDwgFiler* filer);

 protected:
  friend class VdmDbConstraintManager;

  /// Makes the variable that carries name and value, and gives its id; it is anonymous where no
  /// variable can have the name. Null, with nothing changed, without a name, and for a constraint
  /// that is not parametric or has a variable.
  OdDbObjectId createVariable();
  /// Sets "softVersion" and "exType" to what a reader must understand.
  void decideLowestSoftVersionCode();

 private:
  static const OdString& nodeIdKey();
  template <VdmPropertyValue T>
  void putProperty(const OdString& key, const T& value) {
    if (m_properties.setProperty(key, value)) return;
    m_properties.removeProperty(key);
    m_properties.setProperty(key, value);
  }
  bool getArgument(OdUInt32 index, OdDbFullSubentPath& path) const;
  void signalModification(NotifyCode code);
  void notifyOwner(NotifyCode code);
  /// Stores, with the signals of a change.
  template <class Call>
  void change(Call&& store) {
    signalModification(kBeforeModify);
    store();
    signalModification(kDataChanged);
    signalModification(kAfterModify);
  }
  [[nodiscard]] OdLong lowestSoftVersionCode() const;
  [[nodiscard]] OdLong streamType() const;
  OdResult readProperties(OdDbDwgFiler* filer, OdInt16 version);
  void restoreGeometryTypes();
  void restoreType();

  OdDbObjectId m_owner;
  OdDbObjectIdArray m_arguments;
  VdmLongArray m_defaultGeometry;  // by argument; kDefaultGeometryNone where it is none
  OdString m_name;                 // with a variable: empty, or the name it had last
  double m_userValue = 0.0;
  OdInt32 m_fileReserved = 0;
  OdLong m_type = 0;
  OdLong m_nodeId = 0;
  bool m_enabled = true;
  VdmProperties m_properties;
};
