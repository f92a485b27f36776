// Plain text for people: numbers, names, tables, and the way to standard output.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/handle.h"
#include "platform/base/string.h"
#include "platform/ge/point3d.h"

namespace cli {

/// Human output fits this many columns.
inline constexpr std::size_t kTextWidth = 100;

/// UTF-8 as it is.
[[nodiscard]] std::string str(const OdString& text);
[[nodiscard]] std::string str(OdDbHandle handle);
[[nodiscard]] bool isUtf8(std::string_view text);
/// UTF-8 on one line: control characters and bytes that are no UTF-8 become escapes, so that no
/// name from a file moves the cursor of a terminal.
[[nodiscard]] std::string oneLine(std::string_view text);
/// In single quotes, on one line.
[[nodiscard]] std::string quote(std::string_view text);

/// Six significant digits, for people.
[[nodiscard]] std::string roundedNumber(double value);
/// The shortest text that reads back as the same number.
[[nodiscard]] std::string exactNumber(double value);
/// "(x, y, z)", rounded.
[[nodiscard]] std::string pointText(const OdGePoint3d& point);
/// "12.5 KiB".
[[nodiscard]] std::string byteCount(std::uintmax_t bytes);
/// "1 solid", "2 solids".
[[nodiscard]] std::string counted(std::uint64_t count, std::string_view noun);

/// Number of columns on a terminal: one for each character.
[[nodiscard]] std::size_t columnsOf(std::string_view text);
/// Cut to a number of columns, with an ellipsis where something is missing.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t columns);

/// On lines of at most `width` columns, broken at blanks; each with the indent and a line end. A
/// word that is too long for a line stays whole.
[[nodiscard]] std::string wrapped(std::string_view text, std::string_view indent,
                                  std::size_t width = kTextWidth);

/// Rows with aligned columns. The widest columns give way until a row fits kTextWidth.
class TextTable {
 public:
  enum class Align { kLeft, kRight };

  explicit TextTable(std::vector<std::pair<std::string, Align>> header, std::string indent = "");
  void addRow(std::vector<std::string> cells);
  [[nodiscard]] bool isEmpty() const { return m_rows.empty(); }
  /// Header and rows, each with its line end; nothing when there are no rows.
  [[nodiscard]] std::string text() const;

 private:
  [[nodiscard]] std::vector<std::size_t> widths() const;
  void appendRow(std::string& out, const std::vector<std::string>& cells,
                 const std::vector<std::size_t>& widths) const;

  std::vector<std::string> m_header;
  std::vector<Align> m_aligns;
  std::vector<std::vector<std::string>> m_rows;
  std::string m_indent;
};

/// Adds to what the command shows on standard output. It is shown when the command has ended, so
/// that a slow reader of it does not keep drawings locked.
void printOut(std::string_view text);
enum class Shown {
  kAll,
  kReaderGone,  ///< the pipe is closed: its reader does not want more
};
/// Writes what was added and sees it through; raises CliError when it cannot be written.
[[nodiscard]] Shown showOutput();
/// One line "vdm: <line>" on standard error.
void printError(std::string_view line);

}  // namespace cli
