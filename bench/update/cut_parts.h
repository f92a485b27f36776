// Parts of some hundred faces, and small holes to cut into them.
#pragma once

#include <string>
#include <vector>

#include "platform/modeler/modeler.h"

struct CutPart {
  std::string name;
  OdModelerBodyPtr body;
};

/// `base` less the tools, with its history. Raises the modeller's text when it fails.
OdModelerBodyPtr cutFrom(OdModeler& modeler, const OdModelerBodyPtr& base,
                         const std::vector<OdModelerBodyPtr>& tools);
/// A plate with through holes in a square grid, `faces` - 6 of them.
OdModelerBodyPtr plateOf(OdModeler& modeler, std::size_t faces);
/// A pin through such a plate, in the middle of four holes; the first ones lie in its first row.
OdModelerBodyPtr pinBetweenHoles(OdModeler& modeler, std::size_t number);
/// An upright pin through a plate 10 thick whose top has the point.
OdModelerBodyPtr pinAt(const OdGePoint3d& point, double diameter);
/// Appends the bodies of some hundred faces out of the STEP files of the folder VDM_STEP_DIR, if
/// one is named.
void addFiles(OdModeler& modeler, std::vector<CutPart>& parts);
/// A small hole into the largest plane face of a part, at one place out of many.
OdModelerBodyPtr toolFor(OdModeler& modeler, const OdModelerBody& part, std::size_t round);
