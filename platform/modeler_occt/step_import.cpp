// STEP files to products and occurrences, with the parts that are in files of their own.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>

#include "platform/base/case_compare.h"
#include "platform/base/text_encoding.h"
#include "platform/base/work_note.h"
#include "platform/modeler_occt/occt_guard.h"
#include "platform/modeler_occt/step_exchange.h"
#include "platform/modeler_occt/step_reader.h"
#include "platform/modeler_occt/step_session.h"

namespace od_occt {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFirstMark = "ISO-10303-21";
constexpr std::string_view kLastMark = "END-ISO-10303-21";

// ---- The file, before anything is parsed.

bool contains(std::istream& stream, std::streamoff from, std::string_view mark) {
  constexpr std::streamoff kWindow = 1024;
  std::string window(kWindow, '\0');
  stream.clear();
  stream.seekg(from);
  stream.read(window.data(), kWindow);
  return std::string_view(window.data(), static_cast<std::size_t>(stream.gcount())).find(mark) !=
         std::string_view::npos;
}

OdStatus checkFile(const OdString& path) {
  const fs::path file(std::string(path.utf8()));
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) {
    return fileFailure(eFileNotFound, path, "there is no such file");
  }
  if (error || !fs::is_regular_file(status)) {
    return fileFailure(eFileAccess, path, "it is not a plain file");
  }
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return fileFailure(eFileAccess, path, "it cannot be opened for reading");
  const auto size = static_cast<std::streamoff>(fs::file_size(file, error));
  if (size == 0) return fileFailure(eModelerError, path, "it is empty");
  if (!contains(stream, 0, kFirstMark)) {
    return fileFailure(eModelerError, path,
                       "it is not a STEP file, the mark ISO-10303-21 is missing");
  }
  if (!contains(stream, std::max<std::streamoff>(0, size - 1024), kLastMark)) {
    return fileFailure(eModelerError, path,
                       "it is cut short, the mark END-ISO-10303-21 is missing");
  }
  return {};
}

// ---- One file, within its budget.

// What a reader may use before it counts as one that loops or eats memory. The public test models
// (up to 2 MB) need less than a fifth of both.
OdWorkBudget budgetFor(std::uintmax_t fileSize) {
  constexpr std::uintmax_t kMegabyte = std::uintmax_t{1} << 20U;
  OdWorkBudget budget;
  budget.seconds = static_cast<std::uint32_t>(3 + 5 * (fileSize / kMegabyte));
  budget.bytes = 512 * kMegabyte + 40 * fileSize;
  return budget;
}

OdStatus readWhole(const fs::path& file, std::string& text) {
  std::ifstream stream(file, std::ios::binary);
  text.assign(std::istreambuf_iterator<char>(stream), {});
  if (!stream) return {eFileAccess, L"it cannot be read"};
  return {};
}

// Failures name the file.
OdStatus readFile(const OdString& path, const OdModelerReadOptions& options, StepReading& result) {
  if (OdStatus status = checkFile(path); !status.ok()) return status;
  const OdWorkNote note("reading step file ", path.utf8());
  const fs::path file(std::string(path.utf8()));
  std::error_code error;
  const OdWorkLimit limit(budgetFor(fs::file_size(file, error)));
  const OdStatus status = guarded("import", [&] {
    std::string text;
    OdStatus read = readWhole(file, text);
    return read.ok() ? readStepText(std::move(text), options, result) : read;
  });
  return status.ok() ? status
                     : fileFailure(status.code, path, static_cast<const char*>(status.text));
}

// ---- A file with its parts.

// Puts what a part's file has into the product that names the file. The product keeps its name.
class PartMerge {
 public:
  PartMerge(OdModelerAssembly& whole, OdUInt32 product, const OdModelerAssembly& part)
      : m_whole(whole), m_product(product), m_part(part) {}

  void run() {
    // A single root is the product itself.
    const bool isSame = m_part.roots.size() == 1 && m_part.roots[0].placement.isIdentity();
    m_indices.resize(m_part.products.size(), m_product);
    auto next = static_cast<OdUInt32>(m_whole.products.size());
    for (OdUInt32 i = 0; i < m_part.products.size(); ++i) {
      if (!isSame || i != m_part.roots[0].product) m_indices[i] = next++;
    }
    m_whole.products.resize(next);
    for (OdUInt32 i = 0; i < m_part.products.size(); ++i) copy(i);
    if (!isSame) place(m_part.roots);
  }

 private:
  void copy(OdUInt32 index) {
    const OdModelerProduct& source = m_part.products[index];
    OdModelerProduct& target = m_whole.products[m_indices[index]];
    const bool isSame = m_indices[index] == m_product;
    const OdModelerProduct named = isSame ? target : source;
    target = source;
    if (isSame && !named.name.isEmpty()) target.name = named.name;
    target.uniqueId = isSame ? named.uniqueId : uniqueId(source.uniqueId);
    for (OdModelerOccurrence& occurrence : target.occurrences) {
      occurrence.product = m_indices[occurrence.product];
    }
  }

  void place(const std::vector<OdModelerOccurrence>& roots) {
    for (OdModelerOccurrence root : roots) {
      root.product = m_indices[root.product];
      m_whole.products[m_product].occurrences.push_back(std::move(root));
    }
  }

  OdString uniqueId(const OdString& wanted) {
    if (m_ids.empty()) {
      for (const OdModelerProduct& product : m_whole.products) {
        m_ids.insert(odCaseFold(product.uniqueId));
      }
    }
    OdString candidate = wanted;
    for (unsigned number = 2; !m_ids.insert(odCaseFold(candidate)).second; ++number) {
      candidate.format(L"%ls~%u", wanted.c_str(), number);
    }
    return candidate;
  }

  OdModelerAssembly& m_whole;
  OdUInt32 m_product;
  const OdModelerAssembly& m_part;
  std::vector<OdUInt32> m_indices;  // in the whole, by product of the part
  std::set<OdString> m_ids;
};

class AssemblyReader {
 public:
  explicit AssemblyReader(const OdModelerReadOptions& options) : m_options(options) {}

  OdStatus read(const OdString& path, OdModelerAssembly& result) {
    const fs::path file = fs::absolute(std::string(path.utf8())).lexically_normal();
    StepReading reading;
    if (OdStatus status = readFile(path, m_options, reading); !status.ok()) return status;
    m_open.insert(file);
    for (const StepMissingPart& part : reading.parts) {
      addPart(file.parent_path(), part, reading.assembly);
    }
    m_open.erase(file);
    result = std::move(reading.assembly);
    return {};
  }

 private:
  void addPart(const fs::path& folder, const StepMissingPart& part, OdModelerAssembly& assembly) {
    const OdString what = L"part file '" + part.file + L"' of product '" +
                          assembly.products[part.product].name + L"' ";
    const std::optional<fs::path> file = locate(folder, part.file);
    if (!file) return assembly.notes.lost.append(what + L"was not found"), void();
    if (m_open.contains(*file)) {
      return assembly.notes.lost.append(what + L"contains itself"), void();
    }
    const Outcome& outcome = outcomeOf(*file);
    if (!outcome.status.ok()) {
      return assembly.notes.lost.append(what + L"was not read: " + outcome.status.text), void();
    }
    PartMerge(assembly, part.product, outcome.assembly).run();
    if (outcome.isNoted) return;
    appendNotes(outcome.assembly.notes, L"part file '" + part.file + L"': ", assembly.notes);
    outcome.isNoted = true;
  }

  struct Outcome {
    OdStatus status;
    OdModelerAssembly assembly;
    mutable bool isNoted = false;  ///< its notes are in those of a file that names it
  };

  // Each file is read once, however many products name it.
  const Outcome& outcomeOf(const fs::path& file) {
    const auto known = m_outcomes.find(file);
    if (known != m_outcomes.end()) return known->second;
    Outcome outcome;
    outcome.status = read(OdString(file.string()), outcome.assembly);
    return m_outcomes.emplace(file, std::move(outcome)).first->second;
  }

  static void appendNotes(const OdModelerReadNotes& from, const OdString& lead,
                          OdModelerReadNotes& to) {
    for (const OdString& line : from.leftOut) to.leftOut.append(lead + line);
    for (const OdString& line : from.lost) to.lost.append(lead + line);
    for (const OdString& line : from.remarks) to.remarks.append(lead + line);
  }

  // Where the file says, else beside the file that names it.
  static std::optional<fs::path> locate(const fs::path& folder, const OdString& name) {
    std::string text(name.utf8());
    std::ranges::replace(text, '\\', '/');
    const fs::path said(text);
    for (const fs::path& candidate : {folder / said, folder / said.filename()}) {
      std::error_code error;
      if (fs::is_regular_file(candidate, error)) return candidate.lexically_normal();
    }
    return std::nullopt;
  }

  const OdModelerReadOptions& m_options;
  std::set<fs::path> m_open;  // files that are being read, from the outermost inwards
  std::map<fs::path, Outcome> m_outcomes;
};

OdStatus checkOptions(const OdModelerReadOptions& options) {
  if (options.encoding.isEmpty() || OdTextDecoder(options.encoding).isKnown()) return {};
  return {eInvalidInput, L"'" + options.encoding + L"' is no known encoding"};
}

}  // namespace

OdStatus importStepFile(const OdString& path, const OdModelerReadOptions& options,
                        OdModelerAssembly& result) {
  if (OdStatus status = checkOptions(options); !status.ok()) return status;
  OdModelerAssembly assembly;
  if (OdStatus status = AssemblyReader(options).read(path, assembly); !status.ok()) return status;
  const auto hasBody = [](const OdModelerProduct& product) { return !product.bodies.empty(); };
  if (std::ranges::none_of(assembly.products, hasBody)) {
    OdString reason = L"there is no geometry in it";
    for (const OdString& line : assembly.notes.lost) reason += L"; " + line;
    return fileFailure(eModelerError, path, static_cast<const char*>(reason));
  }
  result = std::move(assembly);
  return {};
}

}  // namespace od_occt
