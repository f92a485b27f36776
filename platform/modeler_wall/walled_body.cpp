#include "platform/modeler_wall/walled_body.h"

#include <utility>

#include "platform/base/error.h"
#include "platform/modeler_wall/wall_link.h"

namespace od_wall {

WalledBody::WalledBody(OdModelerBodyPtr inner, std::weak_ptr<WallLink> link)
    : m_inner(std::move(inner)), m_link(std::move(link)) {}

OdModelerBodyPtr WalledBody::wrap(const OdModelerBodyPtr& body) const {
  return std::make_shared<const WalledBody>(body, m_link);
}

OdModelerMassProperties WalledBody::massProperties() const {
  const std::shared_ptr<WallLink> link = m_link.lock();
  if (!link) return m_inner->massProperties();
  OdModelerMassProperties mass;
  const OdStatus status = link->ask({Operation::kMassProperties, {m_inner}}, {},
                                    [&mass](MessageReader& answer, BodyNumber) { answer(mass); });
  if (!status.ok()) throw OdError(status.code, status.text);
  return mass;
}

OdStatus WalledBody::check() const {
  const std::shared_ptr<WallLink> link = m_link.lock();
  if (!link) return m_inner->check();
  return link->ask({Operation::kCheck, {m_inner}}, {}, [](MessageReader&, BodyNumber) {});
}

OdStatus WalledBody::tessellate(const OdModelerMeshOptions& options, OdModelerMesh& mesh) const {
  const std::shared_ptr<WallLink> link = m_link.lock();
  if (!link) return m_inner->tessellate(options, mesh);
  MessageWriter arguments;
  arguments(options);
  return link->ask({Operation::kTessellate, {m_inner}}, arguments,
                   [this, &mesh](MessageReader& answer, BodyNumber) {
                     auto made = answer.get<OdModelerMesh>();
                     if (made.faces.size() != numFaces() || made.edges.size() != numEdges()) {
                       throw OdError(eCorruptData, L"a mesh of another body");
                     }
                     mesh = std::move(made);
                   });
}

OdStatus WalledBody::transformed(const OdGeMatrix3d& matrix, OdModelerBodyPtr& result) const {
  OdModelerBodyPtr moved;
  OdStatus status = m_inner->transformed(matrix, moved);
  if (status.ok()) result = wrap(moved);
  return status;
}

OdStatus WalledBody::subentBody(OdModelerSubent subent, OdModelerBodyPtr& result) const {
  OdModelerBodyPtr part;
  OdStatus status = m_inner->subentBody(subent, part);
  if (status.ok()) result = wrap(part);
  return status;
}

std::vector<OdModelerBodyPtr> WalledBody::solids() const {
  std::vector<OdModelerBodyPtr> solids = m_inner->solids();
  for (OdModelerBodyPtr& solid : solids) solid = wrap(solid);
  return solids;
}

OdModelerBodyPtr WalledBody::withAttributes(OdModelerBodyAttributes attributes) const {
  return wrap(m_inner->withAttributes(std::move(attributes)));
}

}  // namespace od_wall
