#include "host/cli/failed_inputs.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>
#include <utility>

#include "host/cli/cli_error.h"
#include "host/cli/drawing_session.h"
#include "host/cli/text_output.h"
#include "platform/base/error.h"
#include "platform/base/non_copyable.h"
#include "platform/base/work_note.h"
#include "platform/db/block_table_record.h"
#include "platform/db/host_app_services.h"
#include "platform/modeler/db_3d_solid.h"

namespace cli {

namespace fs = std::filesystem;

namespace {

/// Failures that speak of the modeller or of its input's shape; a size that makes no body or a cut
/// that leaves nothing says all by itself.
bool isOfInterest(const OdWallFailure& failure) {
  constexpr std::array kCodes{eModelerError, eModelerInvalidBody, eOutOfMemory};
  return std::ranges::find(kCodes, failure.status.code) != kCodes.end() &&
         (!failure.inputs.empty() || !failure.path.isEmpty());
}

/// What is written in its scope is kept for the one who looks into the failure; it is no result of
/// the command.
class UncountedFiles : OdNonCopyable {
 public:
  UncountedFiles() : m_board(odWorkBoard()), m_written(m_board != nullptr && m_board->written) {}
  ~UncountedFiles() {
    if (m_board != nullptr) m_board->written = m_written;
  }

 private:
  OdWorkBoard* m_board;
  bool m_written;
};

void writeSolids(const OdWallFailure& failure, OdDbHostAppServices& services,
                 const fs::path& path) {
  const OdDbDatabasePtr drawing = services.createDatabase();
  {
    const OdDbBlockTableRecordPtr space =
        drawing->getModelSpaceId().safeOpenAs<OdDbBlockTableRecord>(OdDb::kForWrite);
    for (std::size_t i = 0; i < failure.inputs.size(); ++i) {
      OdModelerBodyAttributes attributes = failure.inputs[i]->attributes();
      attributes.name =
          i == 0 ? OdString(L"body") : OdString::fromUtf8("tool " + std::to_string(i));
      const OdDb3dSolidPtr solid = OdDb3dSolid::createObject();
      space->appendOdDbEntity(solid);
      solid->setBody(failure.inputs[i]->withAttributes(std::move(attributes)));
    }
  }
  saveDrawingAs(*drawing, path.string());
}

}  // namespace

FailedInputs::FailedInputs(std::string folder) : m_folder(std::move(folder)) {
  std::error_code failure;
  fs::create_directories(m_folder, failure);
  if (failure) throw CliError(quote(m_folder.string()) + ": " + failure.message());
}

fs::path FailedInputs::reserve(const std::string& operation) const {
  for (int number = 1;; ++number) {
    const fs::path path = m_folder / (operation + "-" + std::to_string(number) + ".txt");
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file >= 0) {
      close(file);
      return path;
    }
    if (errno != EEXIST) {
      throw std::system_error(errno, std::generic_category(), quote(path.string()));
    }
  }
}

void FailedInputs::keep(const OdWallFailure& failure, OdDbHostAppServices& services) const {
  if (!isOfInterest(failure)) return;
  const UncountedFiles uncounted;
  try {
    std::string operation = str(failure.operation);
    std::ranges::replace(operation, ' ', '-');
    const fs::path text = reserve(operation);
    fs::path kept = text;
    if (failure.path.isEmpty()) {
      kept.replace_extension(".vdm");
      writeSolids(failure, services, kept);
    } else {
      const fs::path source = str(failure.path);
      kept.replace_extension(source.extension() == ".txt" ? ".stp" : source.extension());
      fs::copy_file(source, kept);
    }
    std::ofstream(text) << str(failure.operation)
                        << (failure.died ? " killed its worker" : " failed") << '\n'
                        << str(failure.status.text) << '\n'
                        << "parameters: " << str(failure.parameters) << '\n'
                        << "input: " << kept.filename().string() << '\n';
    printError("kept what the " + str(failure.operation) + " failed on in " + quote(kept.string()));
  } catch (const std::exception& error) {
    printError(std::string("a failing input could not be kept: ") + error.what());
  }
}

}  // namespace cli
