#include "console/style.h"
#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <unistd.h>
#include "base/columns.h"
#include "base/platform.h"
#include "base/state.h"
#include "base/text.h"
#include "console/keys.h"
#include "output/results.h"
#include "output/vtmlchars.h"
#include "output/vtmllines.h"

namespace velmo {

namespace {

const char* const graphics8[] = {"", "\u252C", "\u2534", "\u251C", "\u2524", "\u2518", "\u2514", "\u2510", "\u250C"};

// The codes of the colour classes on each background. Text is as the terminal has it; what isn't known to be dark or
// light gets colours that can be read on both.
struct palette { const char *result, *error, *input, *link, *hilite; };
constexpr palette palettes[] = {
    {";35", ";31", ";1", ";4", ";1"},            // colours_auto, no answer
    {";33", ";91", ";1", ";96", ";1;97"},        // colours_dark
    {";34", ";31", ";1", ";4;34", ";1"},         // colours_light
    {"", "", "", ";4", ";1"},                    // colours_none
};

// rgb:RRRR/GGGG/BBBB, each of one to four hexadecimal digits; the weights are those of the eye.
Int4 backgroundof(std::string_view answer) {
    std::size_t at = answer.find("rgb:");
    if (at == answer.npos) return colours_auto;
    std::string text(answer.substr(at + 4));
    constexpr Double weights[3] = {0.30, 0.59, 0.11};
    Double light = 0;
    const char* p = text.c_str();
    for (Double weight : weights) {
        char* end;
        unsigned long v = std::strtoul(p, &end, 16);
        if (end == p || end - p > 4) return colours_auto;
        light += weight * Double(v) / Double((1ul << 4 * (end - p)) - 1);
        p = *end == '/' ? end + 1 : end;
    }
    return light < 0.5 ? colours_dark : colours_light;
}

Int4 background() {
    std::string shown = environmenttext("COLORFGBG");
    Int4 n;
    if (!shown.empty() && readinteger(shown.substr(shown.rfind(';') + 1), n))
        return n == 7 || n > 8 ? colours_light : colours_dark;
    if (environmenttext("TERM") == "linux") return colours_dark;
    return batchmode ? Int4(colours_auto) : backgroundof(keys_ask("\033]11;?\033\\"));
}

const palette& colourset() {
    static const boolean refused = !environmenttext("NO_COLOR").empty();
    if (refused || colours != colours_auto) return palettes[refused ? Int4(colours_none) : colours];
    static const Int4 found = background();
    return palettes[found];
}

void stylecodes(UByte style, std::string& out) {
    const palette& p = colourset();
    out += "\033[0";
    if (style & style_bold) out += ";1";
    if (style & style_italic) out += ";3";
    if (style & style_underline) out += ";4";
    switch (style & style_colour) {
    case style_result: out += p.result; break;
    case style_error: out += p.error; break;
    case style_input: out += p.input; break;
    case style_link: out += p.link; break;
    case style_hilite: out += p.hilite; break;
    default: break;
    }
    out += 'm';
}

void graphic(UByte c, std::string& out) {
    if (!utf8locale())
        out += plaingraphic(c);
    else if (c >= 1 && c <= 8)
        out += graphics8[c];
    else
        out += c == '-' ? "\u2500" : c == '|' ? "\u2502" : c == '+' ? "\u253C" : "?";
}

// A byte above 127 by itself: one of the old single-byte text, or a {c x}.
void highbyte(UByte b, std::string& out) {
    if (b < 0xA0)
        out += utf8locale() ? "\uFFFD" : "?";
    else if (utf8locale())
        appendutf8(out, b);
    else
        out += char(b);
}

void runtext(std::string_view text, UByte style, std::string& out) {
    constexpr UByte euro = 128;
    if (!(style & (style_graphic | style_code))) return safetext(text, out);
    for (char c : text) {
        UByte b = latin1code(UByte(c));
        if (style & style_graphic)
            graphic(UByte(c), out);
        else if (b == euro && !maccharset && utf8locale())
            out += "\u20AC";
        else
            highbyte(b, out);
    }
}

}  // namespace

boolean codesallowed() {
    static const boolean allowed = [] {
        std::string terminal = environmenttext("TERM");
        return isatty(STDOUT_FILENO) && !terminal.empty() && terminal != "dumb";
    }();
    return allowed;
}

void plaintext(const vlineview& line, std::string& out) {
    out.assign(line.text);
    const UByte* runs = line.styles;
    Int4 n = runs[0] + 1;
    for (Int4 i = 0, from = 0; i < n; i++) {
        UByte style = runs[2 + 2 * i], to = runs[3 + 2 * i];
        if (style & style_graphic)
            for (std::size_t c = std::size_t(from); Int4(c) < to && c < out.size(); c++)
                out[c] = plaingraphic(UByte(out[c]));
        from = to;
    }
}

void safetext(std::string_view text, std::string& out) {
    while (!text.empty()) {
        textchar c = charat(text);
        if (c.code >= 0xA0 || c.code == '\t' || (c.code >= 32 && c.code < 127))
            out += text.substr(0, std::size_t(c.bytes));
        else if (c.code < 0)
            highbyte(UByte(text[0]), out);
        else
            for (Int4 i = 0; i < c.bytes; i++) out += utf8locale() ? "\uFFFD" : "?";
        text.remove_prefix(std::size_t(c.bytes));
    }
}

void screentext(const vlineview& line, std::string& out) {
    out.clear();
    boolean codes = codesallowed();
    std::size_t from = 0;
    for (Int4 i = 0; i <= line.styles[0]; i++) {
        UByte style = line.styles[2 + 2 * i];
        std::size_t to = std::min<std::size_t>(line.styles[3 + 2 * i], line.text.size());
        if (codes) stylecodes(style, out);
        runtext(line.text.substr(from, to - from), style, out);
        from = to;
    }
    if (codes) out += "\033[0m";
}

}  // namespace velmo
