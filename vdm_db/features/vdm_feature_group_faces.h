// VdmFeatureGroupFaces: geometry that a feature is to refer to under one mask and tag.
#pragma once

#include "platform/db/subent.h"

// What VdmFeature::init takes. A plain value.
struct VdmFeatureGroupFaces {
  VdmFeatureGroupFaces() = default;
  VdmFeatureGroupFaces(int groupMask, const OdDbFullSubentPathArray& groupPaths, int groupTag = -1)
      : tag(groupTag), mask(groupMask), paths(groupPaths) {}

  int tag = -1;  // -1 for references without a tag of their own
  int mask = 0;
  OdDbFullSubentPathArray paths;
};
