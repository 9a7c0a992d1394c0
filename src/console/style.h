// How a finished line looks on a terminal: colours that can be read on its background, line drawing, and marks in place
// of control characters, which a text from data must never send to a terminal. Elsewhere: plain text with - | + rules.
#pragma once
#include <string>
#include "output/vtml.h"
#include "output/vtmllines.h"

namespace velmo {

// The terminal takes codes: standard output is one, and TERM names one that knows them. Settled when first asked.
boolean codesallowed();
void plaintext(const vlineview& line, std::string& out);       // as files get it, byte for byte
void screentext(const vlineview& line, std::string& out);      // for a terminal
// Text with marks for control characters, in the terminal's encoding.
void safetext(std::string_view text, std::string& out);

}  // namespace velmo
