// The common part of STEP import and export: lock, settings and a document without application.
#pragma once

#include <TDocStd_Document.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_LayerTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <mutex>

#include "platform/base/status.h"
#include "platform/base/string.h"

namespace od_occt {

/// The translators keep their settings in tables of the process: one session at a time, each of
/// which sets all that it relies on.
class StepSession {
 public:
  StepSession();

  Handle(TDocStd_Document) & document() { return m_document; }
  [[nodiscard]] const Handle(XCAFDoc_ShapeTool) & shapes() const { return m_shapes; }
  [[nodiscard]] const Handle(XCAFDoc_ColorTool) & colors() const { return m_colors; }
  [[nodiscard]] const Handle(XCAFDoc_LayerTool) & layers() const { return m_layers; }

 private:
  std::unique_lock<std::mutex> m_lock;
  Handle(TDocStd_Document) m_document;
  Handle(XCAFDoc_ShapeTool) m_shapes;
  Handle(XCAFDoc_ColorTool) m_colors;
  Handle(XCAFDoc_LayerTool) m_layers;
};

/// The name attribute of a label; empty when there is none.
OdString labelName(const TDF_Label& label);
/// An empty name sets nothing.
void setLabelName(const TDF_Label& label, const OdString& name);

/// A status that names the file.
OdStatus fileFailure(OdResult code, const OdString& path, const char* reason);

}  // namespace od_occt
