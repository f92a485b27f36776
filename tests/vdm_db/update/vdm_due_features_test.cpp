// The features that passes find by their index are those that a walk over all features finds.
#include <algorithm>
#include <functional>
#include <random>
#include <set>
#include <sstream>

#include "platform/cloning/id_mapping.h"
#include "tests/support/model_testing.h"
#include "tests/support/test_seed.h"
#include "vdm_db/features/vdm_db_feature_data.h"
#include "vdm_db/features/vdm_db_feature_manager.h"
#include "vdm_db/features/vdm_feature_impl.h"
#include "vdm_db/features/vdm_simple_feature_interface.h"
#include "vdm_db/references/vdm_dependencies_replacement_map.h"
#include "vdm_db/update/vdm_update_context.h"
#include "vdm_db/update/vdm_update_observer.h"

/// Stores the insert of an opening. What it does while it prepares is up to the test.
class DueFeature : public VdmFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(DueFeature)
  static std::function<void()> onPrepare;
  static bool required;
  OdDbObjectId insert;

  void subMapProperties(VdmProperties& bag) override {
    bag.mapProperty(L"Insert", &insert, OdDb::kSoftPointerRef);
  }
  bool prepareUpdateData(VdmFeatureUpdateData&, bool) override {
    if (onPrepare) onPrepare();
    return true;
  }
  bool isRequiredDependency(int, int) override { return required; }
};

/// Has changes when the test says so; nothing in the drawing tells.
class MoodyFeature : public DueFeature {
 public:
  VDM_DECLARE_FEATURE_MEMBERS(MoodyFeature)
  static bool mood;
  bool hasChanges(bool& needRecalculation) const override {
    needRecalculation = false;
    return mood;
  }
};

class ToldInterface : public VdmSimpleFeatureInterface {
 public:
  OD_RX_DECLARE_MEMBERS(ToldInterface)
  [[nodiscard]] OpeningFaces openingFaces() const override {
    const auto& own = static_cast<const DueFeature&>(*feature());
    return {own.insert, own.insert, {}};
  }
  bool storedInsert(const VdmFeature& feature, OdDbObjectId& insert) const override {
    insert = static_cast<const DueFeature&>(feature).insert;
    return true;
  }
};

/// It promises nothing about its insert: every pass has to ask it.
class UntoldInterface : public ToldInterface {
 public:
  OD_RX_DECLARE_MEMBERS(UntoldInterface)
  bool storedInsert(const VdmFeature&, OdDbObjectId&) const override { return false; }
};

class FlagReactorImpl : public VdmDbFeatureReactorImpl {
 public:
  FlagReactorImpl() { m_properties.mapProperty<OdLong>(L"flags", &flags); }
  OdLong flags = 0;
};

/// Bit 1: has changes; bit 2: after constraints.
class FlagReactor : public VdmDbFeatureReactor {
 public:
  OD_RX_DECLARE_MEMBERS(FlagReactor)
  FlagReactor() : VdmDbFeatureReactor(std::make_unique<FlagReactorImpl>()) {}
  [[nodiscard]] bool hasChanges() const override { return (flags() & 1) != 0; }
  [[nodiscard]] bool needConstraintsRecalculation() const override { return (flags() & 2) != 0; }
  [[nodiscard]] bool changesAreStored() const override { return true; }
  void setFlags(OdLong flags) { static_cast<FlagReactorImpl&>(implForWrite()).flags = flags; }

 private:
  [[nodiscard]] OdLong flags() const {
    return static_cast<const FlagReactorImpl&>(implForRead()).flags;
  }
};

std::function<void()> DueFeature::onPrepare;
bool DueFeature::required = false;
bool MoodyFeature::mood = false;
VDM_DEFINE_FEATURE_CLASS(DueFeature, VdmFeature, L"TestDueFeature")
VDM_DEFINE_FEATURE_CLASS(MoodyFeature, DueFeature, L"TestMoodyFeature")
OD_RX_DEFINE(ToldInterface, VdmSimpleFeatureInterface, L"TestToldInterface")
OD_RX_DEFINE(UntoldInterface, ToldInterface, L"TestUntoldInterface")
OD_RX_DEFINE_DB(FlagReactor, VdmDbFeatureReactor, L"TestFlagReactor", 33, 55, 0, L"TESTFLAGREACTOR",
                L"tests")

namespace {

struct ListingHost : VdmUpdateHost {
  OdDbObjectIdArray changed;
  bool keepsList = true;
  [[nodiscard]] bool hasChangedEntities() const override { return !changed.isEmpty(); }
  [[nodiscard]] bool concerns(const VdmFeature&, const OdDbObjectId& entity) const override {
    return changed.contains(entity);
  }
  [[nodiscard]] std::optional<std::size_t> numChangedEntities() const override {
    return keepsList ? std::optional<std::size_t>(changed.size()) : std::nullopt;
  }
  [[nodiscard]] OdDbObjectId changedEntity(std::size_t number) const override {
    return changed[static_cast<OdUInt32>(number)];
  }
};

struct Listener : VdmUpdateObserver {
  OdDbObjectIdArray taken;
  OdUInt32 numSkipped = 0;  ///< looked at
  OdUInt32 numPassedOver = 0;
  [[nodiscard]] bool hearsEachSkipped() const override { return false; }
  void featureTaken(const OdDbObjectId& id, VdmUpdateReason) override { taken.append(id); }
  void featureSkipped(const OdDbObjectId&) override { ++numSkipped; }
  void featuresPassedOver(OdUInt32 count) override { numPassedOver += count; }
};

using Map = VdmDependenciesReplacementMap;

// ---- The rules of docs/update-pass.md, feature by feature

bool wasMoved(const Map& map, const OdDbObjectId& id) {
  const auto* moved = map.findTransformedObject(id);
  return moved != nullptr && !moved->isMarked;
}

bool tellsChanges(const VdmFeature& feature, bool calculated) {
  bool recalculation = false;
  return feature.hasChanges(recalculation) || (recalculation && calculated);
}

bool isDue(const VdmFeature& feature, const VdmUpdateContext& context) {
  if (context.constraintsWereCalculated && tellsChanges(feature, true)) return true;
  const Map& map = *context.replacementMap;
  std::set<OdDbObjectId> entities;
  for (const OdDbObjectId& id : feature.getAllDependencies(/*filtered=*/false)) {
    if (map.contains(id) || map.containsClone(id)) return true;
    const VdmDbObjectDependencyPtr dependency = id.openAs<VdmDbObjectDependency>();
    if (dependency.isNull()) continue;
    entities.insert(dependency->getInsertId());
    if (wasMoved(map, dependency->getInsertId())) return true;
    for (const auto& element : dependency->compoundId().elements()) {
      if (!element.id.isNull() && context.host->concerns(feature, element.id)) return true;
    }
  }
  if (entities.size() != 1) return !context.isFollowUp;
  const auto active = VdmUpdateFeatureInterface::activeOf(&feature);
  return !active.isNull() && wasMoved(map, active->openingFaces().insertId());
}

class VdmDueFeaturesTest : public RegisteredClass<DueFeature>,
                           public RegisteredClass<MoodyFeature>,
                           public RegisteredClass<ToldInterface>,
                           public RegisteredClass<UntoldInterface>,
                           public RegisteredClass<FlagReactor>,
                           public ModelTest {
 protected:
  VdmDueFeaturesTest() {
    DueFeature::desc()->addX(VdmUpdateFeatureInterface::desc(), ToldInterface::createObject());
    MoodyFeature::desc()->addX(VdmUpdateFeatureInterface::desc(), UntoldInterface::createObject());
    MoodyFeature::mood = DueFeature::required = false;
    m_features = VdmDbFeatureManager::getInstance(m_modelSpace, /*create=*/true);
    for (int i = 0; i < 3; ++i) m_entities.append(addCarrier(m_modelSpace));
    const OdDbObjectId block = addBlock(m_drawing, L"part");
    m_inner = addCarrier(block);
    m_insert = addReference(m_modelSpace, block);
  }
  ~VdmDueFeaturesTest() override {
    DueFeature::onPrepare = nullptr;
    DueFeature::desc()->delX(VdmUpdateFeatureInterface::desc());
    MoodyFeature::desc()->delX(VdmUpdateFeatureInterface::desc());
  }

  [[nodiscard]] VdmDbFeatureManagerPtr manager(OdDb::OpenMode mode = OdDb::kForWrite) const {
    return open<VdmDbFeatureManager>(m_features, mode);
  }
  [[nodiscard]] OdDbObjectIdArray features() const { return manager(OdDb::kForRead)->featureIds(); }
  OdDbObjectId add(OdRxClass* cls, const std::vector<OdDbFullSubentPath>& paths) {
    const OdDbObjectId id = manager()->createFeatureData(cls, L"", false, false);
    refer(id, paths);
    return id;
  }
  // One reactor for each path.
  static void refer(const OdDbObjectId& feature, const std::vector<OdDbFullSubentPath>& paths) {
    OdArray<VdmFeatureGroupFaces> groups;
    for (const OdDbFullSubentPath& path : paths) {
      groups.append(VdmFeatureGroupFaces(1, {path}, static_cast<int>(groups.size())));
    }
    VdmFeature::open(feature, OdDb::kForWrite)->init(groups);
  }
  // What a walk takes from a place in the list on.
  void expectFrom(const OdDbObjectIdArray& ids, OdUInt32 place, OdDbObjectIdArray& expected) const {
    for (; place < ids.size(); ++place) {
      const VdmFeaturePtr feature = VdmFeature::open(ids[place]);
      if (!feature.isNull() && isDue(*feature, m_context)) expected.append(ids[place]);
    }
  }
  /// Runs a pass; `edit` happens while the first feature prepares. Empty when it took what a walk
  /// would.
  std::string pass(const std::function<void()>& edit = nullptr) {
    Listener listener;
    m_context.replacementMap = &m_map;
    m_context.host = &m_host;
    m_context.observer = &listener;
    const OdDbObjectIdArray ids = features();
    OdDbObjectIdArray expected;
    OdUInt32 numLiving = 0;
    bool isPassDue = !m_map.isEmpty() || m_host.hasChangedEntities();
    for (const OdDbObjectId& id : ids) {
      const VdmFeaturePtr feature = VdmFeature::open(id);
      if (feature.isNull()) continue;
      ++numLiving;
      isPassDue |= tellsChanges(*feature, m_context.constraintsWereCalculated);
    }
    if (isPassDue) expectFrom(ids, 0, expected);
    bool wasEdited = false;
    DueFeature::onPrepare = [&] {
      if (wasEdited || !edit) return;
      wasEdited = true;
      edit();
      const OdDbObjectId current = listener.taken.last();
      expected = {current};
      OdUInt32 place = 0;
      EXPECT_TRUE(ids.find(current, place));
      expectFrom(ids, place + 1, expected);
    };
    manager()->updateFeatures(m_context);
    DueFeature::onPrepare = nullptr;
    std::ostringstream found;
    if (listener.taken != expected) found << names(listener.taken) << "not " << names(expected);
    m_numLookedAt = listener.numSkipped + listener.taken.size();
    if (!wasEdited && isPassDue && m_numLookedAt + listener.numPassedOver != numLiving) {
      found << m_numLookedAt << " looked at, " << listener.numPassedOver << " passed over";
    }
    return found.str();
  }
  std::string names(const OdDbObjectIdArray& ids) const {
    std::ostringstream text;
    for (const OdDbObjectId& id : ids) text << '#' << std::hex << OdUInt64(id.getHandle()) << ' ';
    return text.str();
  }

  OdDbObjectId m_features, m_inner, m_insert;
  OdDbObjectIdArray m_entities;
  Map m_map;
  ListingHost m_host;
  VdmUpdateContext m_context;
  OdUInt32 m_numLookedAt = 0;  // in the last pass
};

TEST_F(VdmDueFeaturesTest, OnlyWhatTheInputLeadsToIsLookedAt) {
  for (int i = 0; i < 40; ++i) add(DueFeature::desc(), {face(m_entities[0], 1)});
  const OdDbObjectId other = add(DueFeature::desc(), {face(m_entities[1], 2)});
  m_map.addTransformedObject(m_entities[2], OdGeMatrix3d::kIdentity, false);
  EXPECT_EQ(pass(), "");
  EXPECT_EQ(m_numLookedAt, 0U);
  m_map.appendClone(VdmFeature::open(other)->getAllDependencies(/*filtered=*/false)[0]);
  EXPECT_EQ(pass(), "");
  EXPECT_EQ(m_numLookedAt, 1U);
  m_map.clear();
  m_host.changed.append(m_entities[0]);
  EXPECT_EQ(pass(), "");
  EXPECT_EQ(m_numLookedAt, 40U);
}

// The notes of that many changes are dropped before they are read.
TEST_F(VdmDueFeaturesTest, ManyChangesBetweenPassesLoseNone) {
  const OdDbObjectId feature = add(DueFeature::desc(), {face(m_entities[0], 1)});
  const OdDbObjectIdArray spare{addDependency(face(m_entities[2], 2)),
                                addDependency(face(m_entities[2], 3))};
  m_map.addTransformedObject(m_entities[1], OdGeMatrix3d::kIdentity, false);
  EXPECT_EQ(pass(), "");
  VdmCompoundObjectId moved;
  moved.setTopId(m_entities[1]);
  const auto move = [&moved](const OdDbObjectId& id) {
    edit<VdmDbObjectDependency>(id)->setCompoundId(moved);
  };
  m_drawing->disableUndoRecording(true);
  move(VdmFeature::open(feature)->getAllDependencies(/*filtered=*/false)[0]);
  for (OdUInt32 i = 0; i < 70000; ++i) move(spare[i % 2]);
  EXPECT_EQ(pass(), "");
  EXPECT_EQ(m_numLookedAt, 1U);
}

// Each exchange makes the other feature the one that depends on what changed.
TEST_F(VdmDueFeaturesTest, FeaturesAreLookedAtWhenTheirObjectsExchangeIds) {
  const auto dependency = [](const OdDbObjectId& id) {
    return VdmFeature::open(id)->getAllDependencies(/*filtered=*/false)[0];
  };
  const auto reactor = [](const OdDbObjectId& id) { return VdmFeature::open(id)->reactorIds()[0]; };
  const std::function<OdDbObjectId(const OdDbObjectId&)> exchanged[] = {
      dependency, reactor, [](const OdDbObjectId& id) { return id; }};
  m_host.changed.append(m_entities[0]);
  for (const auto& of : exchanged) {
    const OdDbObjectId a = add(DueFeature::desc(), {face(m_entities[0], 1)});
    const OdDbObjectId b = add(DueFeature::desc(), {face(m_entities[1], 2)});
    EXPECT_EQ(pass(), "");
    edit<OdDbObject>(of(a))->swapIdWith(of(b));
    EXPECT_EQ(pass(), "");
  }
}

/// Random edits of features and of everything that decides about their parts in passes.
class VdmDueFeaturesRandomTest : public VdmDueFeaturesTest {
 protected:
  OdUInt32 upTo(OdUInt32 count) {
    return std::uniform_int_distribution<OdUInt32>(0, count)(m_random);
  }
  bool chance(OdUInt32 percent) { return upTo(99) < percent; }
  OdDbObjectId anyOf(const OdDbObjectIdArray& ids) {
    return ids.isEmpty() ? OdDbObjectId() : ids[upTo(ids.size() - 1)];
  }
  OdDbObjectId anyFeature() { return anyOf(features()); }
  OdDbObjectId anyDependency() { return anyOf(chance(15) ? m_lost : listed()); }
  OdDbObjectId anyEntity() { return anyOf(m_entities); }
  OdDbFullSubentPath anyPath() {
    const OdGsMarker index = OdGsMarker{1} + upTo(2);
    if (chance(85)) return face(anyEntity(), index);
    return {OdDbObjectIdArray{m_insert, m_inner}, OdDbSubentId(OdDb::kFaceSubentType, index)};
  }
  OdDbObjectId anyReactor(OdRxClass* cls) {
    const VdmFeaturePtr feature = VdmFeature::open(anyFeature());
    OdDbObjectIdArray reactors;
    if (feature.isNull()) return {};
    for (const OdDbObjectId& id : feature->reactorIds()) {
      if (id.objectClass() == cls) reactors.append(id);
    }
    return anyOf(reactors);
  }
  template <class T>
  void editAny(const OdDbObjectId& id, const std::function<void(T&)>& edit) {
    const OdSmartPtr<T> object = id.openAs<T>(OdDb::kForWrite);
    if (!object.isNull()) edit(*object);
  }
  void eraseAny(const OdDbObjectId& id) {
    const OdDbObjectPtr object = id.openObject(OdDb::kForWrite);
    if (object.isNull()) return;
    m_lost.append(id);
    object->erase();
  }
  void referAnew(const OdDbObjectId& id) {
    if (VdmFeature::open(id).isNull()) return;
    std::vector<OdDbFullSubentPath> paths;
    for (OdUInt32 i = upTo(2); i > 0; --i) paths.push_back(anyPath());
    refer(id, paths);
  }

  void edit() {
    switch (upTo(15)) {
      case 0:
        return referAnew(manager()->createFeatureData(
            chance(70) ? DueFeature::desc() : MoodyFeature::desc(), L"", false, false));
      case 1:
        return eraseAny(anyFeature());
      case 2:
        return referAnew(anyFeature());
      case 3:
      case 4:
        return editAny<VdmDbObjectDependency>(
            anyDependency(), [this](auto& dependency) { dependency.setLinkObject(anyPath()); });
      case 5:
        return editAny<VdmDbObjectDependency>(anyDependency(), [this](auto& dependency) {
          VdmCompoundObjectId id;
          if (chance(80)) id.setTopId(anyEntity());
          dependency.setCompoundId(id);
        });
      case 6:
        return eraseAny(anyDependency());
      case 7: {
        const OdDbObjectPtr lost = anyOf(m_lost).openObject(OdDb::kForWrite, /*openErased=*/true);
        if (!lost.isNull()) lost->erase(false);
        return;
      }
      case 8:
        return editAny<DueFeature>(anyFeature(), [this](DueFeature& feature) {
          feature.getDbObject()->assertWriteEnabled();
          feature.insert = anyEntity();
        });
      case 9:
        return editAny<VdmFeature>(anyFeature(), [](VdmFeature& feature) {
          (void)feature.addReactor(FlagReactor::desc(), 0);
        });
      case 10:
        return editAny<FlagReactor>(anyReactor(FlagReactor::desc()), [this](FlagReactor& reactor) {
          reactor.setFlags(static_cast<OdLong>(chance(60) ? 0 : upTo(3)));
        });
      case 11:
        return editAny<VdmDbPersIdReactor>(
            anyReactor(VdmDbPersIdReactor::desc()), [this](VdmDbPersIdReactor& reactor) {
              chance(70) ? reactor.addPersIds({anyDependency()})
                         : reactor.removePersIds({anyOf(reactor.persIds())});
            });
      case 12:
        return eraseAny(anyReactor(chance(50) ? FlagReactor::desc() : VdmDbPersIdReactor::desc()));
      case 13: {
        const OdDbObjectId feature = anyFeature();
        const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
        if (!feature.isErased()) {
          (void)m_drawing->deepCloneObjects({feature}, m_features, *mapping);
        }
        return;
      }
      case 14:
        return manager()->doAudit();
      default:
        return eraseAny(anyEntity());
    }
  }
  void step() {
    const OdUInt32 kind = upTo(99);
    if (kind < 10) {
      for (OdUInt32 i = upTo(3); i > 0; --i) (void)m_drawing->undo();
    } else if (kind < 18) {
      for (OdUInt32 i = upTo(3); i > 0; --i) (void)m_drawing->redo();
    } else if (kind < 26) {
      EXPECT_TRUE(succeeded(m_drawing->save()));
      // With the manager the index stays in memory.
      const auto kept = chance(60) ? manager(OdDb::kForRead) : VdmDbFeatureManagerPtr();
      (void)m_drawing->pageOut(chance(70) ? 0 : 20000);
    } else if (kind < 27) {
      reopenAll();
    } else if (kind < 30) {
      MoodyFeature::mood = !MoodyFeature::mood;
    } else if (kind < 32) {
      DueFeature::required = !DueFeature::required;
    } else if (kind < 34) {
      const OdRxClass* protocol = VdmUpdateFeatureInterface::desc();
      if (DueFeature::desc()->delX(protocol).isNull()) {
        DueFeature::desc()->addX(protocol, chance(50) ? ToldInterface::createObject().get()
                                                      : UntoldInterface::createObject().get());
      }
    } else if (kind < 40) {
      m_drawing->startTransaction();
      for (OdUInt32 i = upTo(2); i > 0; --i) edit();
      (void)(chance(50) ? m_drawing->abortTransaction() : m_drawing->endTransaction());
    } else {
      if (chance(80)) m_drawing->startUndoRecord();
      edit();
    }
  }
  void reopenAll() {
    std::vector<OdDbObjectId*> ids{&m_features, &m_inner, &m_insert};
    for (OdUInt32 i = 0; i < m_entities.size(); ++i) ids.push_back(m_entities.asArrayPtr() + i);
    std::vector<OdDbHandle> handles;
    for (const OdDbObjectId* id : ids) handles.push_back(id->getHandle());
    m_lost.clear();
    reopen();
    for (std::size_t i = 0; i < ids.size(); ++i) *ids[i] = m_drawing->getOdDbObjectId(handles[i]);
    for (OdUInt32 i = 0; i < m_entities.size(); ++i) {
      if (m_entities[i].isNull()) m_entities.setAt(i, addCarrier(m_modelSpace));
    }
  }
  void chooseInput() {
    m_map.clear();
    m_host.changed.clear();
    if (chance(40)) m_map.addTransformedObject(anyEntity(), OdGeMatrix3d::kIdentity, chance(20));
    if (chance(10)) m_map.addTransformedObject(m_insert, OdGeMatrix3d::kIdentity, false);
    if (chance(5)) m_map.addTransformedObject({}, OdGeMatrix3d::kIdentity, false);
    if (chance(30)) m_map.append(anyDependency(), {anyDependency()});
    if (chance(20)) m_map.appendClone(anyDependency());
    if (chance(30)) m_map.appendModifiedEnt(anyEntity());
    if (chance(30)) m_host.changed.append(chance(20) ? m_inner : anyEntity());
    m_host.keepsList = chance(80);
    m_context.constraintsWereCalculated = chance(30);
    m_context.isFollowUp = chance(50);
  }

  std::mt19937 m_random;
  OdDbObjectIdArray m_lost;  // erased by an edit at some time
};

TEST_F(VdmDueFeaturesRandomTest, PassesTakeWhatAWalkWouldTake) {
  m_random.seed(freshSeed());
  reopenAll();
  for (int i = 0; i < 12; ++i) referAnew(add(DueFeature::desc(), {}));
  for (int round = 0; round < 3000; ++round) {
    if (round % 8 == 0) referAnew(add(DueFeature::desc(), {}));
    for (OdUInt32 i = upTo(2); i > 0; --i) step();
    chooseInput();
    // A feature may be open for write, and change, while passes run.
    const VdmFeaturePtr held =
        chance(10) ? VdmFeature::open(anyFeature(), OdDb::kForWrite) : VdmFeaturePtr();
    if (!held.isNull() && chance(50)) {
      EXPECT_EQ(pass(), "") << "round " << round;
    }
    if (!held.isNull()) referAnew(held->objectId());
    const bool editsWithin = chance(15);
    const std::string difference = pass(editsWithin ? [this] {
      edit();
      if (chance(30)) m_host.changed.append(anyEntity());
      VdmUpdateContext inner;
      inner.replacementMap = &m_map;
      if (chance(30)) manager()->updateFeatures(inner);
    } : std::function<void()>());
    ASSERT_EQ(difference, "") << "round " << round;
  }
}

}  // namespace
