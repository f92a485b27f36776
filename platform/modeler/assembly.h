// Products and their occurrences, as exchange files hold them.
#pragma once

#include <optional>
#include <vector>

#include "platform/base/string.h"
#include "platform/base/types.h"
#include "platform/ge/matrix3d.h"
#include "platform/modeler/body.h"

/// A product placed inside another one.
struct OdModelerOccurrence {
  OdUInt32 product = 0;  ///< index into the assembly's products
  OdGeMatrix3d placement;
  OdString name;
  std::optional<OdModelerColor> color;  ///< overrides the colours of the product
};

/// One part or sub-assembly, however many times it occurs. Names and colours of its bodies are the
/// bodies' own attributes.
struct OdModelerProduct {
  OdString name;      ///< as the file has it; may be empty, need not be unique
  OdString uniqueId;  ///< the name, made unique within the assembly
  std::vector<OdModelerBodyPtr> bodies;
  std::vector<OdModelerOccurrence> occurrences;
};

/// A length unit by the name that the file gives it.
struct OdModelerLengthUnit {
  OdString name = OdString(L"millimetre");
  double millimetres = 1.0;
};

/// A product structure without cycles. Geometry is in millimetres whatever `sourceUnit` says.
struct OdModelerAssembly {
  std::vector<OdModelerProduct> products;
  std::vector<OdModelerOccurrence> roots;
  OdModelerLengthUnit sourceUnit;

  /// eInvalidInput when an occurrence names a product that is not there, a product contains itself
  /// or a body is null; the text names the product.
  OdStatus check() const;
};
