// VdmDbFeatureReactor: a link of a feature to something that it depends on.
#pragma once

#include <memory>

#include "platform/db/db_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_db_properties_base.h"

class VdmDbFeatureReactor;

/// The state of a reactor. A subclass of the reactor has its own, which binds its fields to the bag
/// in its constructor and sets the version of the bag there.
class VDM_DB_EXPORT VdmDbFeatureReactorImpl : public VdmDbPropertiesBase {
 public:
  VdmDbFeatureReactorImpl();
  ~VdmDbFeatureReactorImpl() override;

  /// The reactor is being erased. The result is not passed on.
  virtual OdResult subErase(VdmDbFeatureReactor* reactor);
  [[nodiscard]] virtual OdDbObjectIdArray getVariables(const VdmDbFeatureReactor* reactor);
  [[nodiscard]] virtual OdDbObjectIdArray getDependentVariables(const VdmDbFeatureReactor* reactor);
};

/// Base of the objects through which a feature hears of what it depends on. A reactor is a
/// persistent reactor of that object. The carrier of the feature owns it, and the feature lists it;
/// it finds its feature through its owner. All its data are named properties of one bag.
///
/// Laws of a subclass:
///
/// 1. Its `modified` or `erased`, if the feature is to react, ends in a call of the feature:
///    onPropertyModified, onReactorModified or eraseReactor.
/// 2. hasChanges says that the feature must take part in the next update pass although none of its
///    dependencies was replaced; needConstraintsRecalculation that it must once constraints were
///    calculated. VdmFeature::hasChanges asks every class but those of the module that answer
///    neither.
/// 3. doAudit gives false when the reactor has lost what it exists for.
/// 4. changesAreStored may be true only where both answers of law 2 follow from the reactor's own
///    state and every change of that goes through implForWrite, or comes by reading it. A pass then
///    keeps the answers instead of asking each time.
/// 5. getVariables gives the variables that the reactor depends on, getDependentVariables those
///    that depend on the feature.
class VDM_DB_EXPORT VdmDbFeatureReactor : public OdDbObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbFeatureReactor)

  VdmDbFeatureReactor();
  ~VdmDbFeatureReactor() override;

  [[nodiscard]] virtual bool hasChanges() const;
  [[nodiscard]] virtual bool needConstraintsRecalculation() const;
  virtual bool doAudit();
  [[nodiscard]] virtual OdDbObjectIdArray getVariables();
  [[nodiscard]] virtual OdDbObjectIdArray getDependentVariables();
  /// False in the base. A class below one that says true keeps the law, too, or says false again.
  [[nodiscard]] virtual bool changesAreStored() const;

  /// Block of the manager of the feature; null when the carrier or the manager does not open.
  [[nodiscard]] OdDbObjectId blockId() const;

  /// A copy of what the reactor is attached to concerns another feature or none: takes itself off.
  void copied(const OdDbObject* object, const OdDbObject* clone) override;
  OdResult subErase(bool erasing) override;
  void subExistenceChanged() override;
  void subIdSwapped() override;
  OdResult dwgInFields(OdDbDwgFiler* filer) override;
  void dwgOutFields(OdDbDwgFiler* filer) const override;

 protected:
  /// With the state of the subclass.
  explicit VdmDbFeatureReactor(std::unique_ptr<VdmDbFeatureReactorImpl> impl);

  /// Raises OdError eNotOpenForRead unless the reactor is open for read.
  [[nodiscard]] const VdmDbFeatureReactorImpl& implForRead() const;
  /// Records the whole state for undo.
  VdmDbFeatureReactorImpl& implForWrite();
  /// Without a check, for a subclass that records its steps itself.
  [[nodiscard]] VdmDbFeatureReactorImpl& impl() const { return *m_impl; }

 private:
  std::unique_ptr<VdmDbFeatureReactorImpl> m_impl;
};
using VdmDbFeatureReactorPtr = OdSmartPtr<VdmDbFeatureReactor>;

/// A reactor with a state of one class. Not a run-time class: the reactor that derives from it
/// names VdmDbFeatureReactor as its parent.
template <class State>
class VDM_DB_EXPORT VdmDbFeatureReactorOf : public VdmDbFeatureReactor {
 protected:
  VdmDbFeatureReactorOf() : VdmDbFeatureReactor(std::make_unique<State>()) {}

  // implForRead(), implForWrite() and impl() of the base, as what they are.
  [[nodiscard]] const State& stateForRead() const {
    return static_cast<const State&>(implForRead());
  }
  State& stateForWrite() { return static_cast<State&>(implForWrite()); }
  [[nodiscard]] State& state() const { return static_cast<State&>(impl()); }
};
