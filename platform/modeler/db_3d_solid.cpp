// OdDb3dSolid: a body in a drawing.
#include "platform/modeler/db_3d_solid.h"

#include <utility>

#include "platform/base/error.h"
#include "platform/db/audit_info.h"
#include "platform/db/read_faults.h"
#include "platform/filer/memory_filer.h"
#include "platform/modeler/solid_journal.h"

OD_RX_DEFINE_DB(OdDb3dSolid, OdDbEntity, L"OdDb3dSolid", 0, 0, 0, L"3DSOLID", OdString())

namespace {

constexpr OdUInt8 kVersion = 1;

OdStatus emptySolid(const char* operation) {
  return {eInvalidInput, OdString(operation) + L": the solid is empty"};
}

OdModelerSubent toSubent(const OdDbSubentId& id) {
  if (id.index() < 1 || id.index() > OdGsMarker{0xFFFFFFFF}) return {};
  return {static_cast<OdModelerSubentType>(id.type()), static_cast<OdUInt32>(id.index())};
}

OdUInt32 checkedFace(const OdModelerBody& body, OdGsMarker face) {
  if (face < 1 || face > OdGsMarker{body.numFaces()}) {
    throw OdError_InvalidIndex(face, body.numFaces());
  }
  return static_cast<OdUInt32>(face);
}

// Null for a filer whose records are bytes alone.
OdDbMemoryFiler* sharingFiler(OdDbDwgFiler* filer) {
  if (filer->filerType() != OdDbDwgFiler::kUndoFiler) return nullptr;
  auto* memory = dynamic_cast<OdDbMemoryFiler*>(filer);
  return memory != nullptr && memory->isSharing() ? memory : nullptr;
}

// A journal needs the history, also when the caller does not.
OdModelerHistory* wantedHistory(OdModelerHistory* asked, OdModelerHistory& own) {
  return asked == nullptr && OdSolidJournal::current() != nullptr ? &own : asked;
}

OdSolidChange changeWithHistory(OdSolidChangeKind kind, std::span<const OdModelerBodyPtr> tools,
                                const OdModelerHistory* history) {
  OdSolidChange change;
  if (OdSolidJournal::current() == nullptr) return change;
  change.kind = kind;
  change.tools.assign(tools.begin(), tools.end());
  change.history = std::make_shared<const OdModelerHistory>(*history);
  return change;
}

OdSolidChange movedBy(const OdGeMatrix3d& transform) {
  OdSolidChange change;
  change.kind = OdSolidChangeKind::kMoved;
  change.transform = transform;
  return change;
}

int& initCount() {
  static int count = 0;
  return count;
}

}  // namespace

void odModelerInitialize() {
  if (initCount()++ == 0) OdDb3dSolid::rxInit();
}

void odModelerUninitialize() {
  if (initCount() > 0 && --initCount() == 0) OdDb3dSolid::rxUninit();
}

OdDb3dSolid::OdDb3dSolid() = default;
OdDb3dSolid::~OdDb3dSolid() = default;

bool OdDb3dSolid::isNull() const {
  assertReadEnabled();
  return !m_body && m_bytes.isEmpty();
}

OdModelerBodyPtr OdDb3dSolid::body() const {
  OdModelerBodyPtr result;
  const OdStatus status = getBody(result);
  if (!status.ok()) throw OdError(status.code, status.text);
  return result;
}

OdStatus OdDb3dSolid::getBody(OdModelerBodyPtr& body) const {
  if (!isNull() && !m_body) {
    OdStatus status = odModeler().deserialise(m_bytes, m_body);
    if (!status.ok()) {
      status.text = OdString(L"solid ") + getDbHandle().ascii() + L": " + status.text;
      if (status.code != eNoModeler) oddbNoteReadFault(this, status.text);
      return status;
    }
  }
  body = m_body;
  return {};
}

void OdDb3dSolid::setBody(OdModelerBodyPtr body) { setBody(std::move(body), {}); }

void OdDb3dSolid::setBody(OdModelerBodyPtr body, OdSolidChange change) {
  assertReadEnabled();
  if (body == m_body && (body || m_bytes.isEmpty())) return;
  assertWriteEnabled();
  replaceBody(std::move(body), std::move(change));
  noteGraphicsModified();
}

void OdDb3dSolid::replaceBody(OdModelerBodyPtr body, OdSolidChange change) {
  if (OdSolidJournal* journal = OdSolidJournal::current()) {
    change.solid = objectId();
    // A body that cannot be read has no faces that could be followed.
    const OdStatus known = getBody(change.before);
    if (!known.ok()) change.before = nullptr;
    change.after = body;
    journal->note(std::move(change));
  }
  m_body = std::move(body);
  m_bytes.clear();
}

OdStatus OdDb3dSolid::adopt(OdStatus status, OdModelerBodyPtr body, OdSolidChange change) {
  if (status.ok()) setBody(std::move(body), std::move(change));
  return status;
}

template <class Make>
OdStatus OdDb3dSolid::create(const Make& make) {
  OdModelerBodyPtr made;
  OdStatus status = make(made);
  return adopt(std::move(status), std::move(made), {});
}

OdStatus OdDb3dSolid::createBox(double dx, double dy, double dz) {
  return create([&](OdModelerBodyPtr& made) { return odModeler().box(dx, dy, dz, made); });
}

OdStatus OdDb3dSolid::createCylinder(double radius, double height) {
  return create([&](OdModelerBodyPtr& made) { return odModeler().cylinder(radius, height, made); });
}

OdStatus OdDb3dSolid::createCone(double bottomRadius, double topRadius, double height) {
  return create([&](OdModelerBodyPtr& made) {
    return odModeler().cone(bottomRadius, topRadius, height, made);
  });
}

OdStatus OdDb3dSolid::createSphere(double radius) {
  return create([&](OdModelerBodyPtr& made) { return odModeler().sphere(radius, made); });
}

OdStatus OdDb3dSolid::createTorus(double majorRadius, double minorRadius) {
  return create(
      [&](OdModelerBodyPtr& made) { return odModeler().torus(majorRadius, minorRadius, made); });
}

OdStatus OdDb3dSolid::createWedge(double dx, double dy, double dz, double topDx) {
  return create([&](OdModelerBodyPtr& made) { return odModeler().wedge(dx, dy, dz, topDx, made); });
}

OdStatus OdDb3dSolid::extrude(const OdModelerProfile& profile, const OdGeVector3d& direction) {
  return create(
      [&](OdModelerBodyPtr& made) { return odModeler().extrude(profile, direction, made); });
}

OdStatus OdDb3dSolid::revolve(const OdModelerProfile& profile, const OdGePoint3d& axisPoint,
                              const OdGeVector3d& axis, double angle) {
  return create([&](OdModelerBodyPtr& made) {
    return odModeler().revolve(profile, axisPoint, axis, angle, made);
  });
}

OdStatus OdDb3dSolid::requireBody(const char* operation, OdModelerBodyPtr& body) const {
  OdStatus status = getBody(body);
  return status.ok() && !body ? emptySolid(operation) : status;
}

OdStatus OdDb3dSolid::booleanOper(OdModelerBooleanKind kind, const OdDb3dSolid& tool,
                                  OdModelerHistory* history) {
  OdModelerBodyPtr body;
  OdStatus status = tool.requireBody("boolean", body);
  return status.ok() ? booleanOper(kind, {&body, 1}, history) : status;
}

template <class Operation>
OdStatus OdDb3dSolid::operate(const char* name, OdSolidChangeKind kind,
                              std::span<const OdModelerBodyPtr> tools, OdModelerHistory* history,
                              const Operation& operation) {
  OdModelerBodyPtr old;
  OdModelerBodyPtr made;
  OdModelerHistory own;
  OdModelerHistory* const fates = wantedHistory(history, own);
  OdStatus status = requireBody(name, old);
  if (status.ok()) status = operation(old, made, fates);
  return adopt(std::move(status), std::move(made), changeWithHistory(kind, tools, fates));
}

OdStatus OdDb3dSolid::booleanOper(OdModelerBooleanKind kind,
                                  std::span<const OdModelerBodyPtr> tools,
                                  OdModelerHistory* history) {
  return operate("boolean", OdSolidChangeKind::kBoolean, tools, history,
                 [&](const OdModelerBodyPtr& old, OdModelerBodyPtr& made, OdModelerHistory* fates) {
                   return odModeler().boolean(kind, old, tools, made, fates);
                 });
}

OdStatus OdDb3dSolid::filletEdges(std::span<const OdUInt32> edges, double radius,
                                  OdModelerHistory* history) {
  return operate("fillet", OdSolidChangeKind::kBlend, {}, history,
                 [&](const OdModelerBodyPtr& old, OdModelerBodyPtr& made, OdModelerHistory* fates) {
                   return odModeler().fillet(old, edges, radius, made, fates);
                 });
}

OdStatus OdDb3dSolid::chamferEdges(std::span<const OdUInt32> edges, double distance,
                                   OdModelerHistory* history) {
  return operate("chamfer", OdSolidChangeKind::kBlend, {}, history,
                 [&](const OdModelerBodyPtr& old, OdModelerBodyPtr& made, OdModelerHistory* fates) {
                   return odModeler().chamfer(old, edges, distance, made, fates);
                 });
}

OdStatus OdDb3dSolid::removeFaces(std::span<const OdUInt32> faces, OdModelerHistory* history) {
  return operate("remove faces", OdSolidChangeKind::kBlend, {}, history,
                 [&](const OdModelerBodyPtr& old, OdModelerBodyPtr& made, OdModelerHistory* fates) {
                   return odModeler().removeFaces(old, faces, made, fates);
                 });
}

OdUInt32 OdDb3dSolid::numSubents(OdDb::SubentType type) const {
  const OdModelerBodyPtr held = body();
  return held ? held->numSubents(static_cast<OdModelerSubentType>(type)) : 0;
}

OdCmColor OdDb3dSolid::getFaceColor(OdGsMarker face) const {
  const OdModelerBodyPtr held = body();
  if (!held) throw OdError_InvalidIndex(face, 0);
  const OdModelerBodyAttributes& attributes = held->attributes();
  const auto own = attributes.faceColors.find(checkedFace(*held, face));
  if (own == attributes.faceColors.end()) return OdCmColor();
  return OdCmColor::fromRGB(own->second.red, own->second.green, own->second.blue);
}

void OdDb3dSolid::setFaceColor(OdGsMarker face, const OdCmColor& color) {
  const OdModelerBodyPtr held = body();
  if (!held) throw OdError_InvalidIndex(face, 0);
  const OdUInt32 index = checkedFace(*held, face);
  if (!color.isByColor() && !color.isByLayer()) {
    throw OdError(eInvalidInput, OdString(L"the colour of a face is by value or by layer"));
  }
  if (getFaceColor(face) == color) return;
  OdModelerBodyAttributes attributes = held->attributes();
  attributes.faceColors.erase(index);
  if (color.isByColor()) {
    attributes.faceColors.emplace(index, OdModelerColor{color.red(), color.green(), color.blue()});
  }
  setBody(held->withAttributes(std::move(attributes)), movedBy(OdGeMatrix3d::kIdentity));
}

OdDbEntityPtr OdDb3dSolid::subentPtr(const OdDbFullSubentPath& path) const {
  const OdModelerBodyPtr held = body();
  OdModelerBodyPtr part;
  if (!held || !held->subentBody(toSubent(path.subentId()), part).ok()) return {};
  OdDb3dSolidPtr copy = OdDb3dSolid::createObject();
  copy->setPropertiesFrom(this);
  copy->setBody(std::move(part));
  return copy;
}

OdResult OdDb3dSolid::getGsMarkersAtSubentPath(const OdDbFullSubentPath& path,
                                               OdArray<OdGsMarker>& markers) const {
  const OdModelerBodyPtr held = body();
  if (path.subentId() == OdDbSubentId()) {
    const OdUInt32 faces = held ? held->numFaces() : 0;
    for (OdUInt32 i = 1; i <= faces; ++i) {
      markers.append(odSubentToMarker({OdModelerSubentType::kFace, i}));
    }
    return eOk;
  }
  const OdModelerSubent subent = toSubent(path.subentId());
  if (!held || !held->hasSubent(subent)) return eInvalidInput;
  markers.append(odSubentToMarker(subent));
  return eOk;
}

OdResult OdDb3dSolid::getSubentPathsAtGsMarker(OdDb::SubentType type, OdGsMarker marker,
                                               OdDbFullSubentPathArray& paths,
                                               const OdDbObjectIdArray* insertStack) const {
  const OdModelerBodyPtr held = body();
  const OdModelerSubent subent = odSubentFromMarker(marker);
  const auto own = static_cast<OdDb::SubentType>(subent.type);
  if (!held || !held->hasSubent(subent)) return eInvalidInput;
  if (type != OdDb::kNullSubentType && type != own) return eInvalidInput;
  OdDbObjectIdArray ids;
  for (OdUInt32 i = insertStack == nullptr ? 0 : insertStack->size(); i > 0; --i) {
    ids.append((*insertStack)[i - 1]);
  }
  ids.append(objectId());
  paths.append(OdDbFullSubentPath(ids, OdDbSubentId(own, subent.index)));
  return eOk;
}

OdResult OdDb3dSolid::getGeomExtents(OdGeExtents3d& extents) const {
  const OdModelerBodyPtr held = body();
  if (!held) return eNotApplicable;
  const OdGeExtents3d box = held->extents();
  if (!box.isValidExtents()) return eNotApplicable;
  extents = box;
  return eOk;
}

OdResult OdDb3dSolid::getMassProp(OdModelerMassProperties& properties) const {
  const OdModelerBodyPtr held = body();
  if (!held) return eNotApplicable;
  properties = held->massProperties();
  return eOk;
}

OdResult OdDb3dSolid::subTransformBy(const OdGeMatrix3d& transform) {
  OdModelerBodyPtr held;
  OdModelerBodyPtr moved;
  if (const OdStatus status = getBody(held); !status.ok()) return status.code;
  if (!held) return eOk;
  const OdStatus status = held->transformed(transform, moved);
  if (!status.ok()) return status.code;
  replaceBody(std::move(moved), movedBy(transform));
  return eOk;
}

const OdBinaryData& OdDb3dSolid::storedBytes() const {
  if (m_bytes.isEmpty() && m_body) {
    const OdStatus status = m_body->serialise(m_bytes);
    if (!status.ok()) throw OdError(status.code, status.text);
  }
  return m_bytes;
}

// Fields:
//
//   version   uint8
//   count     int32    bytes that follow; 0 for an empty solid
//   body      bytes    platform/modeler/body_envelope.h
//
// Undo keeps the body itself, which never changes and is costly to turn into bytes:
//
//   version   uint8
//   shared    bool     true: the pointer of a body follows, and nothing else

void OdDb3dSolid::dwgOutFields(OdDbDwgFiler* filer) const {
  OdDbEntity::dwgOutFields(filer);
  filer->wrUInt8(kVersion);
  const OdDbDwgFiler::FilerType type = filer->filerType();
  // Filers that only collect ids need no bytes, which are costly to make.
  if (type == OdDbDwgFiler::kIdFiler || type == OdDbDwgFiler::kPurgeFiler) return;
  if (OdDbMemoryFiler* sharing = sharingFiler(filer)) {
    sharing->wrBool(m_body != nullptr);
    if (m_body) return sharing->wrShared(m_body);
  }
  const OdBinaryData& bytes = storedBytes();
  filer->wrInt32(static_cast<OdInt32>(bytes.size()));
  if (!bytes.isEmpty()) filer->wrBytes(bytes.asArrayPtr(), bytes.size());
}

OdResult OdDb3dSolid::dwgInFields(OdDbDwgFiler* filer) {
  const OdResult result = OdDbEntity::dwgInFields(filer);
  if (result != eOk) return result;
  if (filer->rdUInt8() != kVersion) return eUnsupportedVersion;
  if (OdDbMemoryFiler* sharing = sharingFiler(filer); sharing != nullptr && sharing->rdBool()) {
    m_body = std::static_pointer_cast<const OdModelerBody>(sharing->rdShared());
    m_bytes.clear();
    return eOk;
  }
  OdBinaryData bytes;
  bytes.resize(filer->rdCount());
  if (!bytes.isEmpty()) filer->rdBytes(bytes.asArrayPtr(), bytes.size());
  // The bytes that the present body was read from come back: it need not be read again.
  if (m_body && !bytes.isEmpty() && bytes == m_bytes) return eOk;
  m_body.reset();
  m_bytes = std::move(bytes);
  return eOk;
}

void OdDb3dSolid::audit(OdDbAuditInfo* info) {
  OdDbEntity::audit(info);
  OdModelerBodyPtr held;
  OdStatus status = getBody(held);
  if (status.ok() && held) status = held->check();
  if (status.ok()) return;
  // The bytes are kept: a body that this modeller cannot read may be read by a later one.
  info->printFinding({L"body-unsound", getDbHandle(),
                      isA()->name() + L"(" + getDbHandle().ascii() + L")", status.text,
                      L"a sound body", L""});
}

std::size_t OdDb3dSolid::approximateSize() const {
  return OdDbEntity::approximateSize() + sizeof(*this) - sizeof(OdDbEntity) + m_bytes.size() +
         (m_body ? m_body->approximateSize() + m_body->displayMeshSize() : 0);
}
