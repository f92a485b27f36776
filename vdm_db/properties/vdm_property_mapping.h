// Values that are variables of an object, by pointer or by getter and setter.
#pragma once

#include <functional>
#include <utility>

#include "vdm_db/properties/vdm_property_data.h"

// Every mapping refers to a variable or to functions of its owner, which outlives it.

// A variable without a default.
template <class T>
class VdmPropertyDataMapping final : public VdmPropertyConcreteData<T> {
 public:
  explicit VdmPropertyDataMapping(T* variable) : m_variable(variable) {}

  [[nodiscard]] bool isMapped() const override { return true; }
  T& value() override { return *m_variable; }
  [[nodiscard]] const T& value() const override { return *m_variable; }

 private:
  T* m_variable;
};

// A variable with a default.
template <class T>
class VdmPropertyDataMappingWithDefault final : public VdmPropertyConcreteData<T> {
 public:
  VdmPropertyDataMappingWithDefault(T* variable, const T& defaultValue)
      : m_variable(variable), m_default(defaultValue) {}

  [[nodiscard]] bool isMapped() const override { return true; }
  [[nodiscard]] bool isOutOfDate() const override {
    return !(std::as_const(*m_variable) == m_default);
  }
  bool reset() override {
    *m_variable = m_default;
    return true;
  }
  T& value() override { return *m_variable; }
  [[nodiscard]] const T& value() const override { return *m_variable; }

 private:
  T* m_variable;
  T m_default;
};

// A value behind two functions. value() fetches it into a cached copy; what is written there
// reaches the setter with updateMapped(). An empty function raises std::bad_function_call when it
// is needed.
template <class T>
class VdmPropertyDataMappingGetterSetter final : public VdmPropertyConcreteData<T> {
 public:
  VdmPropertyDataMappingGetterSetter(std::function<T()> getter, std::function<void(T)> setter)
      : m_cached(), m_getter(std::move(getter)), m_setter(std::move(setter)) {}

  [[nodiscard]] bool isMapped() const override { return true; }
  void updateMapped() override { m_setter(m_cached); }
  T& value() override { return m_cached = m_getter(); }
  [[nodiscard]] const T& value() const override { return m_cached = m_getter(); }

 private:
  mutable T m_cached;
  std::function<T()> m_getter;
  std::function<void(T)> m_setter;
};

// The same with a default.
template <class T>
class VdmPropertyDataMappingGetterSetterWithDefault final : public VdmPropertyConcreteData<T> {
 public:
  VdmPropertyDataMappingGetterSetterWithDefault(std::function<T()> getter,
                                                std::function<void(T)> setter,
                                                const T& defaultValue)
      : m_getter(std::move(getter)),
        m_setter(std::move(setter)),
        m_default(defaultValue),
        m_cached() {}

  [[nodiscard]] bool isMapped() const override { return true; }
  [[nodiscard]] bool isOutOfDate() const override { return !(m_getter() == m_default); }
  void updateMapped() override { m_setter(m_cached); }
  bool reset() override {
    m_setter(m_default);
    return true;
  }
  T& value() override { return m_cached = m_getter(); }
  [[nodiscard]] const T& value() const override { return m_cached = m_getter(); }

 private:
  std::function<T()> m_getter;
  std::function<void(T)> m_setter;
  T m_default;
  mutable T m_cached;
};

// A variable that holds an id; the mapping adds the reference type. Reading fetches the variable
// into a cached pair; writing changes the pair, and updateMapped() copies it to the variable.
class VDM_DB_EXPORT VdmPropertyDataObjectIdMapping final
    : public VdmPropertyConcreteData<OdDbTypedId> {
 public:
  VdmPropertyDataObjectIdMapping(OdDbObjectId* variable, OdDb::ReferenceType type);

  [[nodiscard]] bool isMapped() const override { return true; }
  void updateMapped() override;
  OdDbTypedId& value() override { return m_cached; }
  [[nodiscard]] const OdDbTypedId& value() const override;

 private:
  OdDbObjectId* m_variable;
  mutable OdDbTypedId m_cached;
  OdDb::ReferenceType m_type;
};

// The same for an array of ids, all of one reference type.
class VDM_DB_EXPORT VdmPropertyDataObjectIdArrayMapping final
    : public VdmPropertyConcreteData<VdmTypedIdArray> {
 public:
  VdmPropertyDataObjectIdArrayMapping(OdDbObjectIdArray* variable, OdDb::ReferenceType type);

  void setReferenceType(OdDb::ReferenceType type) { m_type = type; }

  [[nodiscard]] bool isMapped() const override { return true; }
  void updateMapped() override;
  VdmTypedIdArray& value() override { return m_cached; }
  [[nodiscard]] const VdmTypedIdArray& value() const override;

 private:
  OdDbObjectIdArray* m_variable;
  mutable VdmTypedIdArray m_cached;
  OdDb::ReferenceType m_type;
};
