// Names that a STEP file gives to bodies, shells and faces.
#include "platform/modeler_occt/step_names.h"

#include <Interface_InterfaceModel.hxx>
#include <StepRepr_RepresentationItem.hxx>
#include <StepShape_ConnectedFaceSet.hxx>
#include <StepShape_FaceSurface.hxx>
#include <StepShape_ShellBasedSurfaceModel.hxx>
#include <StepShape_SolidModel.hxx>
#include <TCollection_HAsciiString.hxx>
#include <TransferBRep.hxx>
#include <Transfer_TransientProcess.hxx>
#include <XSControl_Reader.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>

#include "platform/modeler_occt/occt_convert.h"

namespace od_occt {
namespace {

bool namesShape(const Handle(StepRepr_RepresentationItem) & item) {
  return item->IsKind(STANDARD_TYPE(StepShape_FaceSurface)) ||
         item->IsKind(STANDARD_TYPE(StepShape_SolidModel)) ||
         item->IsKind(STANDARD_TYPE(StepShape_ConnectedFaceSet)) ||
         item->IsKind(STANDARD_TYPE(StepShape_ShellBasedSurfaceModel));
}

/// The reader decodes escapes of the file into UTF-8.
OdString utf8Name(const TCollection_HAsciiString& name) {
  return OdString::fromUtf8(name.ToCString(), static_cast<std::size_t>(name.Length()));
}

TopoDS_Shape unplaced(const TopoDS_Shape& shape) { return shape.Located(TopLoc_Location()); }

}  // namespace

StepNames::StepNames(const XSControl_Reader& reader) {
  const Handle(Interface_InterfaceModel)& model = reader.WS()->Model();
  const Handle(Transfer_TransientProcess)& transfer =
      reader.WS()->TransferReader()->TransientProcess();
  if (model.IsNull() || transfer.IsNull()) return;
  for (int i = 1; i <= model->NbEntities(); ++i) {
    const auto item = Handle(StepRepr_RepresentationItem)::DownCast(model->Value(i));
    if (item.IsNull() || item->Name().IsNull() || item->Name()->IsEmpty() || !namesShape(item))
      continue;
    const TopoDS_Shape shape = TransferBRep::ShapeResult(transfer, item);
    if (shape.IsNull()) continue;
    if (m_rows.Bind(unplaced(shape), static_cast<int>(m_names.size())))
      m_names.push_back(utf8Name(*item->Name()));
  }
}

const OdString& StepNames::of(const TopoDS_Shape& shape) const {
  static const OdString kNone;
  const int* row = m_rows.Seek(unplaced(shape));
  return row == nullptr ? kNone : m_names[static_cast<std::size_t>(*row)];
}

}  // namespace od_occt
