// VdmDbPropertyReactor: properties of a feature that variables drive.
#pragma once

#include <map>

#include "platform/base/array.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/filer/object_id.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/model/vdm_db_feature_reactor.h"
#include "vdm_db/properties/db_typed_id.h"

/// State: the bag key "prop2vars", and "deleteOnErase" where somebody has set it.
class VDM_DB_EXPORT VdmDbPropertyReactorImpl : public VdmDbFeatureReactorImpl {
 public:
  VdmDbPropertyReactorImpl();

  std::map<OdString, OdDbTypedId> variables;  ///< by property

  [[nodiscard]] bool isOf(const OdDbObjectId& variable) const;
  /// Takes the reactor and the feature's carrier off the variables. With "deleteOnErase" they end
  /// with it, unless a configuration gives them a text.
  OdResult subErase(VdmDbFeatureReactor* reactor) override;
  [[nodiscard]] OdDbObjectIdArray getVariables(const VdmDbFeatureReactor* reactor) override;
};

/// Binds numbers among the properties of a feature to variables. It is a persistent reactor of the
/// variables; when one has a value that differs from the property, the feature is called with
/// onPropertyModified(), and a feature that does not handle the property has the number stored and
/// all features of the block marked.
class VDM_DB_EXPORT VdmDbPropertyReactor : public VdmDbFeatureReactorOf<VdmDbPropertyReactorImpl> {
 public:
  OD_RX_DECLARE_MEMBERS(VdmDbPropertyReactor)

  /// Binds a property of the feature, whose carrier `owner` is, to the variable of the name in the
  /// model space. A missing variable is made, anonymous where it cannot have the name; the variable
  /// takes the present number. Returns the result of vdmu::setConstExpression, with the property
  /// bound in any case. Nothing changes for a property that is no number (eKeyNotFound).
  OdResult setProperty(OdDbObject* owner, const OdString& property, const OdString& variableName);
  /// The bound properties, in the order of their names.
  [[nodiscard]] OdStringArray getProperties() const;
  /// Null for a property that is not bound.
  [[nodiscard]] OdDbObjectId getPropertyVariable(const OdString& property) const;

  void modified(const OdDbObject* object) override;
  /// The variable leaves the bindings.
  void erased(const OdDbObject* object, bool erasing) override;
};
using VdmDbPropertyReactorPtr = OdSmartPtr<VdmDbPropertyReactor>;
