// STEP files in and out of drawings.
#pragma once

#include "platform/base/array.h"
#include "platform/base/status.h"
#include "platform/base/string.h"
#include "platform/db/database.h"

struct OdStepImportOptions {
  bool sheets = true;        ///< shells and loose faces, as solids without volume
  bool curves = false;       ///< wireframe
  bool annotations = false;  ///< drawn notes and dimensions, as curves on a layer of their own
  OdString encoding;         ///< of names with bytes outside of ASCII; empty to find it out
};

struct OdStepExportOptions {
  /// Date of the file, as 2026-01-31T12:00:00. Empty for a fixed one: then one drawing gives one
  /// file, byte for byte.
  OdString timeStamp;
  OdString originatingSystem;  ///< the program and its version
};

/// What an import or export did, one line for each thing to say.
struct OdStepReport {
  OdUInt32 products = 0;
  OdUInt32 solids = 0;
  OdUInt32 sheets = 0;
  OdUInt32 curves = 0;       ///< bodies of curves, whether taken over or left out
  OdUInt32 annotations = 0;  ///< taken over
  OdUInt32 occurrences = 0;  ///< block references made, or occurrences written
  OdString sourceUnit;       ///< length unit of the file that was read
  OdStringArray lines;       ///< what was renamed or understood in a certain way
  OdStringArray leftOut;     ///< what the target cannot hold or was not asked for
  OdStringArray lost;        ///< what the source declares and could not be read: it is incomplete
};

/// Brings a STEP file into model space. A product becomes a block, once, however many times it
/// occurs; an occurrence becomes a block reference with its placement; the file's roots come into
/// model space. A file of a single part without placement puts its bodies there directly.
///
/// The colour of a body becomes the colour of its entity, its layer that of the entity; colours of
/// faces and names stay with the body. The name of a product as the file has it is the comment of
/// its block, that of a single part the comment of model space; the name of an occurrence is
/// extended data of its reference under kOdStepRegApp. Annotations are on the layer
/// kOdStepAnnotationLayer.
///
/// An empty drawing takes the unit of the file, millimetres when drawings do not have it; one with
/// content keeps its unit, and the import is scaled to it. All happens in one transaction: on
/// failure the drawing is as it was. Codes are those of OdModeler::importStep. `report` may be
/// null.
OdStatus importStepIntoDatabase(OdDbDatabase* database, const OdString& path,
                                OdStepReport* report = nullptr,
                                const OdStepImportOptions& options = {});

/// Writes model space as a STEP file in the unit of the drawing, or in millimetres when STEP files
/// do not have it: blocks become products, references become occurrences, layers and colours those
/// of bodies, also where an entity has its colour from its layer. Blocks of external drawings,
/// entities that are neither solids nor references, and what is on layers that are off or frozen
/// are left out and reported, as are other things that the file cannot hold. eInvalidInput when
/// there is nothing to write.
OdStatus exportStepFromDatabase(OdDbDatabase* database, const OdString& path,
                                OdStepReport* report = nullptr,
                                const OdStepExportOptions& options = {});

/// Application under which a reference keeps the name of its occurrence: a text (1000).
inline constexpr const wchar_t* kOdStepRegApp = L"OD_STEP";
/// Layer of annotations.
inline constexpr const wchar_t* kOdStepAnnotationLayer = L"Annotations";
