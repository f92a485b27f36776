// What a wall asks its worker for.
#pragma once

#include "platform/base/types.h"

namespace od_wall {

/// The number under which a worker keeps a body.
using BodyNumber = OdUInt64;

/// A request is: its head, the numbers of bodies to drop, the bodies handed over (number, stored
/// form), the numbers of the bodies to work on, and the operation's own arguments. The answer says
/// whether the bodies were taken, then a status and, when it is ok, what the operation gives: the
/// stored form of the body that it made and its history where it was asked for, or its own values.
enum class Operation : OdUInt8 {
  kBox,
  kCylinder,
  kCone,
  kSphere,
  kTorus,
  kWedge,
  kExtrude,
  kRevolve,
  kBoolean,
  kFillet,
  kChamfer,
  kRemoveFaces,
  kImportStep,
  kExportStep,
  kCheck,
  kTessellate,
  kMassProperties,
};

struct RequestHead {
  Operation operation = Operation::kCheck;
  bool wantsHistory = false;
  BodyNumber result = 0;  ///< the number of the body that the operation makes
};

/// The operation as messages name it.
[[nodiscard]] const char* nameOf(Operation operation);

}  // namespace od_wall
