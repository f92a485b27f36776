// The quoted texts of a STEP file as text, whatever their writer's encoding.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/array.h"
#include "platform/base/string.h"
#include "platform/base/text_encoding.h"
#include "platform/modeler_occt/step_repair.h"
#include "platform/modeler_occt/step_text.h"

namespace od_occt {

/// Turns quoted texts into Unicode by these laws:
///   1. bytes outside of ASCII are text in the encoding that was asked for, or else in the one that
///      all such texts of the file together most likely have (odDetectEncoding);
///   2. then the format's escapes apply: '' and \\, \S\ in the page that \P.\ chose, \X\, \X2\ and
///      \X4\ up to \X0\; a backslash that begins none of them is a backslash;
///   3. a text whose bytes are none in that encoding, or whose escape names no character, keeps
///      them as \xHH and is reported.
///
/// The modeller's reader sees none of this: it gets the file with a key of plain ASCII for each of
/// these texts, and the keys in what it gives back are replaced by the texts.
class StepStrings {
 public:
  /// An empty `encoding` is found out; `file` must outlive the object.
  StepStrings(const StepText& file, const OdString& encoding);

  /// What the bytes outside of ASCII were read as; empty when there are none or only UTF-8.
  [[nodiscard]] const OdString& foreignEncoding() const { return m_foreignEncoding; }
  /// A line for each text that could not be read, up to a limit, and one for the others.
  [[nodiscard]] OdStringArray unreadable() const;

  /// The raw content of a quoted text of the file.
  [[nodiscard]] OdString decode(std::string_view literal) const;
  /// The quoted argument of an instance; empty when it is none.
  [[nodiscard]] OdString decodeArgument(std::string_view argument) const;

  /// Edits that put a key in the place of each of these texts.
  [[nodiscard]] std::vector<StepEdit> keys() const;
  /// A text of the modeller's reader with the keys replaced.
  [[nodiscard]] OdString restored(const OdString& text) const;

 private:
  struct Decoded {
    OdString text;
    bool isSound = true;
  };
  [[nodiscard]] Decoded decoded(std::string_view literal) const;

  const StepText& m_file;
  OdString m_foreignEncoding;
  std::unique_ptr<OdTextDecoder> m_decoder;
  std::vector<Decoded> m_texts;  // by literal of the file
};

}  // namespace od_occt
