// Dimensions of built-in components by name, and giving a component others.
#include "host/modeling/component_sizes.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "host/modeling/component_feature.h"
#include "host/modeling/component_query.h"
#include "host/modeling/stored_sizes.h"
#include "platform/db/block_table_record.h"
#include "platform/db/database.h"
#include "platform/entities/block_reference.h"
#include "platform/modeler/db_3d_solid.h"
#include "vdm_db/features/vdm_update_feature_interface.h"

namespace vdm_host {
namespace {

/// Where a size is in the form of a shape; a null pointer means the depth, which may be missing.
struct SizeRow {
  ToolShape shape;
  const wchar_t* name;
  const wchar_t* words;  ///< in messages
  double ToolForm::*value;
};
constexpr SizeRow kSizes[] = {
    {ToolShape::kHole, L"Diameter", L"the diameter", &ToolForm::width},
    {ToolShape::kHole, L"Depth", L"the depth", nullptr},
    {ToolShape::kCounterbore, L"Diameter", L"the diameter", &ToolForm::width},
    {ToolShape::kCounterbore, L"Depth", L"the depth", nullptr},
    {ToolShape::kCounterbore, L"Bore", L"the bore's diameter", &ToolForm::boreDiameter},
    {ToolShape::kCounterbore, L"BoreDepth", L"the bore's depth", &ToolForm::boreDepth},
    {ToolShape::kSlot, L"Width", L"the width", &ToolForm::width},
    {ToolShape::kSlot, L"Length", L"the length", &ToolForm::length},
    {ToolShape::kSlot, L"Depth", L"the depth", nullptr},
    {ToolShape::kBoss, L"Diameter", L"the diameter", &ToolForm::width},
    {ToolShape::kBoss, L"Height", L"the height", nullptr},
};

/// Of two sizes the first is to be more than the second.
struct OrderRow {
  ToolShape shape;
  const wchar_t* more;
  const wchar_t* less;
  const wchar_t* form;  ///< of the message, with both values
};
constexpr OrderRow kOrders[] = {
    {ToolShape::kCounterbore, L"Bore", L"Diameter",
     L"the bore's diameter %g is not more than the hole's diameter %g"},
    {ToolShape::kCounterbore, L"Depth", L"BoreDepth",
     L"the depth %g is not more than the bore's depth %g"},
    {ToolShape::kSlot, L"Length", L"Width", L"the length %g is not more than the width %g"},
};

const SizeRow* rowOf(ToolShape shape, const OdString& name) {
  const auto* row = std::ranges::find_if(kSizes, [&](const SizeRow& candidate) {
    return candidate.shape == shape && name == candidate.name;
  });
  return row == std::end(kSizes) ? nullptr : row;
}

std::optional<double> valueOf(const ToolForm& form, const SizeRow& row) {
  return row.value == nullptr ? form.depth : std::optional(form.*row.value);
}

/// The only tool of the block; null when it has none or several.
OdDbObjectId onlyTool(const OdDbObjectId& block) {
  using Interface = VdmUpdateFeatureInterface;
  const VdmSolidOccurrences cuts =
      Interface::getSubtractorsOnDedicatedLayer(block, /*forWrite=*/false);
  const VdmSolidOccurrences fills =
      Interface::getAdditionsOnDedicatedLayer(block, /*forWrite=*/false);
  const bool isCut = cuts.size() == 1 && fills.size() == 0;
  const bool isFill = cuts.size() == 0 && fills.size() == 1;
  if (!isCut && !isFill) return {};
  return (isCut ? cuts : fills).begin()->first;
}

/// Of model space without inserts of tools: a tool whose length followed from that of its inserts
/// would grow whenever it is made anew.
OdGeExtents3d boxOfParts(const OdDbDatabase* database) {
  OdGeExtents3d box;
  std::map<OdDbObjectId, bool> isTool;  // by block
  const auto space = database->getModelSpaceId().safeOpenAs<OdDbBlockTableRecord>();
  for (const OdDbObjectId& id : space->entityIds()) {
    const auto entity = id.isErased() ? OdDbEntityPtr() : id.openAs<OdDbEntity>();
    if (entity.isNull()) continue;
    if (const auto insert = OdDbBlockReference::cast(entity); !insert.isNull()) {
      const auto [known, isNew] = isTool.emplace(insert->blockTableRecord(), false);
      if (isNew) known->second = formOf(known->first).has_value();
      if (known->second) continue;
    }
    OdGeExtents3d its;
    if (entity->getGeomExtents(its) == eOk) box.addExt(its);
  }
  return box;
}

void markInserts(const OdDbObjectId& block) {
  for (const OdDbObjectId& id : componentsOfBlock(block)) {
    const VdmComponentFeaturePtr component = VdmComponentFeature::cast(VdmFeature::open(id).get());
    const auto reactor = component->insertReactorId().openAs<VdmDbInsertReactor>();
    if (!reactor.isNull()) reactor->setChanged(true);
  }
}

}  // namespace

OdStatus checkForm(const ToolForm& form) {
  OdString text;
  for (const SizeRow& row : kSizes) {
    if (row.shape != form.shape) continue;
    const std::optional<double> value = valueOf(form, row);
    if (!value || (std::isfinite(*value) && *value > 0.0)) continue;
    text.format(L"%ls is %g: a length above 0 is needed", row.words, *value);
    return {eInvalidInput, text};
  }
  for (const OrderRow& row : kOrders) {
    if (row.shape != form.shape) continue;
    const std::optional<double> more = sizeOf(form, OdString(row.more));
    const std::optional<double> less = sizeOf(form, OdString(row.less));
    if (!more || !less || *more > *less) continue;
    text.format(row.form, *more, *less);
    return {eInvalidInput, text};
  }
  return {};
}

double storedDepth(const OdDbDatabase* database, const ToolForm& form) {
  /// Length of stored tools that go through everything, in diagonals of what is in model space.
  /// Each cut makes one of the length that its body needs.
  constexpr double kThroughDiagonals = 2.0;
  /// And at least that many diameters, for parts that come later.
  constexpr double kThroughDiameters = 100.0;
  constexpr double kThroughBores = 2.0;
  if (form.depth) return *form.depth;
  const double diagonal = boxOfParts(database).diagonal().length();
  return std::max({kThroughDiagonals * diagonal, kThroughDiameters * form.widthAtFace(),
                   kThroughBores * form.boreDepth});
}

std::vector<OdString> sizeNames(const OdDbObjectId& block) {
  std::vector<OdString> names;
  const std::optional<ToolForm> form = formOf(block);
  for (const SizeRow& row : kSizes) {
    if (form && row.shape == form->shape) names.emplace_back(row.name);
  }
  return names;
}

OdString sizeNamed(const OdDbObjectId& block, const OdString& name) {
  OdString plain(name);
  plain.remove(L'-');
  for (const OdString& size : sizeNames(block)) {
    if (size.iEquals(plain)) return size;
  }
  return {};
}

std::optional<double> sizeOf(const ToolForm& form, const OdString& name) {
  const SizeRow* row = rowOf(form.shape, name);
  return row == nullptr ? std::nullopt : valueOf(form, *row);
}

std::optional<ToolForm> formOf(const OdDbObjectId& block) {
  const auto record = block.openAs<OdDbBlockTableRecord>();
  const auto tool = onlyTool(block).openAs<OdDb3dSolid>();
  VdmProperties bag;
  if (record.isNull() || tool.isNull() || !tool->body() || !bag.readFromDbObject(record.get())) {
    return std::nullopt;
  }
  return readToolForm(bag, *tool->body());
}

OdStatus withSizes(const ToolForm& form, const ComponentSizes& sizes, ToolForm& result) {
  ToolForm changed = form;
  for (const auto& [name, value] : sizes) {
    const SizeRow* row = rowOf(form.shape, name);
    if (row == nullptr) continue;
    if (row->value == nullptr) {
      changed.depth = value;
    } else {
      changed.*row->value = value;
    }
  }
  OdStatus status = checkForm(changed);
  if (status.ok()) result = changed;
  return status;
}

OdStatus resizeComponent(const OdDbObjectId& block, const ComponentSizes& sizes) {
  const auto record = block.openAs<OdDbBlockTableRecord>();
  const std::optional<ToolForm> present = formOf(block);
  if (record.isNull() || !present) {
    return {eInvalidInput, OdString(L"the component was not made from dimensions")};
  }
  ToolForm form;
  OdStatus status = withSizes(*present, sizes, form);
  if (!status.ok()) status.text = L"component \"" + record->getName() + L"\": " + status.text;
  if (!status.ok() || form == *present) return status;
  OdModelerBodyPtr body;
  status = makeTool(form, {storedDepth(block.database(), form), form.clearance()}, body);
  if (!status.ok()) return status;
  onlyTool(block).safeOpenAs<OdDb3dSolid>(OdDb::kForWrite)->setBody(body);
  VdmProperties bag;
  const auto writer = block.safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
  bag.readFromDbObject(writer.get());
  writeToolForm(form, *body, bag);
  bag.writeToDbObject(writer.get());
  markInserts(block);
  return {};
}

// ---- StoredSizes

void StoredSizes::map(VdmProperties& bag) {
  bag.mapProperty<VdmStringArray>(OdString(L"SizeNames"), &m_names);
  bag.mapProperty<VdmDoubleArray>(OdString(L"Sizes"), &m_values);
}

ComponentSizes StoredSizes::all() const {
  ComponentSizes sizes;
  const OdUInt32 count = std::min(m_names.size(), m_values.size());  // a file may hold anything
  for (OdUInt32 i = 0; i < count; ++i) sizes[m_names[i]] = m_values[i];
  return sizes;
}

void StoredSizes::store(const ComponentSizes& sizes) {
  m_names.clear();
  m_values.clear();
  for (const auto& [name, value] : sizes) {
    m_names.append(name);
    m_values.append(value);
  }
}

void StoredSizes::set(const OdString& name, double value) {
  ComponentSizes sizes = all();
  sizes[name] = value;
  store(sizes);
}

void StoredSizes::drop(const OdString& name) {
  ComponentSizes sizes = all();
  if (sizes.erase(name) != 0) store(sizes);
}

}  // namespace vdm_host
