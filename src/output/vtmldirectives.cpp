// The directives. To add one: a row in the table, in order of the names, and a handler unless one of those here
// serves with another value. A handler returns false when the directive must show as text; it then has shown and
// changed nothing.
#include <algorithm>
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "output/vtmlchars.h"
#include "output/vtmlinternal.h"
#include "output/vtmllines.h"

namespace velmo {

namespace {

// {name args:text}; rest is all that stands behind the name.
struct directive {
    std::string_view name, args, text, rest;
    boolean hastext;
    Int4 value;          // of the row
};

enum argform : UByte {
    bare,          // neither arguments nor a text
    maytext,       // no arguments; a text or none
    needtext,      // no arguments; a text
    onenumber,     // a number 0 to 255, no text
    anyform,       // the handler looks
};

struct dirrow {
    std::string_view name;
    argform form;
    Int4 value;
    boolean (*run)(vstream*, const directive&);
};

// The next word of the arguments, its quotes removed; false at the end.
boolean nextword(std::string_view& rest, std::string_view& word) {
    rest = ltrimmed(rest);
    if (rest.empty()) return false;
    std::size_t end = std::min(rest.find(' '), rest.size());
    word = rest.substr(0, end);
    std::size_t quote = rest[0] == '"' ? rest.find('"', 1) : std::string_view::npos;
    if (quote != std::string_view::npos) {
        word = rest.substr(1, quote - 1);
        end = quote + 1;
    }
    rest.remove_prefix(end);
    return true;
}

// The one number that the arguments are; `value` is left alone when they are anything else.
boolean onlynumber(std::string_view args, Int4& value) {
    std::string_view word, more;
    return nextword(args, word) && !nextword(args, more) && readinteger(word, value);
}

// Length of the quoted piece at the start of text, `"..."' nesting; 0 when there is none.
std::size_t quotedlength(std::string_view text) {
    if (text.substr(0, 1) == "\"") {
        std::size_t end = text.find('"', 1);
        return end == std::string_view::npos ? 0 : end + 1;
    }
    if (text.substr(0, 2) != "`\"") return 0;
    Int4 depth = 0;
    for (std::size_t i = 0; i + 1 < text.size(); i++) {
        if (text[i] == '`' && text[i + 1] == '"') depth++, i++;
        else if (text[i] == '"' && text[i + 1] == '\'' && (i++, --depth == 0)) return i + 1;
    }
    return 0;
}

// Where the text before the first c outside braces and quoted words ends: at c, or at the end of text.
std::size_t outside(std::string_view text, char c, boolean quotes) {
    Int4 braces = 0;
    boolean atword = true;
    for (std::size_t i = 0; i < text.size(); i++) {
        std::size_t quoted = quotes && atword && braces == 0 ? quotedlength(text.substr(i)) : 0;
        if (quoted > 0) i += quoted;
        if (i >= text.size()) break;
        if (text[i] == c && braces == 0) return i;
        braces += text[i] == '{' ? 1 : text[i] == '}' ? -1 : 0;
        atword = text[i] == ' ';
    }
    return text.size();
}

void fill(vstream* s, char c, Int4 n, UByte style) {
    for (; n > 0; n--) vtml_place(s, {&c, 1}, style);
}

void blanks(vstream* s, Int4 n) { line_fill(s, ' ', n, s->style); }

void dashes(vstream* s, Int4 n) { line_fill(s, '-', n, UByte(s->style | style_graphic)); }

// Shows the directive's text in a style, or, without one, goes on in it.
boolean styled(vstream* s, const directive& d, UByte style) {
    UByte old = s->style;
    s->style = style;
    if (!d.hastext) return true;
    vtml_inner(s, d.text);
    s->style = old;
    return true;
}

UByte withcolour(UByte style, Int4 colour) { return UByte((style & ~style_colour) | colour); }

void show(vstream* s, std::string_view text, UByte style) {
    saved keep(s->style, style);
    vtml_inner(s, text);
}

// ---- styles

boolean dir_colour(vstream* s, const directive& d) { return styled(s, d, withcolour(s->style, d.value)); }

boolean dir_font(vstream* s, const directive& d) { return styled(s, d, UByte((s->style & ~style_font) | d.value)); }

boolean dir_reset(vstream* s, const directive&) {
    s->style = style_text;
    return true;
}

boolean dir_underline(vstream* s, const directive& d) {
    std::string_view word = trimmed(d.args);
    if (d.hastext) return word.empty() && styled(s, d, UByte(s->style | style_underline));
    if (word != "on" && word != "off") return false;
    s->style = UByte((s->style & ~style_underline) | (word == "on" ? style_underline : 0));
    return true;
}

boolean dir_cmdab(vstream* s, const directive& d) {
    UByte hilite = withcolour(s->style, style_hilite), plain = s->style;
    UByte ul = s->can_underline ? style_underline : 0;
    std::size_t end = outside(d.text, ':', false);
    if (end == d.text.size()) {
        show(s, d.text, hilite);
        return true;
    }
    std::string_view rest = d.text.substr(end + 1);
    std::size_t restend = outside(rest, ':', false);
    show(s, d.text.substr(0, end), UByte(hilite | ul));
    show(s, rest.substr(0, restend), s->can_underline ? hilite : plain);
    if (restend < rest.size()) show(s, rest.substr(restend + 1), hilite);
    return true;
}

boolean dir_title(vstream* s, const directive& d) {
    if (s->mode != vmode_vtml) {
        vtml_inner(s, d.text);
        return true;
    }
    UByte ul = s->can_underline ? style_underline : 0;
    show(s, d.text, UByte((s->style & ~style_font) | style_bold | ul));
    if (ul) return true;
    line_emit(s);
    dashes(s, std::min(vtml_measure(d.text, 0), s->linesize));
    return true;
}

// ---- blanks and rules

boolean dir_comment(vstream*, const directive&) { return true; }

boolean dir_join(vstream* s, const directive&) {
    if (s->mode == vmode_vtml) s->newline_on = 0;
    return true;
}

boolean dir_rule(vstream* s, const directive&) {
    if (s->mode == vmode_paragraph) word_flush(s, 0);
    if (s->line.n > 0) line_emit(s);
    dashes(s, s->linesize);
    line_emit(s);
    s->skip_nl = s->mode == vmode_vtml;
    return true;
}

boolean dir_hline(vstream* s, const directive& d) {
    Int4 n = s->linesize - s->line.columns;
    if (d.hastext) return false;
    if (trimmed(d.args).empty()) {
        if (s->mode != vmode_vtml) return false;
    } else if (!onlynumber(d.args, n) || n < 0 || n > 255) {
        return false;
    }
    if (s->mode == vmode_vtml)
        dashes(s, n);
    else
        fill(s, '-', n, UByte(s->style | style_graphic));
    return true;
}

boolean dir_space(vstream* s, const directive& d) {
    if (s->mode == vmode_paragraph)
        fill(s, bindingblank, d.value, s->style);
    else
        blanks(s, d.value);
    return true;
}

boolean dir_tab(vstream* s, const directive&) {
    if (s->mode == vmode_vtml) line_tab(s);
    return true;
}

boolean dir_col(vstream* s, const directive& d) {
    Int4 column;
    if (s->mode != vmode_vtml || !onlynumber(d.args, column) || column > 255) return false;
    column = std::max(column, 1) - 1;
    if (!d.hastext) blanks(s, column - s->line.columns);
    // A text that shows nothing, or that ends lines, would never get there.
    for (Int4 before = -1; d.hastext && s->line.columns < column && s->line.columns > before;) {
        before = s->line.columns;
        vtml_inner(s, d.text);
    }
    return true;
}

boolean dir_dup(vstream* s, const directive& d) {
    Int4 n;
    if (!d.hastext || !onlynumber(d.args, n) || n < 0 || n > 999) return false;
    for (; n > 0 && !breakpending && !vtml_tired(); n--) vtml_inner(s, d.text);
    return true;
}

// ---- placing

enum alignment : Int4 { align_left, align_centre, align_right };

// In what is left of the line, or on a new line if that is too short.
boolean alignrest(vstream* s, const directive& d) {
    Int4 width = vtml_measure(d.text, s->can_underline);
    if (width > s->linesize - s->line.columns && s->line.n > 0) line_emit(s);
    Int4 free = std::max(s->linesize - s->line.columns - width, 0);
    blanks(s, d.value == align_right ? free : free / 2);
    vtml_inner(s, d.text);
    return true;
}

boolean alignfield(vstream* s, const directive& d, Int4 columns) {
    Int4 free = std::max(columns - vtml_measure(d.text, s->can_underline), 0);
    Int4 front = d.value == align_left ? 0 : d.value == align_right ? free : free / 2;
    blanks(s, front);
    vtml_inner(s, d.text);
    blanks(s, free - front);
    return true;
}

// {right:} takes no number, {lalign #:} and {ralign #:} need one, {center:} does either way.
boolean dir_align(vstream* s, const directive& d) {
    boolean infield = d.name == "lalign" || d.name == "ralign" || (d.name != "right" && !trimmed(d.args).empty());
    Int4 columns = 0;
    if (!d.hastext) return false;
    if (infield ? !onlynumber(d.args, columns) || columns < 0 || columns > 255 : !trimmed(d.args).empty()) return false;
    if (s->mode == vmode_vtml) return infield ? alignfield(s, d, columns) : alignrest(s, d);
    vtml_inner(s, d.text);
    return true;
}

boolean dir_char(vstream* s, const directive& d) {
    UByte code;
    boolean graphic;
    if (!vtml_char(trimmed(d.rest), code, graphic)) return false;
    char c = char(code);
    vtml_place(s, {&c, 1}, UByte(s->style | (graphic ? style_graphic : code > 127 ? style_code : 0)));
    return true;
}

// ---- modes and paragraphs

boolean dir_mode(vstream* s, const directive& d) {
    if (s->depth != 1) return false;
    vstream_setmode(s, vmode(d.value));
    return true;
}

boolean dir_bind(vstream* s, const directive& d) {
    saved binding(s->binding, UByte(1));
    vtml_inner(s, d.text);
    return true;
}

boolean dir_break(vstream* s, const directive&) {
    if (s->depth != 1) return false;
    if (s->mode == vmode_paragraph) word_flush(s, 0);
    line_emit(s);
    s->para_lines = 0;
    return true;
}

boolean dir_p(vstream* s, const directive& d) {
    Int4 n[3] = {0, 0, 0};
    std::string_view rest = d.args, word;
    if (s->depth != 1 || d.hastext) return false;
    for (Int4 i = 0; nextword(rest, word); i++)
        if (i == 3 || !readinteger(word, n[i]) || n[i] < 0 || (i < 2 && n[i] > 255)) return false;
    vstream_setmode(s, vmode_paragraph);
    Int4 most = s->linesize - 20;
    s->first_indent = std::min(n[0], most);
    s->next_indent = std::min(n[1], most);
    s->linesize -= std::clamp(n[2], 0, std::max(most - std::max(s->first_indent, s->next_indent), 0));
    return true;
}

boolean dir_pend(vstream* s, const directive&) {
    if (s->depth != 1 || s->mode != vmode_paragraph) return false;
    s->para_blank = 0;
    vstream_setmode(s, vmode_vtml);
    return true;
}

// ---- links

enum linkargs : Int4 { notarget = 0, maytarget = 100, needtarget = 200 };    // added to the type

boolean blanktext(std::string_view text) { return text.find_first_not_of(" \t\n") == std::string_view::npos; }

std::string_view linktarget(std::string_view args) {
    std::string_view target = trimmed(args);
    if (target.empty() || quotedlength(target) != target.size()) return target;
    std::size_t quote = target[0] == '"' ? 1 : 2;
    return target.substr(quote, target.size() - 2 * quote);
}

// A word that touches the link goes ahead of it, on the line that has room for both.
void flushbefore(vstream* s, std::string_view shown) {
    if (s->mode != vmode_paragraph || s->word.n == 0) return;
    std::string_view first = shown.substr(0, outside(shown, ' ', false));
    word_flush(s, vtml_measure(first, s->can_underline));
    s->lastend = 2;
}

boolean dir_link(vstream* s, const directive& d) {
    std::string_view target = linktarget(d.args);
    Int4 need = d.value / 100 * 100;
    if (s->inlink || Int4(target.size()) >= targetsize) return false;
    if (need == needtarget ? target.empty() : need == notarget && !target.empty()) return false;
    if (d.hastext ? blanktext(d.text) : target.empty()) return false;
    flushbefore(s, d.hastext ? d.text : target);
    UByte type = d.name == "velmo" ? s->link_default : UByte(d.value - need);
    boolean begun = link_begin(s, type, target);
    UByte colour = s->style & style_colour;
    if (begun) s->style = withcolour(s->style, style_link);
    saved inlink(s->inlink, UByte(1));
    if (d.hastext)
        vtml_inner(s, d.text);
    else
        vtml_plain(s, target);
    s->style = withcolour(s->style, colour);
    if (begun) link_end(s);
    return true;
}

// ---- the table

constexpr dirrow directives[] = {
    {"*", anyform, 0, dir_comment},
    {".-", bare, 0, dir_rule},
    {"...", bare, 0, dir_join},
    {"ado", anyform, needtarget + 15, dir_link},
    {"ado_d", anyform, notarget + 1, dir_link},
    {"adorm", anyform, needtarget + 10, dir_link},
    {"asdialog", anyform, notarget + 1, dir_link},
    {"asis", bare, vmode_asis, dir_mode},
    {"back", anyform, notarget + 11, dir_link},
    {"bf", maytext, style_bold, dir_font},
    {"bind", needtext, 0, dir_bind},
    {"break", bare, 0, dir_break},
    {"browse", anyform, needtarget + 9, dir_link},
    {"c", anyform, 0, dir_char},
    {"cdialog", anyform, notarget + 2, dir_link},
    {"center", anyform, align_centre, dir_align},
    {"centre", anyform, align_centre, dir_align},
    {"char", anyform, 0, dir_char},
    {"clearmore", anyform, notarget + 8, dir_link},
    {"cmd", maytext, style_hilite, dir_colour},
    {"cmdab", needtext, 0, dir_cmdab},
    {"col", anyform, 0, dir_col},
    {"com", maytext, style_input, dir_colour},
    {"command", maytext, style_input, dir_colour},
    {"dup", anyform, 0, dir_dup},
    {"err", maytext, style_error, dir_colour},
    {"error", maytext, style_error, dir_colour},
    {"gr", maytext, style_text, dir_colour},
    {"green", maytext, style_text, dir_colour},
    {"help", anyform, needtarget + 12, dir_link},
    {"help_d", anyform, notarget + 2, dir_link},
    {"hi", maytext, style_hilite, dir_colour},
    {"hilite", maytext, style_hilite, dir_colour},
    {"hline", anyform, 0, dir_hline},
    {"inp", maytext, style_input, dir_colour},
    {"input", maytext, style_input, dir_colour},
    {"it", maytext, style_italic, dir_font},
    {"lalign", anyform, align_left, dir_align},
    {"net", anyform, needtarget + 14, dir_link},
    {"net_d", anyform, notarget + 3, dir_link},
    {"netfrom_d", anyform, notarget + 4, dir_link},
    {"news", anyform, notarget + 19, dir_link},
    {"nfdialog", anyform, notarget + 4, dir_link},
    {"nsdialog", anyform, notarget + 3, dir_link},
    {"p", anyform, 0, dir_p},
    {"p_end", bare, 0, dir_pend},
    {"ralign", anyform, align_right, dir_align},
    {"re", maytext, style_error, dir_colour},
    {"red", maytext, style_error, dir_colour},
    {"res", maytext, style_result, dir_colour},
    {"reset", bare, 0, dir_reset},
    {"result", maytext, style_result, dir_colour},
    {"right", anyform, align_right, dir_align},
    {"rm", maytext, 0, dir_font},
    {"rnethelp", anyform, needtarget + 17, dir_link},
    {"sdialog", anyform, notarget + 5, dir_link},
    {"search", anyform, needtarget + 13, dir_link},
    {"search_d", anyform, notarget + 5, dir_link},
    {"sf", maytext, 0, dir_font},
    {"space", onenumber, 0, dir_space},
    {"tab", bare, 0, dir_tab},
    {"text", maytext, style_text, dir_colour},
    {"title", needtext, 0, dir_title},
    {"txt", maytext, style_text, dir_colour},
    {"ufdialog", anyform, notarget + 6, dir_link},
    {"ul", anyform, 0, dir_underline},
    {"update", anyform, maytarget + 16, dir_link},
    {"update_d", anyform, notarget + 6, dir_link},
    {"v6hlp", bare, vmode_v6hlp, dir_mode},
    {"vdialog", anyform, notarget + 7, dir_link},
    {"velmo", anyform, needtarget + 20, dir_link},
    {"view", anyform, needtarget + 18, dir_link},
    {"view_d", anyform, notarget + 7, dir_link},
    {"wh", maytext, style_input, dir_colour},
    {"white", maytext, style_input, dir_colour},
    {"ye", maytext, style_result, dir_colour},
    {"yellow", maytext, style_result, dir_colour},
};

constexpr boolean byname(const dirrow& a, const dirrow& b) { return a.name < b.name; }
static_assert(std::is_sorted(std::begin(directives), std::end(directives), byname), "directives in order of names");

constexpr std::size_t maxname = 13;

const dirrow* finddirective(std::string_view name) {
    if (name.empty() || name.size() > maxname) return nullptr;
    const dirrow sought{name, bare, 0, nullptr};
    const dirrow* row = std::lower_bound(std::begin(directives), std::end(directives), sought, byname);
    return row != std::end(directives) && row->name == name ? row : nullptr;
}

// Splits what stands between the braces.
directive split(std::string_view body) {
    directive d{};
    body = ltrimmed(body);
    std::size_t end = std::min(body.find_first_of(": "), body.size());
    d.name = body.substr(0, end);
    d.rest = body.substr(end);
    std::size_t colon = outside(d.rest, ':', true);
    d.args = d.rest.substr(0, colon);
    d.hastext = colon < d.rest.size();
    if (d.hastext) d.text = d.rest.substr(colon + 1);
    return d;
}

boolean checkform(directive& d, argform form) {
    boolean noargs = trimmed(d.args).empty();
    if (form == bare) return noargs && !d.hastext;
    if (form == maytext) return noargs;
    if (form == needtext) return noargs && d.hastext;
    if (form == anyform) return true;
    return !d.hastext && onlynumber(d.args, d.value) && d.value >= 0 && d.value <= 255;
}

}  // namespace

boolean vtml_directive(vstream* s, std::string_view body) {
    if (s->depth > maxdepth || vtml_tired()) return false;
    directive d = split(body);
    boolean optional = d.name.substr(0, 1) == "?";
    if (optional) d.name.remove_prefix(1);
    if (d.name.empty() || d.name.size() > maxname) return false;
    const dirrow* row = finddirective(d.name);
    if (!row && optional) vtml_inner(s, d.text);
    if (!row) return optional;
    d.value = row->value;
    return checkform(d, row->form) && row->run(s, d);
}

boolean vtml_isdirective(std::string_view text) {
    text = ltrimmed(text);
    return text.substr(0, 1) == "?" || finddirective(text.substr(0, text.substr(0, maxname + 1).find_first_of(": }")));
}

}  // namespace velmo
