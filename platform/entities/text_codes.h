// The codes that drawings use within texts.
#pragma once

#include <vector>

#include "platform/base/string.h"

/// A run of characters, by index, that has a line under or over it; `end` is the one after the
/// last.
struct OdDbTextRun {
  int begin = 0;
  int end = 0;
};

/// A text without its codes.
struct OdDbPlainText {
  OdString text;
  std::vector<OdDbTextRun> underlines;
  std::vector<OdDbTextRun> overlines;
};

/// Reads %%c (diameter), %%d (degree), %%p (plus and minus), %%% (per cent), %%nnn (a character by
/// its decimal code), %%u and %%o (a line under or over what follows, on and off), and \U+hhhh (a
/// character by its hexadecimal code). What is none of these stays as it is.
[[nodiscard]] OdDbPlainText oddbPlainText(const OdString& text);

/// Reads the character of "U+hhhh" at `at` and moves past it; false when there is none.
bool oddbReadUnicodeCode(const OdString& text, int& at, wchar_t& character);
