// VdmAssocVariableExt: the mechanical attributes of a parameter.
#pragma once

#include <memory>

#include "platform/assoc/assoc_variable.h"
#include "platform/base/string.h"
#include "platform/db/db_enums.h"
#include "platform/rx/rx_macros.h"
#include "platform/rx/rx_object.h"
#include "vdm_db/common/vdm_db_export.h"
#include "vdm_db/properties/vdm_properties.h"

class VdmAssocVariableExt;
using VdmAssocVariableExtPtr = OdSmartPtr<VdmAssocVariableExt>;

/// Attributes of one variable that its class has no place for: exposure, status in bills of
/// material, units, range of animation. They lie in a property bag beside the variable. A wrapper
/// is transient: it reads the bag once, so it does not see what another wrapper stores. While it
/// lives it keeps the variable open: in the mode of the smart pointer that it is made of, and for
/// read when it is made of a plain one. Getters answer what the comment says when an attribute is
/// absent or of another type. Setters store the bag and need the variable open for write.
///
/// The key "units" serves two purposes: an integer is the measurement type, a text a free unit.
class VDM_DB_EXPORT VdmAssocVariableExt : public OdRxObject {
 public:
  OD_RX_DECLARE_MEMBERS(VdmAssocVariableExt)

  VdmAssocVariableExt();
  ~VdmAssocVariableExt() override;

  /// Numbers are stored; what they mean is up to the module of bills of material.
  enum EBOMStatus : OdInt32 { kBOMNotSpecified = 0 };
  /// The power of the length unit. Numbers are stored.
  enum MeasurementType : OdInt32 { kNumber = 0, kLength = 1, kArea = 2, kVolume = 3 };
  /// A number with its unit.
  struct Measurement {
    double value = 1.0;
    int type = kNumber;
    OdDb::UnitsValue units = OdDb::kUnitsUndefined;  ///< the length unit
    OdString text;                                   ///< as it is shown
  };

  /// A new wrapper; null for null.
  static VdmAssocVariableExtPtr cast(const OdDbAssocVariable* variable);
  static VdmAssocVariableExtPtr cast(const OdDbAssocVariablePtr& variable);

  // ---- Exposure to users

  /// Somebody has set whether it is exposed.
  [[nodiscard]] bool isOverriddenExpose() const;
  /// What was set; false when nothing was.
  [[nodiscard]] bool isExposed() const;
  void setExposed(bool exposed);
  /// Takes back what was set.
  void setDefaultExpose();
  /// What was set. Otherwise a variable is exposed when it has a name, is used, is driven by no
  /// geometry and no column of a configuration table, and depends on nothing. False for null.
  [[nodiscard]] static bool calculateExposedStatus(const OdDbAssocVariable* variable);

  // ---- Other attributes

  [[nodiscard]] EBOMStatus statusBOM() const;
  void setStatusBOM(EBOMStatus status);
  /// Both ends were set; on false the outputs are as they were.
  bool hasRangeForAnimation(double& start, double& end) const;
  /// The order of the two has no meaning here.
  void setRangeForAnimation(double start, double end);
  void clearRangeForAnimation();
  /// The value comes from geometry; false when absent.
  [[nodiscard]] bool isGeometryDriven() const;
  void setGeometryDriven(bool driven);

  // ---- What the variable is for

  /// A length: by its measurement type, or as the variable of a linear constraint or of the
  /// thickness of sheet metal.
  [[nodiscard]] bool isLinearDimension() const;
  /// The variable of an angular constraint.
  [[nodiscard]] bool isAngularDimension() const;
  /// The variable of the thickness of its block's sheet metal.
  [[nodiscard]] bool isSMThickness() const;
  /// The variable switches a suppress feature of the model space.
  [[nodiscard]] bool isSuppressVariable() const;

  // ---- Units

  /// 0 when absent.
  [[nodiscard]] int measurementType() const;
  /// Replaces a free unit. A linear dimension keeps no type, since it is a length in any case.
  void setMeasurementType(int type);
  /// Of the variable, with its value or with 1.
  [[nodiscard]] Measurement getMeasurement(bool withValue) const;
  [[nodiscard]] OdString unitsAsString() const;
  /// The insertion units of the block that has the variable; those of the drawing for the model
  /// space.
  [[nodiscard]] OdDb::UnitsValue getBlockUnits() const;
  /// "mm"; empty for no unit and for one that is not known.
  [[nodiscard]] static OdString unitsToString(OdDb::UnitsValue units);
  /// "mm", "mm^2", "mm^3"; empty for a plain number.
  [[nodiscard]] static OdString measurementTypeToString(OdDb::UnitsValue units, int type);
  /// The measurement in other length units. Without units on one side the value stays, and the
  /// result has neither units nor text. A free unit in which the length unit occurs is converted by
  /// the VdmCVUnitInterface; where that fails the value stays and the text is empty.
  [[nodiscard]] Measurement convertMeasurement(OdDb::UnitsValue target) const;
  [[nodiscard]] static Measurement convertMeasurement(OdDb::UnitsValue target,
                                                      const Measurement& measurement);
  /// By what a value is multiplied in that conversion.
  [[nodiscard]] double getScaleFactor(OdDb::UnitsValue target) const;

 private:
  [[nodiscard]] const VdmProperties& bag() const;
  template <class T>
  void store(const OdString& key, const T& value);
  void write();
  [[nodiscard]] bool isDimension() const;

  mutable std::unique_ptr<VdmProperties> m_bag;  // null until it is read
  OdDbAssocVariablePtr m_variable;
};
