// Old help text: lines with ^highlight^ and @link@ codes. A line is read whole; the beginning of one that is not
// finished waits in `held`.
#include <algorithm>
#include <cstring>
#include "base/saved.h"
#include "output/vtmlinternal.h"
#include "output/vtmllines.h"

namespace velmo {

namespace {

// Names of @name:arg!text@. To add one: a row.
struct helplink {
    std::string_view name;
    UByte type;
};
constexpr helplink helplinks[] = {
    {"http", 9},     {"browser", 9}, {"web", 9},       {"search", 13},  {"back", 11},    {"net", 14},
    {"netfrom", 4},  {"nsdialog", 3}, {"sdialog", 5},  {"ado", 15},     {"adosearch", 1}, {"cdialog", 2},
    {"vdialog", 7},  {"update", 16}, {"adorm", 10},    {"rnethelp", 17}, {"updatebox", 6},
};

boolean takesarg(UByte type) { return type > 7 && type != 11; }

void showcodes(vstream* s, std::string_view text);

void plaintext(vstream* s, std::string_view text) {
    for (std::size_t tab; (tab = text.find('\t')) != std::string_view::npos; text.remove_prefix(tab + 1)) {
        line_place(s, text.substr(0, tab), s->style);
        line_tab(s);
    }
    line_place(s, text, s->style);
}

void showcoloured(vstream* s, std::string_view text, UByte colour) {
    saved style(s->style, UByte((s->style & ~style_colour) | colour));
    showcodes(s, text);
}

boolean showlink(vstream* s, UByte type, std::string_view target, std::string_view text) {
    if (s->inlink || Int4(target.size()) >= targetsize) return false;
    saved inlink(s->inlink, UByte(1));
    boolean begun = link_begin(s, type, target);
    showcoloured(s, text, begun ? style_link : s->style & style_colour);
    if (begun) link_end(s);
    return true;
}

// What stands between two @; false when it is malformed.
boolean atlink(vstream* s, std::string_view span) {
    std::size_t bang = span.find('!');
    if (bang == std::string_view::npos) return showlink(s, span.substr(0, 5) == "http:" ? 9 : 12, span, span);
    std::string_view target = span.substr(0, bang), text = span.substr(bang + 1);
    std::size_t colon = target.find(':');
    if (target.empty() || text.empty()) return false;
    if (colon == std::string_view::npos) return showlink(s, 12, target, text);
    std::string_view name = target.substr(0, colon), arg = target.substr(colon + 1);
    for (const helplink& row : helplinks) {
        if (row.name != name) continue;
        if (takesarg(row.type) == arg.empty()) return false;
        return showlink(s, row.type, name == "http" ? target : arg, text);
    }
    return false;
}

// Where the next code begins: an @ or ^ that is not the last character.
std::size_t nextcode(std::string_view text) {
    std::size_t at = text.find_first_of("@^");
    return at == std::string_view::npos || at + 1 >= text.size() ? std::string_view::npos : at;
}

// Where the span that text begins with closes; a doubled character does not close it.
std::size_t spanend(std::string_view text) {
    for (std::size_t i = 1; i < text.size(); i++) {
        if (text[i] != text[0]) continue;
        if (i + 1 == text.size() || text[i + 1] != text[0]) return i;
        i++;
    }
    return std::string_view::npos;
}

void showcodes(vstream* s, std::string_view text) {
    while (true) {
        std::size_t code = nextcode(text);
        plaintext(s, text.substr(0, code));
        if (code == std::string_view::npos) return;
        text.remove_prefix(code);
        std::size_t skip = text[1] == text[0] ? 2 : 1;
        std::size_t end = skip == 2 ? std::string_view::npos : spanend(text);
        std::string_view span = text.substr(1, end - 1);
        boolean shown = false;
        if (end != std::string_view::npos) {
            skip = end + 1;
            shown = text[0] == '@' ? atlink(s, span) : (showcoloured(s, span, style_hilite), true);
        }
        if (!shown) plaintext(s, end == std::string_view::npos ? text.substr(0, 1) : text.substr(0, skip));
        text.remove_prefix(skip);
    }
}

// A point alone shows nothing, a point and a dash a rule.
boolean dotline(vstream* s, std::string_view text) {
    if (text.substr(0, 1) != ".") return false;
    std::size_t first = text.find_first_not_of(" \t", 1);
    if (first == std::string_view::npos) return true;
    if (text[first] != '-' || text.find_first_not_of(" \t", first + 1) != std::string_view::npos) return false;
    line_fill(s, '-', s->linesize, UByte(s->style | style_graphic));
    return true;
}

void helpline(vstream* s, std::string_view text) {
    if (!dotline(s, text)) showcodes(s, text);
    line_emit(s);
}

// Adds to the unfinished line; a piece that fills it is a line.
void holdline(vstream* s, std::string_view text) {
    while (!text.empty()) {
        std::size_t n = std::min(text.size(), sizeof s->held - 1 - std::size_t(s->nheld));
        std::memcpy(s->held + s->nheld, text.data(), n);
        s->nheld += Int4(n);
        text.remove_prefix(n);
        if (!text.empty()) vtml_helpflush(s);
    }
}

}  // namespace

void vtml_helpflush(vstream* s) {
    Int4 n = s->nheld;
    s->nheld = 0;
    if (n > 0) helpline(s, {s->held, std::size_t(n)});
}

void vtml_helptext(vstream* s, std::string_view text) {
    if (s->at_mode_start && text[0] == '\n') text.remove_prefix(1);
    s->at_mode_start = 0;
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        holdline(s, text.substr(0, end));
        if (end == std::string_view::npos) return;
        if (s->nheld > 0)
            vtml_helpflush(s);
        else
            line_emit(s);
        text.remove_prefix(end + 1);
    }
}

}  // namespace velmo
