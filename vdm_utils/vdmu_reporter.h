// Messages to the caller of an operation: identifiers, texts and the receiver.
#pragma once

#include <concepts>
#include <span>
#include <vector>

#include "platform/base/export.h"
#include "platform/base/string.h"

/// Message identifiers. The numbers are stable. message_rows.inc lists their arguments.
enum VdmuMessageId : int {
#define VDMU_MESSAGE(number, id, severity, text) id = number,
#include "vdm_utils/message_rows.inc"
#undef VDMU_MESSAGE
};

enum class VdmuSeverity { kWarning, kError };

/// A number or a text in a message.
class VdmuMessageArgument {
 public:
  VdmuMessageArgument(std::integral auto number) : m_number(static_cast<OdInt64>(number)) {}
  VdmuMessageArgument(const OdString& text) : m_text(text), m_isText(true) {}
  VdmuMessageArgument(const wchar_t* text) : m_text(text), m_isText(true) {}

  [[nodiscard]] bool isText() const noexcept { return m_isText; }
  [[nodiscard]] OdInt64 number() const noexcept { return m_number; }
  /// The text, or the number in decimal digits.
  [[nodiscard]] OdString text() const;

 private:
  OdInt64 m_number = 0;
  OdString m_text;
  bool m_isText = false;
};

OD_API VdmuSeverity vdmuMessageSeverity(VdmuMessageId id);
/// The message's text with the arguments in it; a missing argument shows as "?".
OD_API OdString vdmuMessageText(VdmuMessageId id, std::span<const VdmuMessageArgument> arguments);

/// Receives the messages of an operation, in the order in which they arise. The caller of the
/// operation implements it, to show or to collect.
class OD_API VdmuIReporter {
 public:
  virtual ~VdmuIReporter();

  /// A message with a text of its own; with an empty one the message's text is vdmuMessageText.
  virtual void report(VdmuMessageId id, const OdString& text) = 0;
  /// A message with arguments, as its format asks. Reports the composed text unless overridden.
  virtual void reportArguments(VdmuMessageId id, std::span<const VdmuMessageArgument> arguments);

  /// The same with the arguments written out: reportFormat(eRpt_Fmt_EmptyCell, row, column).
  template <class... Arguments>
  void reportFormat(VdmuMessageId id, const Arguments&... arguments) {
    const VdmuMessageArgument list[] = {VdmuMessageArgument(arguments)...};
    reportArguments(id, list);
  }
};

/// A reporter that keeps what it gets.
class OD_API VdmuMessageCollector : public VdmuIReporter {
 public:
  struct Message {
    VdmuMessageId id;
    VdmuSeverity severity;
    OdString text;  // never empty
  };

  void report(VdmuMessageId id, const OdString& text) override;
  [[nodiscard]] const std::vector<Message>& messages() const noexcept { return m_messages; }
  [[nodiscard]] bool hasErrors() const noexcept;
  void clear() noexcept { m_messages.clear(); }

 private:
  std::vector<Message> m_messages;
};

/// Hands messages on with the name of the file that they are about in front: "parts.csv: row 3,
/// column 2: the cell is empty". The receiver outlives it.
class OD_API VdmuFileReporter : public VdmuIReporter {
 public:
  VdmuFileReporter(VdmuIReporter& receiver, OdString file);

  void report(VdmuMessageId id, const OdString& text) override;

 private:
  VdmuIReporter& m_receiver;
  OdString m_file;
};
