// The text of a STEP file, instance by instance, as its writer wrote it.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/base/non_copyable.h"
#include "platform/base/types.h"

namespace od_occt {

/// One record of the header, or one entity instance of a data section.
struct StepInstance {
  OdUInt64 id = 0;  ///< the number after '#'; 0 in the header
  std::size_t at = 0;
  std::size_t length = 0;  ///< of the text after '=' and before ';'
  std::size_t firstReference = 0;
  std::size_t numReferences = 0;
};

/// A quoted text that is more than plain ASCII: it has bytes of some encoding, escapes or controls.
struct StepLiteral {
  std::size_t at = 0;  ///< of the first character after the quote
  std::size_t length = 0;
  OdUInt64 instance = 0;  ///< that has it; 0 in the header
};

/// Where the file does not keep to the format, and was read on from the next instance.
struct StepFault {
  std::size_t at = 0;
  std::size_t length = 0;  ///< up to and with the closing ';'
  std::size_t line = 0;    ///< from 1
  std::string text;
};

/// An instance whose number another one has already.
struct StepRepeated {
  OdUInt64 id = 0;
  std::size_t at = 0;
  std::size_t length = 0;  ///< from its number up to and with the closing ';'
};

/// Reads the file's structure and nothing of its meaning: which instances there are, of which
/// types, which instances they refer to, which texts they hold. Says what the file declares without
/// the modeller's reader, so that the two can be compared. Views point into the text; they are
/// valid as long as this object.
///
/// One pass over the text; memory is the text and about forty bytes for each instance.
class StepText : OdNonCopyable {
 public:
  explicit StepText(std::string text);

  [[nodiscard]] std::string_view text() const { return m_text; }
  [[nodiscard]] std::span<const StepInstance> header() const { return m_header; }
  [[nodiscard]] std::span<const StepInstance> instances() const { return m_instances; }
  /// Null without one.
  [[nodiscard]] const StepInstance* find(OdUInt64 id) const;
  [[nodiscard]] std::span<const OdUInt64> references(const StepInstance& instance) const;

  /// The names of its types: one, or those of its parts when it is written in parts.
  [[nodiscard]] std::vector<std::string_view> types(const StepInstance& instance) const;
  [[nodiscard]] bool isA(const StepInstance& instance, std::string_view type) const;
  /// The arguments of the part of that type, without space around them; none without such a part.
  [[nodiscard]] std::vector<std::string_view> arguments(const StepInstance& instance,
                                                        std::string_view type) const;
  /// The only or first part's arguments.
  [[nodiscard]] std::vector<std::string_view> arguments(const StepInstance& instance) const;
  /// The elements of an argument in parentheses; none of another one.
  [[nodiscard]] static std::vector<std::string_view> elements(std::string_view argument);
  /// The instance that an argument names.
  [[nodiscard]] static std::optional<OdUInt64> reference(std::string_view argument);
  /// The raw content of a quoted argument, or of a typed one such as LABEL('x').
  [[nodiscard]] static std::optional<std::string_view> literal(std::string_view argument);
  [[nodiscard]] static std::optional<double> number(std::string_view argument);

  [[nodiscard]] std::span<const StepLiteral> literals() const { return m_literals; }
  [[nodiscard]] std::span<const StepFault> faults() const { return m_faults; }
  /// These are not among the instances.
  [[nodiscard]] std::span<const StepRepeated> repeated() const { return m_repeated; }
  /// Files that a section of references names, as '#1=<other.stp#2>'.
  [[nodiscard]] std::span<const std::string> referencedFiles() const { return m_referencedFiles; }
  /// The end of the last data section was found.
  [[nodiscard]] bool isClosed() const { return m_isClosed; }

 private:
  class Scanner;

  std::string m_text;
  std::vector<StepInstance> m_header;
  std::vector<StepInstance> m_instances;
  std::unordered_map<OdUInt64, std::size_t> m_rows;  // by number: index into the instances
  std::vector<OdUInt64> m_references;
  std::vector<StepLiteral> m_literals;
  std::vector<StepFault> m_faults;
  std::vector<StepRepeated> m_repeated;
  std::vector<std::string> m_referencedFiles;
  bool m_isClosed = false;
};

}  // namespace od_occt
