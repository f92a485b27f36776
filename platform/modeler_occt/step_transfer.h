// What the modeller's reader made of the instances of a STEP file.
#pragma once

#include <Standard_Handle.hxx>
#include <Standard_Transient.hxx>
#include <TopoDS_Shape.hxx>
#include <unordered_map>

#include "platform/base/types.h"

class Transfer_TransientProcess;
class XSControl_Reader;

namespace od_occt {

/// Made after the transfer; holds on to its results.
class StepTransfer {
 public:
  explicit StepTransfer(const XSControl_Reader& reader);

  /// The shape without its place; null when the instance gave none.
  [[nodiscard]] TopoDS_Shape shapeOf(OdUInt64 id) const;

 private:
  std::unordered_map<OdUInt64, Handle(Standard_Transient)> m_entities;  // by number in the file
  Handle(Transfer_TransientProcess) m_process;
};

}  // namespace od_occt
