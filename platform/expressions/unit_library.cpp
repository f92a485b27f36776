// The units library.
#include "platform/expressions/unit_library.h"

namespace OdExpression {

std::optional<Unit> findInLibrary(std::wstring_view) { return std::nullopt; }

}  // namespace OdExpression
