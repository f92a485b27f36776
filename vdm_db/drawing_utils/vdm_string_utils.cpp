// Beginnings, ends and parts of texts.
#include "vdm_db/drawing_utils/vdm_string_utils.h"

namespace vdmu {

bool startsWith(const OdString& text, const OdString& prefix) {
  return text.left(prefix.getLength()) == prefix;
}

bool endsWith(const OdString& text, const OdString& suffix) {
  return text.right(suffix.getLength()) == suffix;
}

bool trimPrefix(OdString& text, const OdString& prefix) {
  if (!startsWith(text, prefix)) return false;
  text = text.mid(prefix.getLength());
  return true;
}

bool trimSuffix(OdString& text, const OdString& suffix) {
  if (!endsWith(text, suffix)) return false;
  text = text.left(text.getLength() - suffix.getLength());
  return true;
}

OdArray<OdString> tokenize(OdString text, const OdString& delimiters, bool keepEmpty) {
  OdArray<OdString> tokens;
  const auto isDelimiter = [&](int at) { return delimiters.find(text.getAt(at)) >= 0; };
  const int length = text.getLength();
  for (int first = 0; first < length;) {
    if (!keepEmpty) {
      while (first < length && isDelimiter(first)) ++first;
    }
    int end = first;
    while (end < length && !isDelimiter(end)) ++end;
    if (end > first || keepEmpty) tokens.append(text.mid(first, end - first));
    first = end + 1;
  }
  return tokens;
}

}  // namespace vdmu
