// Exceptions and the functions that raise them.
#include "platform/base/error.h"

#include <string>
#include <tuple>

namespace {

OdString describe(OdResult code, const OdString& context) {
  OdString text(odResultText(code));
  if (!context.isEmpty()) {
    text += L": ";
    text += context;
  }
  return text;
}

OdString describeIndex(OdInt64 index, OdInt64 size) {
  return OdString("index " + std::to_string(index) + " of " + std::to_string(size));
}

// With its narrow form, which the text keeps: what() must not allocate.
OdString withNarrowForm(OdString text) {
  std::ignore = text.utf8();
  return text;
}

}  // namespace

OdError::OdError(OdResult code)
    : m_code(code), m_description(withNarrowForm(OdString(odResultText(code)))) {}

OdError::OdError(const OdString& description)
    : m_code(eGeneralFailure), m_description(withNarrowForm(description)) {}

OdError::OdError(OdResult code, const OdString& context)
    : m_code(code), m_description(withNarrowForm(describe(code, context))) {}

OdError::~OdError() = default;

const char* OdError::what() const noexcept { return static_cast<const char*>(m_description); }

OdError_NotThatKindOfClass::OdError_NotThatKindOfClass(const OdString& fromClassName,
                                                       const OdString& toClassName)
    : OdError(eNotThatKindOfClass, fromClassName + L" is not a " + toClassName),
      m_fromClassName(fromClassName),
      m_toClassName(toClassName) {}

OdError_NotThatKindOfClass::~OdError_NotThatKindOfClass() = default;

OdError_InvalidIndex::OdError_InvalidIndex() : OdError(eInvalidIndex) {}

OdError_InvalidIndex::OdError_InvalidIndex(OdInt64 index, OdInt64 size)
    : OdError(eInvalidIndex, describeIndex(index, size)) {}

OdError_InvalidIndex::~OdError_InvalidIndex() = default;

void odRaise(OdResult code) { throw OdError(code); }

void odRaise(OdResult code, const char* context) { throw OdError(code, OdString(context)); }

void odRaiseInvalidIndex(OdInt64 index, OdInt64 size) { throw OdError_InvalidIndex(index, size); }
