// OdGiExtentsDraw: measures what a drawable draws.
#include "platform/gi/extents_draw.h"

#include "platform/base/error.h"
#include "platform/gi/drawable.h"

OdGiContext* OdGiExtentsDraw::context() const { return const_cast<OdGiExtentsDraw*>(this); }

OdGiWorldGeometry& OdGiExtentsDraw::geometry() const { return const_cast<OdGiExtentsDraw&>(*this); }

void OdGiExtentsDraw::pushModelTransform(const OdGeMatrix3d& toOuter) {
  m_transforms.push_back(getModelToWorldTransform() * toOuter);
}

void OdGiExtentsDraw::popModelTransform() {
  if (m_transforms.empty()) throw OdError(eInvalidInput, OdString("no transform was pushed"));
  m_transforms.pop_back();
}

OdGeMatrix3d OdGiExtentsDraw::getModelToWorldTransform() const {
  return m_transforms.empty() ? OdGeMatrix3d() : m_transforms.back();
}

void OdGiExtentsDraw::add(std::span<const OdGePoint3d> points) {
  for (const OdGePoint3d& point : points) {
    m_box.addPoint(m_transforms.empty() ? point : m_transforms.back() * point);
  }
}

void OdGiExtentsDraw::draw(const OdGiDrawable* drawable) {
  if (drawable == nullptr) return;
  const OdGiPlainTraits::Values outer = m_traits.values();
  if (drawable->setAttributes(&m_traits)) drawable->worldDraw(this);
  m_traits.setValues(outer);
}
