// Message texts and receivers.
#include "vdm_utils/vdmu_reporter.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "vdm_utils/vdm_exception.h"

namespace {

struct MessageRow {
  VdmuMessageId id;
  VdmuSeverity severity;
  std::string_view text;
};

constexpr MessageRow kMessages[] = {
#define VDMU_MESSAGE(number, id, severity, text) {id, VdmuSeverity::severity, text},
#include "vdm_utils/message_rows.inc"
#undef VDMU_MESSAGE
};

const MessageRow& rowOf(VdmuMessageId id) {
  const auto* row = std::find_if(std::begin(kMessages), std::end(kMessages),
                                 [id](const MessageRow& candidate) { return candidate.id == id; });
  if (row == std::end(kMessages)) {
    throw VdmException(eInvalidInput,
                       OdString("message identifier " + std::to_string(static_cast<int>(id))));
  }
  return *row;
}

// The text of a field "{n}" or "{n:c}".
OdString fieldText(std::string_view field, std::span<const VdmuMessageArgument> arguments) {
  const auto index = static_cast<std::size_t>(field[1] - '0');
  if (index >= arguments.size()) return OdString(L"?");
  const VdmuMessageArgument& argument = arguments[index];
  if (field.size() > 3 && field[3] == 'c' && !argument.isText()) {
    return OdString(static_cast<wchar_t>(argument.number()), 1);
  }
  return argument.text();
}

}  // namespace

OdString VdmuMessageArgument::text() const {
  return m_isText ? m_text : OdString(std::to_string(m_number));
}

VdmuSeverity vdmuMessageSeverity(VdmuMessageId id) { return rowOf(id).severity; }

OdString vdmuMessageText(VdmuMessageId id, std::span<const VdmuMessageArgument> arguments) {
  std::string_view rest = rowOf(id).text;
  OdString result;
  for (std::size_t open = rest.find('{'); open != rest.npos; open = rest.find('{')) {
    const std::size_t close = rest.find('}', open);
    result += OdString(rest.data(), open);
    result += fieldText(rest.substr(open, close - open), arguments);
    rest.remove_prefix(close + 1);
  }
  return result + OdString(rest.data(), rest.size());
}

VdmuIReporter::~VdmuIReporter() = default;

void VdmuIReporter::reportArguments(VdmuMessageId id,
                                    std::span<const VdmuMessageArgument> arguments) {
  report(id, vdmuMessageText(id, arguments));
}

void VdmuMessageCollector::report(VdmuMessageId id, const OdString& text) {
  m_messages.push_back(
      {id, vdmuMessageSeverity(id), text.isEmpty() ? vdmuMessageText(id, {}) : text});
}

bool VdmuMessageCollector::hasErrors() const noexcept {
  return std::any_of(m_messages.begin(), m_messages.end(), [](const Message& message) {
    return message.severity == VdmuSeverity::kError;
  });
}

VdmuFileReporter::VdmuFileReporter(VdmuIReporter& receiver, OdString file)
    : m_receiver(receiver), m_file(std::move(file)) {}

void VdmuFileReporter::report(VdmuMessageId id, const OdString& text) {
  m_receiver.report(id, m_file + ": " + (text.isEmpty() ? vdmuMessageText(id, {}) : text));
}
