// Exceptions for programming faults and wrong open states.
#pragma once

#include <exception>

#include "platform/base/export.h"
#include "platform/base/raise.h"
#include "platform/base/result.h"
#include "platform/base/string.h"

/// An error with a result code and a text. Copies share the text and do not throw.
class OD_API OdError : public std::exception {
 public:
  OdError(OdResult code);
  /// Code eGeneralFailure, and the text is the whole description.
  OdError(const OdString& description);
  /// The description reads "<text of the code>: <context>".
  OdError(OdResult code, const OdString& context);
  OdError(const OdError&) noexcept = default;
  OdError& operator=(const OdError&) noexcept = default;
  ~OdError() override;

  [[nodiscard]] OdResult code() const noexcept { return m_code; }
  [[nodiscard]] const OdString& description() const noexcept { return m_description; }
  /// The description as UTF-8; valid as long as this error.
  [[nodiscard]] const char* what() const noexcept override;

 private:
  OdResult m_code;
  OdString m_description;
};

/// An object was converted to a class that it is not of.
class OD_API OdError_NotThatKindOfClass : public OdError {
 public:
  OdError_NotThatKindOfClass(const OdString& fromClassName, const OdString& toClassName);
  OdError_NotThatKindOfClass(const OdError_NotThatKindOfClass&) noexcept = default;
  ~OdError_NotThatKindOfClass() override;

  [[nodiscard]] const OdString& fromClassName() const noexcept { return m_fromClassName; }
  [[nodiscard]] const OdString& toClassName() const noexcept { return m_toClassName; }

 private:
  OdString m_fromClassName;
  OdString m_toClassName;
};

/// A container was asked for an element that it does not have.
class OD_API OdError_InvalidIndex : public OdError {
 public:
  OdError_InvalidIndex();
  OdError_InvalidIndex(OdInt64 index, OdInt64 size);
  OdError_InvalidIndex(const OdError_InvalidIndex&) noexcept = default;
  ~OdError_InvalidIndex() override;
};
