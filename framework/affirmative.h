// Whether a text that the user typed means "yes". Any thread; no state.
#pragma once

#include <windows.h>

namespace kv {

// 1 if the first word of `text` is a word for yes, enabled, positive, on or true in the language (an index of the
// language table), or if it contains "1", "+" or "yes". Letters count without their case as far as the C runtime's
// locale knows it: where nobody calls setlocale, letters of plain ASCII only ("JA" is a yes, "ДА" is not). The first
// word ends at the first space or control character and has at most 256 characters. Language -1 takes the languages 0
// to 16 together; Norwegian and Finnish only count when asked for. An index that no language has knows no words of its
// own.
//
// A text that is empty or begins with a space affirms, too: whoever only presses Enter agrees. A text that is not
// readable does not.
inline constexpr int kEveryLanguage = -1;
BOOL IsAffirmative(int language, const wchar_t* text);

}  // namespace kv
