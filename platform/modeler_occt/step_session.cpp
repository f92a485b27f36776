// The common part of STEP import and export: lock, settings and a document without application.
#include "platform/modeler_occt/step_session.h"

#include <Interface_Static.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <TDataStd_Name.hxx>
#include <XCAFDoc_DocumentTool.hxx>

#include "platform/modeler_occt/occt_convert.h"

namespace od_occt {
namespace {

std::mutex& sessionMutex() {
  static std::mutex mutex;
  return mutex;
}

struct Setting {
  const char* name;
  const char* value;
};

constexpr Setting kSettings[] = {
    {"xstep.cascade.unit", "MM"},
    {"write.step.unit", "MM"},
    {"write.step.schema", "AP214IS"},
};

struct Switch {
  const char* name;
  int value;
};

constexpr Switch kSwitches[] = {
    {"read.stepcaf.subshapes.name", 0},  // StepNames reads them without crashing
    {"write.stepcaf.subshapes.name", 1},
    {"read.step.product.mode", 1},
    {"write.step.assembly", 2},  // an assembly where the document has one
};

}  // namespace

StepSession::StepSession() : m_lock(sessionMutex()) {
  STEPCAFControl_Controller::Init();
  for (const Setting& row : kSettings) Interface_Static::SetCVal(row.name, row.value);
  for (const Switch& row : kSwitches) Interface_Static::SetIVal(row.name, row.value);
  // Labels of bodies must stay without a name: that is how import knows them from products.
  XCAFDoc_ShapeTool::SetAutoNaming(Standard_False);
  m_document = new TDocStd_Document("BinXCAF");
  m_shapes = XCAFDoc_DocumentTool::ShapeTool(m_document->Main());
  m_colors = XCAFDoc_DocumentTool::ColorTool(m_document->Main());
  m_layers = XCAFDoc_DocumentTool::LayerTool(m_document->Main());
}

OdString labelName(const TDF_Label& label) {
  Handle(TDataStd_Name) name;
  return label.FindAttribute(TDataStd_Name::GetID(), name) ? toString(name->Get()) : OdString();
}

void setLabelName(const TDF_Label& label, const OdString& name) {
  if (!name.isEmpty()) TDataStd_Name::Set(label, toOcct(name));
}

OdStatus fileFailure(OdResult code, const OdString& path, const char* reason) {
  OdString text;
  text.format(L"step file '%ls': %ls", path.c_str(), OdString(reason).c_str());
  return {code, text};
}

}  // namespace od_occt
