// Exceptions and the functions that raise them.
#include "platform/base/error.h"

#include <string>

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

}  // namespace

OdError::OdError(OdResult code) : m_code(code), m_description(odResultText(code)) {
  m_description.utf8();  // narrow form made now: what() must not allocate
}

OdError::OdError(const OdString& description)
    : m_code(eGeneralFailure), m_description(description) {
  m_description.utf8();
}

OdError::OdError(OdResult code, const OdString& context)
    : m_code(code), m_description(describe(code, context)) {
  m_description.utf8();
}

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
