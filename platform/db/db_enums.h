// Enumerations of the drawing database that several of its rooms share. Numbers are stored or
// compared by value where the comment says so.
#pragma once

#include "platform/base/types.h"

namespace OdDb {

/// Why objects are cloned; carried by the id mapping.
enum DeepCloneType : OdInt32 {
  kDcCopy = 0,
  kDcExplode = 1,
  kDcBlock = 2,
  kDcXrefBind = 3,
  kDcSymTableMerge = 4,
  kDcInsert = 6,
  kDcWblock = 7,
  kDcObjects = 8,
  kDcXrefInsert = 9,
  kDcInsertCopy = 10,
  kDcWblkObjects = 11,
};

/// What happens to a record whose name the destination already has.
enum DuplicateRecordCloning : OdInt32 {
  kDrcNotApplicable = 0,
  kDrcIgnore = 1,   ///< keep the destination's record and use it
  kDrcReplace = 2,  ///< the clone takes the place of the destination's record
  kDrcXrefMangleName = 3,
  kDrcMangleName = 4,
  kDrcUnmangleName = 5,
};

/// State of a block record that stands for an external drawing. Numbers are stored.
enum XrefStatus : OdInt32 {
  kXrfNotAnXref = 0,
  kXrfResolved = 1,
  kXrfUnloaded = 2,
  kXrfUnreferenced = 3,
  kXrfFileNotFound = 4,
  kXrfUnresolved = 5,
};

/// Length units of a drawing or block (the setting INSUNITS). Numbers are stored.
enum UnitsValue : OdInt32 {
  kUnitsUndefined = 0,
  kUnitsInches = 1,
  kUnitsFeet = 2,
  kUnitsMiles = 3,
  kUnitsMillimeters = 4,
  kUnitsCentimeters = 5,
  kUnitsMeters = 6,
  kUnitsKilometers = 7,
  kUnitsMicroinches = 8,
  kUnitsMils = 9,
  kUnitsYards = 10,
  kUnitsAngstroms = 11,
  kUnitsNanometers = 12,
  kUnitsMicrons = 13,
  kUnitsDecimeters = 14,
  kUnitsDekameters = 15,
  kUnitsHectometers = 16,
  kUnitsGigameters = 17,
  kUnitsAstronomical = 18,
  kUnitsLightYears = 19,
  kUnitsParsecs = 20,
  kUnitsUSSurveyFeet = 21,
  kUnitsMax = kUnitsUSSurveyFeet,
};

/// Pen widths in hundredths of a millimetre, 0 to 211, or one of these. Numbers are stored.
enum LineWeight : OdInt16 {
  kLnWtByLwDefault = -3,
  kLnWtByBlock = -2,
  kLnWtByLayer = -1,
  kLnWt000 = 0,
  kLnWt025 = 25,
  kLnWt211 = 211,
};

/// What becomes of line types of a file that the drawing has already.
enum DuplicateLinetypeLoading : OdUInt8 {
  kDltNotApplicable = 0,  ///< loading one by name says that it is there
  kDltIgnore = 1,         ///< those of the drawing stay
  kDltReplace = 2,        ///< those of the file take their place
};

/// Kind of a subentity. Numbers are stored.
enum SubentType : OdInt32 {
  kNullSubentType = 0,
  kFaceSubentType = 1,
  kEdgeSubentType = 2,
  kVertexSubentType = 3,
};

}  // namespace OdDb
