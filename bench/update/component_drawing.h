// A drawing with a plate and one component, as a host keeps them.
#pragma once

#include "host/modeling/model_editor.h"
#include "platform/base/non_copyable.h"
#include "platform/db/host_app_services.h"

/// The drawing runtime, the modeller and both modules, while it lives. One in a process at a time.
class HostRuntime : OdNonCopyable {
 public:
  HostRuntime();
  ~HostRuntime();
};

/// A plate 10 thick from the origin, and a block that is a through hole. Needs a HostRuntime.
struct ComponentDrawing {
  OdDbHostAppServices services;
  OdDbDatabasePtr database;
  OdDbObjectId plate;
  OdDbObjectId hole;

  ComponentDrawing(double length, double width, double holeDiameter);
  /// Another plate of the same body.
  [[nodiscard]] OdDbObjectId addPlate() const;
  /// The hole at a point of the plate's top; `face` is the top's number.
  [[nodiscard]] vdm_host::ComponentPlacement at(double x, double y, OdUInt32 face) const;
  [[nodiscard]] OdModelerBodyPtr plateBody() const;
  /// The number of the plane face that looks up and lies highest.
  [[nodiscard]] OdUInt32 topFace() const;
};

/// Inserts all of them with one pass. Raises std::runtime_error where they are not one row.
std::vector<vdm_host::EditResult> insertTogether(
    vdm_host::ModelEditor& editor, const std::vector<vdm_host::ComponentInsert>& inserts);
