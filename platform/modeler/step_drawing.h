// STEP files in and out of drawings.
#pragma once

#include "platform/base/array.h"
#include "platform/base/status.h"
#include "platform/base/string.h"
#include "platform/db/database.h"

struct OdStepImportOptions {
  bool sheets = true;   ///< shells and loose faces, as solids without volume
  bool curves = false;  ///< wireframe and annotation curves
};

/// What an import or export did. `lines` name what was left out or renamed, one line each.
struct OdStepReport {
  OdUInt32 products = 0;
  OdUInt32 solids = 0;
  OdUInt32 sheets = 0;
  OdUInt32 curves = 0;       ///< bodies of curves, whether taken over or left out
  OdUInt32 occurrences = 0;  ///< block references made, or occurrences written
  OdString sourceUnit;       ///< length unit of the file that was read
  OdStringArray lines;
};

/// Brings a STEP file into model space. A product becomes a block, once, however many times it
/// occurs; an occurrence becomes a block reference with its placement; the file's roots come into
/// model space. A file of a single part without placement puts its bodies there directly. The
/// colour of a body becomes the colour of its entity, colours of faces and names stay with the
/// body; the name of a product as the file has it is the comment of its block, the name of an
/// occurrence extended data of its reference under kOdStepRegApp.
///
/// An empty drawing is set to millimetres; one with content keeps its unit, and the import is
/// scaled to it. All happens in one transaction: on failure the drawing is as it was. Codes are
/// those of OdModeler::importStep. `report` may be null.
OdStatus importStepIntoDatabase(OdDbDatabase* database, const OdString& path,
                                OdStepReport* report = nullptr,
                                const OdStepImportOptions& options = {});

/// Writes model space as a STEP file in millimetres: blocks become products, references become
/// occurrences. Blocks of external drawings, entities that are neither solids nor references, and
/// what is on layers that are off or frozen are left out and reported. eInvalidInput when there is
/// nothing to write.
OdStatus exportStepFromDatabase(OdDbDatabase* database, const OdString& path,
                                OdStepReport* report = nullptr);

/// Application under which a reference keeps the name of its occurrence: a text (1000).
inline constexpr const wchar_t* kOdStepRegApp = L"OD_STEP";
