// `vdm clone`: a copy of a block or an entity, in its drawing or in another one.
#include "host/cli/clone_command.h"

#include "host/cli/drawing_facts.h"
#include "host/cli/find_object.h"
#include "host/cli/new_name.h"
#include "host/cli/opened_drawing.h"
#include "host/cli/report.h"
#include "platform/base/error.h"
#include "platform/cloning/id_mapping.h"
#include "platform/db/block_table.h"
#include "platform/db/entity.h"
#include "platform/db/locked_layers.h"
#include "platform/db/units.h"
#include "vdm_db/features/vdm_clone_with_features.h"
#include "vdm_db/features/vdm_db_feature_data.h"

namespace cli {

namespace {

using Access = DrawingSession::Access;

/// The drawings of one operation; both are the same when nothing else was named.
struct Drawings {
  OdDbDatabasePtr source;
  OdDbDatabasePtr target;

  [[nodiscard]] bool isOne() const { return source.get() == target.get(); }
};

/// What was made, and what the command has to say about it.
struct Outcome {
  OdDbObjectId clone;
  std::string what;  ///< "block" or the class of the entity
  std::string name;  ///< of a block
  std::uint64_t objects = 0;
  std::uint64_t features = 0;
  std::vector<std::string> handles;  ///< "<source> -> <clone> <class>", in the order of cloning
  std::vector<std::string> notes;
};

OdDbBlockTableRecordPtr openBlock(const OdDbObjectId& id, OdDb::OpenMode mode) {
  return id.safeOpenAs<OdDbBlockTableRecord>(mode);
}

OdDbObjectId blockNamed(const OdDbDatabase& drawing, const OdString& name) {
  const auto table = drawing.getBlockTableId().safeOpenAs<OdDbBlockTable>();
  return table->getAt(name);
}

// Checks.

void checkName(const OdDbDatabase& target, const std::string& name) {
  if (name.empty()) return;
  requireName(name);
  const OdString text(name);
  if (!odDbIsValidRecordName(text) || name.front() == '*') {
    throw CliError("name " + quote(name) + " is no name for a block", kWrongUsage);
  }
  if (const OdDbObjectId present = blockNamed(target, text); !present.isNull()) {
    throw CliError("block " + quote(name) + " exists in " + quote(target.getFilename().utf8()) +
                   " already, as " + str(present.getHandle()));
  }
}

void checkSource(const OdDbObject& object, const CloneOptions& options) {
  const std::string what =
      "object " + str(object.getDbHandle()) + " of class " + classNameOf(object);
  if (object.isKindOf(OdDbBlockTableRecord::desc())) {
    const auto& block = static_cast<const OdDbBlockTableRecord&>(object);
    if (block.isLayout()) {
      throw CliError("block " + quote(block.getName().utf8()) +
                     " is a layout and cannot be cloned");
    }
    return;
  }
  if (!object.isKindOf(OdDbEntity::desc())) {
    throw CliError(what + " is neither a block nor an entity");
  }
  if (!options.name.empty()) {
    throw CliError(what + " is an entity and cannot be named " + quote(options.name), kWrongUsage);
  }
}

/// A block of another drawing whose name is taken there needs a new one.
void checkTaken(const Drawings& drawings, const OdDbBlockTableRecord& block,
                const std::string& name) {
  if (drawings.isOne() || !name.empty() || block.isAnonymous()) return;
  const OdDbObjectId present = blockNamed(*drawings.target, block.getName());
  if (present.isNull()) return;
  throw CliError("block " + quote(block.getName().utf8()) + " exists in " +
                 quote(drawings.target->getFilename().utf8()) + " already, as " +
                 str(present.getHandle()) + ", give another name with --name");
}

// Cloning.

/// "<name>~2", or the next number that no block has.
OdString freeName(const OdDbDatabase& drawing, const OdString& name) {
  OdString free;
  unsigned number = 2;
  do free.format(L"%ls~%u", name.c_str(), number++);
  while (!blockNamed(drawing, free).isNull());
  return free;
}

/// Moves a block of the target out of the way of a clone that has its name for a moment.
class NameAside {
 public:
  NameAside(const Drawings& drawings, const OdString& name) : m_name(name) {
    if (!drawings.isOne()) m_block = blockNamed(*drawings.target, name);
    if (m_block.isNull()) return;
    openBlock(m_block, OdDb::kForWrite)->setName(freeName(*drawings.target, name));
  }
  void restore() {
    if (!m_block.isNull()) openBlock(m_block, OdDb::kForWrite)->setName(m_name);
  }

 private:
  OdString m_name;
  OdDbObjectId m_block;
};

void cloneInto(const Drawings& drawings, const OdDbObjectId& id, const OdDbObjectId& owner,
               OdDbIdMapping& mapping) {
  const OdDbObjectIdArray ids{id};
  const OdResult result =
      drawings.isOne() ? drawings.source->deepCloneObjects(ids, owner, mapping)
                       : drawings.source->wblockCloneObjects(ids, owner, mapping, OdDb::kDrcIgnore);
  if (result != eOk) {
    throw CliError("object " + str(id.getHandle()) + " cannot be cloned: " + odResultText(result));
  }
}

OdDbObjectId cloneOf(const OdDbObjectId& id, const OdDbIdMapping& mapping) {
  OdDbIdPair pair(id);
  if (!mapping.compute(pair) || !pair.isCloned()) {
    throw CliError("object " + str(id.getHandle()) + " was not cloned");
  }
  return pair.value();
}

void cloneBlock(const Drawings& drawings, const OdDbObjectId& id, const CloneOptions& options,
                OdDbIdMapping& mapping, Outcome& outcome) {
  OdString sourceName;
  {
    const OdDbBlockTableRecordPtr block = openBlock(id, OdDb::kForRead);
    checkTaken(drawings, *block, options.name);
    sourceName = block->getName();
  }
  NameAside aside(drawings, sourceName);
  cloneInto(drawings, id, drawings.target->getBlockTableId(), mapping);
  outcome.clone = cloneOf(id, mapping);
  const OdDbBlockTableRecordPtr clone = openBlock(outcome.clone, OdDb::kForWrite);
  if (!options.name.empty()) {
    clone->setName(OdString(options.name));
  } else if (drawings.isOne() && !clone->isAnonymous()) {
    clone->setName(freeName(*drawings.target, sourceName));
  }
  aside.restore();
  // Inserts know by it that lengths inside are not the drawing's own.
  const OdDb::UnitsValue units = drawings.source->getINSUNITS();
  if (units != drawings.target->getINSUNITS() &&
      clone->blockInsertUnits() == OdDb::kUnitsUndefined) {
    clone->setBlockInsertUnits(units);
  }
  outcome.what = "block";
  outcome.name = str(clone->getName());
}

void convertLengths(const OdDbObjectId& source, const OdDbObjectId& clone, Outcome& outcome) {
  const OdDb::UnitsValue from = lengthUnitsOf(*source.safeOpenAs<OdDbEntity>());
  const OdDb::UnitsValue to = lengthUnitsOf(*clone.safeOpenAs<OdDbEntity>());
  const double factor = oddbGetUnitsConversion(from, to);
  if (factor == 1.0) return;
  const OdDbLockedLayerAccess access(clone.database());
  const auto entity = clone.safeOpenAs<OdDbEntity>(OdDb::kForWrite);
  const OdResult result = entity->transformBy(OdGeMatrix3d::scaling(factor));
  if (result != eOk) {
    throw CliError("entity " + str(clone.getHandle()) + " cannot be scaled by " +
                   roundedNumber(factor) + ": " + odResultText(result));
  }
  outcome.notes.push_back("scaled by " + roundedNumber(factor) + ", from " +
                          str(oddbUnitsName(from)) + " to " + str(oddbUnitsName(to)));
}

/// Components know where they cut in lengths of their drawing.
void checkUnits(const Drawings& drawings, const OdDbObjectId& id) {
  const OdDb::UnitsValue from = lengthUnitsOf(*id.safeOpenAs<OdDbEntity>());
  const OdDb::UnitsValue to = drawings.target->getINSUNITS();
  if (drawings.isOne() || oddbGetUnitsConversion(from, to) == 1.0) return;
  throw CliError("object " + str(id.getHandle()) + " is in " + str(oddbUnitsName(from)) +
                 " and cannot take its features into a drawing in " + str(oddbUnitsName(to)));
}

void cloneFeatured(const Drawings& drawings, const OdDbObjectId& id, const OdDbObjectId& owner,
                   OdDbIdMapping& mapping) {
  checkUnits(drawings, id);
  if (const OdResult result = vdmu::cloneWithFeatures({id}, owner, mapping); result != eOk) {
    throw CliError("object " + str(id.getHandle()) +
                   " cannot be cloned with its features: " + odResultText(result));
  }
}

void cloneEntity(const Drawings& drawings, const OdDbObjectId& id, const CloneOptions& options,
                 OdDbIdMapping& mapping, Outcome& outcome) {
  const OdDbObjectId owner = drawings.isOne() ? id.ownerId() : drawings.target->getModelSpaceId();
  if (options.withFeatures) {
    cloneFeatured(drawings, id, owner, mapping);
  } else {
    cloneInto(drawings, id, owner, mapping);
  }
  outcome.clone = cloneOf(id, mapping);
  convertLengths(id, outcome.clone, outcome);
  outcome.what = classNameOf(*outcome.clone.safeOpenObject());
}

/// What was cloned, and which blocks of the target replace those of the source.
void describeMapping(OdDbIdMapping& mapping, const Drawings& drawings, Outcome& outcome) {
  for (const OdDbIdMappingIterPtr it = mapping.newIterator(); !it->done(); it->next()) {
    OdDbIdPair pair;
    if (!it->getMap(pair) || pair.value().isNull()) continue;
    const OdDbObjectPtr value = pair.value().openObject();
    if (value.isNull()) continue;
    if (pair.isCloned()) {
      ++outcome.objects;
      if (value->isKindOf(VdmDbFeatureData::desc())) ++outcome.features;
      outcome.handles.push_back(str(pair.key().getHandle()) + " -> " +
                                str(pair.value().getHandle()) + " " + classNameOf(*value));
    } else if (const auto block = OdDbBlockTableRecord::cast(value);
               !drawings.isOne() && !block.isNull() && !block->isLayout()) {
      outcome.notes.push_back("block " + quote(block->getName().utf8()) +
                              " is there already and is used as " + str(pair.value().getHandle()));
    }
  }
}

// The command.

Drawings openDrawings(DrawingSession& runtime, const CloneOptions& options) {
  checkInput(options.input);
  Drawings drawings;
  if (options.into.empty() || isSameFile(options.input, options.into)) {
    drawings.source = runtime.open(options.input, Access::kWrite);
    drawings.target = drawings.source;
    return drawings;
  }
  checkInput(options.into);
  drawings.source = runtime.open(options.input, Access::kRead);
  drawings.target = runtime.open(options.into, Access::kWrite);
  return drawings;
}

Outcome cloneObject(const Drawings& drawings, const CloneOptions& options) {
  OdDbObjectId id;
  bool isBlock = false;
  {
    const OdDbObjectPtr object = openByHandle(*drawings.source, options.handle, OdDb::kForRead);
    checkSource(*object, options);
    checkName(*drawings.target, options.name);
    id = object->objectId();
    isBlock = object->isKindOf(OdDbBlockTableRecord::desc());
  }
  Outcome outcome;
  const OdDbIdMappingPtr mapping = OdDbIdMapping::createObject(OdDb::kDcObjects);
  if (isBlock) {
    cloneBlock(drawings, id, options, *mapping, outcome);
  } else {
    cloneEntity(drawings, id, options, *mapping, outcome);
  }
  describeMapping(*mapping, drawings, outcome);
  return outcome;
}

}  // namespace

int runClone(const SessionSettings& settings, const CloneOptions& options) {
  std::optional<OdNameClaim> claim;
  if (options.output) claim.emplace(claimOutput(*options.output, {options.input, options.into}));
  DrawingSession runtime(settings);
  const Drawings drawings = openDrawings(runtime, options);
  const std::string file =
      options.output ? options.output->path : str(drawings.target->getFilename());
  Outcome outcome = withProgress("cloning from " + options.input, [&] {
    Outcome made = cloneObject(drawings, options);
    if (options.output) {
      saveDrawingAs(*drawings.target, file);
    } else {
      saveDrawing(*drawings.target);
    }
    return made;
  });
  const std::string handle = str(outcome.clone.getHandle());
  Report("cloned " + outcome.what + " " + options.handle + " as " + handle +
         (outcome.name.empty() ? "" : " '" + outcome.name + "'") + " into " + file)
      .add("file", file)
      .add("handle", handle)
      .add("name", outcome.name)
      .add("objects", outcome.objects)
      .add("features", outcome.features)
      .addLines("handles", std::move(outcome.handles))
      .addLines("notes", std::move(outcome.notes))
      .print(settings.json);
  return kDone;
}

}  // namespace cli
