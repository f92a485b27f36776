// OdGiContext: where and for what a picture is made.
#pragma once

#include "platform/rx/rx_object.h"

/// Outlives the drawing that is done with it.
class OdGiContext {
 public:
  virtual ~OdGiContext() = default;

  /// The database of the picture, as the object that it is; null for drawables outside of one.
  [[nodiscard]] virtual OdRxObject* database() const = 0;
  /// The caller wants no more: drawables end as soon as they can.
  [[nodiscard]] virtual bool regenAbort() const { return false; }

 protected:
  OdGiContext() = default;
};
