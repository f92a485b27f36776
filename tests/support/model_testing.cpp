// Drawings with the module's classes.
#include "tests/support/model_testing.h"

#include "tests/support/dump_drawing.h"

void ManagerHost::findExisting(VdmDbPersIdManager*, const OdDbFullSubentPathArray& paths,
                               OdDbObjectIdArray& ids) {
  calls.append(L"find");
  for (const OdDbFullSubentPath& path : paths) {
    const VdmDbObjectPtr object = VdmDbObject::openVdmDbObject(path.objectIds()[0]);
    ids.append(object.isNull() ? OdDbObjectId::kNull : object->getPersIdDependency(path));
  }
}

void ManagerHost::updateDependency(VdmDbPersIdManager*, const OdDbObjectId& dependency,
                                   const OdDbFullSubentPath& path) {
  calls.append(L"update");
  dependency.safeOpenAs<VdmDbObjectDependency>(OdDb::kForWrite)->setLinkObject(path);
}

void ManagerHost::createDependencies(OdDbObjectIdArray& newIds, VdmDbPersIdManager* manager,
                                     const OdDbFullSubentPathArray& paths, OdDbUserIO*,
                                     OdDbObjectIdArray& existing) {
  calls.append(L"create");
  for (OdUInt32 i = 0; i < paths.size(); ++i) {
    if (!existing[i].isNull()) continue;
    const VdmDbObjectDependencyPtr dependency = VdmDbObjectDependency::createObject();
    dependency->setLinkObject(paths[i]);
    existing[i] = manager->database()->addOdDbObject(dependency, manager->objectId());
    newIds.append(existing[i]);
  }
}

ModelTest::ModelTest() {
  m_managerHost.attach(new ManagerHost);
  m_objectHost.attach(new ObjectHost);
  VdmDbPersIdManager::desc()->addX(VdmDbPersIdManagerPE::desc(), m_managerHost);
  VdmDbObject::desc()->addX(VdmDbObjectPE::desc(), m_objectHost);
  m_manager = VdmDbPersIdManager::getInstance(m_modelSpace, /*create=*/true);
  m_constraints = VdmDbConstraintManager::getInstance(m_modelSpace, /*create=*/true);
  m_carrier = addCarrier(m_modelSpace);
  m_other = addCarrier(m_modelSpace);
}

ModelTest::~ModelTest() {
  VdmDbPersIdManager::desc()->delX(VdmDbPersIdManagerPE::desc());
  VdmDbObject::desc()->delX(VdmDbObjectPE::desc());
}

OdDbObjectId ModelTest::addDependency(const OdDbFullSubentPath& path) {
  return edit<VdmDbPersIdManager>(m_manager)->append({path}, nullptr)[0];
}

OdDbObjectId ModelTest::watch(const OdDbObjectIdArray& ids) {
  const VdmDbPersIdReactorPtr reactor = VdmDbPersIdReactor::createObject();
  const OdDbObjectId id = m_drawing->addOdDbObject(reactor, m_modelSpace);
  reactor->addPersIds(ids);
  return id;
}

VdmDbObjectPtr ModelTest::modelObject(OdDbObjectId entity, OdDb::OpenMode mode) const {
  return open<VdmDbObject>(VdmDbObject::getInstance(entity, m_constraints), mode);
}

std::string ModelTest::wholeState() const { return dumpDrawing(m_drawing); }

void ModelTest::reopen() {
  OdDbObjectId* const ids[] = {&m_manager, &m_constraints, &m_carrier, &m_other, &m_modelSpace};
  std::vector<OdDbHandle> handles;
  for (const OdDbObjectId* id : ids) handles.push_back(id->getHandle());
  saveAs(m_drawing, path("model.vdm"));
  m_drawing = nullptr;
  m_drawing = read("model.vdm");
  for (std::size_t i = 0; i < std::size(ids); ++i) {
    *ids[i] = m_drawing->getOdDbObjectId(handles[i]);
  }
}
