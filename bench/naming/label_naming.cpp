// Open CASCADE's own naming: labels with named shapes. Recorded is what a user of it can record:
// the faces of the part as primitives, and for each edit, as one function, what each face became,
// composed over its operations, a reopened feature's faces included, and the faces that are new.
// Edges and vertices are named by the framework from their faces, as it is meant to be used. A part
// that was replaced without a history is recorded as a modification of the whole.
#include "bench/naming/label_naming.h"

#include <Standard_Failure.hxx>
#include <TDF_Data.hxx>
#include <TDF_Label.hxx>
#include <TDF_LabelMap.hxx>
#include <TDF_TagSource.hxx>
#include <TNaming_Builder.hxx>
#include <TNaming_NamedShape.hxx>
#include <TNaming_Selector.hxx>
#include <TNaming_Tool.hxx>
#include <TopExp_Explorer.hxx>
#include <algorithm>
#include <set>

#include "bench/naming/fates.h"
#include "bench/naming/shapes.h"
#include "platform/modeler_occt/occt_bridge.h"

namespace naming_bench {
namespace {

constexpr OdModelerSubentType kFace = OdModelerSubentType::kFace;

}  // namespace

LabelNaming::LabelNaming() : m_data(new TDF_Data) {}
LabelNaming::~LabelNaming() = default;

void LabelNaming::begin(const OdModelerBodyPtr& body) {
  m_body = body;
  const TDF_Label part = TDF_TagSource::NewChild(m_data->Root());
  TNaming_Builder(part).Generated(odOcctShape(*body));
  m_valid.Add(part);
  for (OdUInt32 i = 1; i <= body->numFaces(); ++i) {
    const TDF_Label label = TDF_TagSource::NewChild(part);
    TNaming_Builder(label).Generated(shapeOf(*body, {kFace, i}));
    m_valid.Add(label);
  }
}

void LabelNaming::select(std::span<const OdModelerSubent> references) {
  const TDF_Label selections = TDF_TagSource::NewChild(m_data->Root());
  for (const OdModelerSubent reference : references) {
    const TDF_Label label = TDF_TagSource::NewChild(selections);
    bool done = false;
    try {
      const TNaming_Selector selector(label);
      done = selector.Select(shapeOf(*m_body, reference), odOcctShape(*m_body));
    } catch (const Standard_Failure&) {
      done = false;
    }
    m_selections.push_back(done ? label : TDF_Label());
  }
}

void LabelNaming::edited(const EditTrace& edit) {
  const TDF_Label function = TDF_TagSource::NewChild(m_data->Root());
  TNaming_Builder(function).Modify(odOcctShape(*edit.before), odOcctShape(*edit.after));
  m_valid.Add(function);
  m_body = edit.after;
  const std::vector<std::vector<OdUInt32>> images = faceImages(edit);
  if (images.empty()) return;
  const TDF_Label modified = TDF_TagSource::NewChild(function);
  const TDF_Label removed = TDF_TagSource::NewChild(function);
  TNaming_Builder changes(modified);
  TNaming_Builder ends(removed);
  for (std::size_t i = 0; i < images.size(); ++i) {
    const TopoDS_Shape old = shapeOf(*edit.before, {kFace, static_cast<OdUInt32>(i + 1)});
    if (images[i].empty()) ends.Delete(old);
    for (const OdUInt32 image : images[i]) {
      const TopoDS_Shape now = shapeOf(*edit.after, {kFace, image});
      if (!now.IsSame(old)) changes.Modify(old, now);
    }
  }
  m_valid.Add(modified);
  m_valid.Add(removed);
  recordNew(function, images);
}

void LabelNaming::recordNew(const TDF_Label& function,
                            const std::vector<std::vector<OdUInt32>>& images) {
  std::vector<bool> known(m_body->numFaces() + 1, false);
  for (const std::vector<OdUInt32>& faces : images) {
    for (const OdUInt32 face : faces) known[face] = true;
  }
  for (OdUInt32 i = 1; i <= m_body->numFaces(); ++i) {
    if (known[i]) continue;
    const TDF_Label label = TDF_TagSource::NewChild(function);
    TNaming_Builder(label).Generated(shapeOf(*m_body, {kFace, i}));
    m_valid.Add(label);
  }
}

void LabelNaming::solve(std::size_t reference, std::vector<OdModelerSubent>& found) {
  found.clear();
  const TDF_Label& label = m_selections[reference];
  if (label.IsNull()) return;
  try {
    const TNaming_Selector selector(label);
    if (!selector.Solve(m_valid)) return;
    const TopoDS_Shape shape = TNaming_Tool::GetShape(selector.NamedShape());
    if (shape.IsNull()) return;
    std::set<OdModelerSubent> named;
    for (const TopAbs_ShapeEnum type : {TopAbs_FACE, TopAbs_EDGE, TopAbs_VERTEX}) {
      if (shape.ShapeType() != TopAbs_COMPOUND && shape.ShapeType() != type) continue;
      for (TopExp_Explorer it(shape, type); it.More(); it.Next()) {
        const OdModelerSubent subent = subentOf(*m_body, it.Current());
        if (subent.index != 0) named.insert(subent);
      }
      if (!named.empty()) break;
    }
    found.assign(named.begin(), named.end());
  } catch (const Standard_Failure&) {
    found.clear();
  }
}

}  // namespace naming_bench
