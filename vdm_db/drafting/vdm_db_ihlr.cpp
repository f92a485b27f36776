// The hidden-line engine of a host, and the filters of what enters it.
#include "vdm_db/drafting/vdm_db_ihlr.h"

#include <algorithm>

#include "platform/db/entity.h"
#include "platform/db/layer_table.h"
#include "vdm_db/common/vdm_constants.h"

namespace {

VdmDbIHLR::Factory g_factory = nullptr;

}  // namespace

VdmDbIHLR::~VdmDbIHLR() = default;

void VdmDbIHLR::setFactoryMethod(Factory factory) { g_factory = factory; }

bool VdmDbIHLR::hasFactoryMethod() { return g_factory != nullptr; }

OdSharedPtr<VdmDbIHLR> VdmDbIHLR::getHLR() {
  return g_factory == nullptr ? OdSharedPtr<VdmDbIHLR>() : g_factory();
}

VdmDbIHLRFilter::~VdmDbIHLRFilter() = default;

bool VdmOdaToAcisFilter::accept(OdDbEntity* entity) {
  return entity != nullptr && entity->visibility() != OdDb::kInvisible;
}

bool VdmOdaToAcisLayerFilter::accept(OdDbEntity* entity) {
  if (!VdmOdaToAcisFilter::accept(entity)) return false;
  const auto layer = entity->layerId().openAs<OdDbLayerTableRecord>();
  if (layer.isNull()) return true;
  const OdString* const refused[] = {&kVdmSubtractLayer2, &kVdmUniteLayer2, &kVdmSubtractLayer,
                                     &kVdmUniteLayer};
  const OdString name = layer->getName();
  return std::none_of(std::begin(refused), std::end(refused),
                      [&name](const OdString* text) { return name.iCompare(*text) == 0; });
}
