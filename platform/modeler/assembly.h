// Products and their occurrences, as exchange files hold them.
#pragma once

#include <optional>
#include <vector>

#include "platform/base/array.h"
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

/// Curves of a note, a dimension or a symbol.
struct OdModelerAnnotation {
  OdModelerBodyPtr body;  ///< of edges, in the coordinates of its product
  OdString name;
};

/// One part or sub-assembly, however many times it occurs. Names and colours of its bodies are the
/// bodies' own attributes.
struct OdModelerProduct {
  OdString name;      ///< as the file has it; may be empty, need not be unique
  OdString uniqueId;  ///< the name, made unique within the assembly
  std::vector<OdModelerBodyPtr> bodies;
  std::vector<OdModelerOccurrence> occurrences;
  std::vector<OdString> layers{};  ///< by body; a missing or empty one is no layer
  /// What is drawn beside the bodies to explain them. Read on request, not written.
  std::vector<OdModelerAnnotation> annotations{};

  [[nodiscard]] OdString layerOf(std::size_t body) const {
    return body < layers.size() ? layers[body] : OdString();
  }
};

/// A length unit by the name that the file gives it.
struct OdModelerLengthUnit {
  OdString name = OdString(L"millimetre");
  double millimetres = 1.0;
};

/// Who wrote an exchange file, and when.
struct OdModelerFileHeader {
  OdString name;
  OdString timeStamp;  ///< as 2026-01-31T12:00:00
  OdString author;
  OdString organization;
  OdString originatingSystem;
};

/// What a reader of an exchange file has to say about it, one line each.
struct OdModelerReadNotes {
  OdStringArray leftOut;  ///< what products and bodies do not keep, by kind and number
  OdStringArray lost;     ///< what the file declares or should have, and was not read
  OdStringArray remarks;  ///< how the file was understood
};

/// A product structure without cycles. Geometry is in millimetres whatever `sourceUnit` says.
struct OdModelerAssembly {
  std::vector<OdModelerProduct> products;
  std::vector<OdModelerOccurrence> roots;
  OdModelerLengthUnit sourceUnit;  ///< of the file that was read, or of the one to write
  OdModelerFileHeader header;
  OdModelerReadNotes notes;  ///< of reading; not written

  /// eInvalidInput when an occurrence names a product that is not there, a product contains itself
  /// or a body is null; the text names the product.
  OdStatus check() const;
};
