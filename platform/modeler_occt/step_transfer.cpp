// What the modeller's reader made of the instances of a STEP file.
#include "platform/modeler_occt/step_transfer.h"

#include <StepData_StepModel.hxx>
#include <TopLoc_Location.hxx>
#include <TransferBRep.hxx>
#include <Transfer_TransientProcess.hxx>
#include <XSControl_Reader.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>

namespace od_occt {

StepTransfer::StepTransfer(const XSControl_Reader& reader)
    : m_process(reader.WS()->TransferReader()->TransientProcess()) {
  const auto model = Handle(StepData_StepModel)::DownCast(reader.WS()->Model());
  if (model.IsNull()) return;
  for (int i = 1; i <= model->NbEntities(); ++i) {
    const Handle(Standard_Transient) entity = model->Value(i);
    const int id = model->IdentLabel(entity);
    if (id > 0) m_entities.emplace(static_cast<OdUInt64>(id), entity);
  }
}

TopoDS_Shape StepTransfer::shapeOf(OdUInt64 id) const {
  const auto entity = m_entities.find(id);
  if (entity == m_entities.end() || m_process.IsNull()) return {};
  const TopoDS_Shape shape = TransferBRep::ShapeResult(m_process, entity->second);
  return shape.IsNull() ? shape : shape.Located(TopLoc_Location());
}

}  // namespace od_occt
