// The rows of a batch: what each sets, what it gives, in which order they are computed.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/batch/file_stamp.h"
#include "host/cli/batch_command.h"
#include "host/parameters/parameter_edit.h"
#include "host/rendering/contact_sheet.h"
#include "host/rendering/render.h"

namespace cli {

struct BatchRow {
  std::string name;
  std::string configuration;  ///< row of the table that is selected first; empty: none
  std::vector<vdm_host::ParameterAssignment> values;
  // Empty where they are not asked for.
  std::string exportTo;
  std::string renderTo;
  std::string tile;  ///< small picture for the contact sheet, in the results folder
  /// All that the result follows from. A finished row with the same inputs is not computed again.
  nlohmann::ordered_json inputs;
};

struct BatchPlan {
  batch::FileStamp drawing;
  std::string folder;              ///< of results
  std::string table;               ///< name of the table of configurations; empty: none is used
  std::string density;             ///< parameter or value; empty: no masses
  rendering::RenderOptions look;   ///< of pictures
  rendering::TileSize tile;        ///< of small pictures
  std::vector<BatchRow> rows;      ///< in the order of the report
  std::vector<std::size_t> order;  ///< in which they are computed
};

/// Opens the drawing, plans, and closes it. CliError for rows, parameters and templates that do not
/// fit, for two rows that would write one file, and for a drawing that is written meanwhile.
[[nodiscard]] BatchPlan planBatch(const SessionSettings& settings, const BatchOptions& options);

/// A name as part of a file's name: '/' and what else cannot be there is escaped ("%2F").
[[nodiscard]] std::string fileNameOf(const std::string& name);

}  // namespace cli
