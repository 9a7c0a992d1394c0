// Life of a stream, its modes, the marker test and the parser. The parser reads one chunk (what one call wrote) at
// a time; only a directive without its closing brace, and the beginning of a marker, wait for the next chunk.
#include <algorithm>
#include <cstring>
#include <new>
#include "base/columns.h"
#include "base/memalloc.h"
#include "base/poll.h"
#include "base/saved.h"
#include "output/vtmlinternal.h"
#include "output/vtmllines.h"

namespace velmo {

namespace {

constexpr std::string_view marker = "{vtml}\n";
constexpr Int4 measuringlinesize = 254;
constexpr Int4 maxwork = 1 << 22;
constexpr Int4 innerwork = 128;         // what reading the text of a directive counts for

vstream measuring[2];          // enough for {center:} in {right:}; deeper ones are measured by their bytes
Int4 nmeasuring = 0;
Int4 work = 0;                 // see vtml_tired; since the chunk began
UByte morerecord[80];          // the --more-- line; its size is 0 until it is built

void parse(vstream* s, std::string_view text);

// The marker's beginning and a directive that wait for their end will not get it.
void forceheld(vstream* s) {
    std::string_view begun = marker.substr(0, std::size_t(s->matched));
    s->matched = 0;
    parse(s, begun);
    if (s->nheld > 0 && s->mode != vmode_v6hlp) parse(s, "\n");
}

// What is unfinished in the present mode goes out.
void finishline(vstream* s) {
    if (s->mode == vmode_paragraph) word_flush(s, 0);
    if (s->mode == vmode_v6hlp) vtml_helpflush(s);
    if (s->line.n > 0) line_emit(s);
}

void entermode(vstream* s, vmode m) {
    s->mode = m;
    s->newline_on = s->at_mode_start = 1;
    s->link.active = 0;
    s->link.wordend = -1;
    s->word.n = 0;
    line_reset(s);
    s->changes++;
    if (m != vmode_paragraph) return;
    s->lastend = 1;
    s->blanks = 2;
    s->para_lines = 0;
    s->para_blank = 1;
    s->first_indent = s->next_indent = 0;
    s->save_linesize = s->linesize;
    s->blankstate = 0;
}

void asistext(vstream* s, std::string_view text) {
    if (s->at_mode_start && text[0] == '\n') text.remove_prefix(1);
    s->at_mode_start = 0;
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        line_place(s, text.substr(0, end), s->style);
        if (end == std::string_view::npos) return;
        line_emit(s);
        text.remove_prefix(end + 1);
    }
}

// Bytes up to and with the brace that closes the text's first one, given `open` open before; 0 when none does.
std::size_t closing(std::string_view text, Int4& open) {
    for (std::size_t i = 0; i < text.size(); i++) {
        if (text[i] == '{') open++;
        if (text[i] != '}' || --open > 0) continue;
        work += Int4(i);
        return i + 1;
    }
    work += Int4(text.size());
    return 0;
}

// The bytes of the directive that text begins with; 0 when it must be taken as text. The look at its name spares
// long texts full of braces the search for the closing one.
std::size_t directivesize(const vstream* s, std::string_view text) {
    Int4 open = 0;
    if (s->depth > maxdepth || vtml_tired()) return 0;
    if (text.size() >= std::size_t(heldsize) && !vtml_isdirective(text.substr(1))) return 0;
    return closing(text, open);
}

// Reads text with directives, and returns what stands behind a directive that changed the mode.
std::string_view markup(vstream* s, std::string_view text) {
    saved depth(s->depth, s->depth + 1);
    Int4 changes = s->changes;
    while (true) {
        std::size_t brace = text.find('{');
        vtml_plain(s, text.substr(0, brace));
        if (brace == std::string_view::npos) return {};
        text.remove_prefix(brace);
        std::size_t close = directivesize(s, text);
        if (close == 0 && s->depth == 1 && text.back() != '\n' && text.size() < std::size_t(heldsize)) {
            std::memcpy(s->held, text.data(), text.size());
            s->nheld = Int4(text.size());
            return {};
        }
        if (close > 0 && vtml_directive(s, text.substr(1, close - 2))) {
            text.remove_prefix(close);
            if (s->changes != changes) return text;
        } else {
            vtml_place(s, "{", s->style);
            text.remove_prefix(1);
        }
    }
}

// The held directive goes on with `text`; returns what is still to be parsed.
std::string_view joinheld(vstream* s, std::string_view text) {
    char copy[heldsize];
    std::size_t n = std::size_t(s->nheld);
    Int4 open = 0;
    closing({s->held, n}, open);
    std::size_t close = closing(text, open);
    if (close == 0 && text.back() != '\n' && n + text.size() < sizeof copy) {
        std::memcpy(s->held + n, text.data(), text.size());
        s->nheld += Int4(text.size());
        return {};
    }
    std::memcpy(copy, s->held, n);
    s->nheld = 0;
    if (close > 0 && n + close <= sizeof copy) {
        std::memcpy(copy + n, text.data(), close);
        n += close;
        text.remove_prefix(close);
        saved depth(s->depth, s->depth + 1);
        if (vtml_directive(s, {copy + 1, n - 2})) return text;
    }
    vtml_place(s, "{", s->style);
    parse(s, {copy + 1, n - 1});
    return text;
}

// True when a blank line ends a paragraph: the chunk before it ended in a newline too.
boolean endsparagraph(vstream* s, std::string_view text) {
    boolean ends = text.back() == '\n';
    boolean blank = ends && text.find_first_not_of(" \t") == text.size() - 1;
    if (blank && s->blankstate == 10) return true;
    s->blankstate = ends ? 10 : 0;
    return false;
}

// One chunk, by the mode; the rest again when a directive changed that.
void parse(vstream* s, std::string_view text) {
    while (!text.empty()) {
        if (s->mode == vmode_asis) return asistext(s, text);
        if (s->mode == vmode_v6hlp) return vtml_helptext(s, text);
        if (s->nheld > 0) {
            text = joinheld(s, text);
        } else if (s->mode == vmode_paragraph && s->depth == 0 && endsparagraph(s, text)) {
            vstream_setmode(s, vmode_vtml);
            return;
        } else {
            text = markup(s, text);
        }
    }
}

// Words of a paragraph: runs of non-blanks.
void flow(vstream* s, std::string_view text) {
    while (!text.empty()) {
        std::size_t n = std::min(text.find_first_of(" \t\n"), text.size());
        word_add(s, text.substr(0, n), s->style);
        if (n == text.size()) return;
        static const char binding[2] = {bindingblank, bindingblank};
        std::size_t blanks = text[n] == '\t' ? 2 : 1;
        if (s->binding)
            word_add(s, {binding, blanks}, s->style);
        else
            word_blanks(s, Int4(blanks));
        text.remove_prefix(n + 1);
    }
}

Int4 copymore(void*, const UByte* record, Int4 code) {
    std::size_t size = code == vcode_line ? std::size_t(record[0] | record[1] << 8) : sizeof morerecord;
    if (size < sizeof morerecord) std::memcpy(morerecord, record, size);
    return 0;
}

void buildmore() {
    vstream* s = measure_take();
    if (!s) return;
    vstream_setcallback(s, copymore, nullptr);
    vstream_write(s, "{clearmore:{hline 2}more{hline 2}}\n");
    measure_done(s);
}

Int4 addlength(void* data, const UByte* record, Int4 code) {
    if (code == vcode_line) *static_cast<Int4*>(data) += vline_columns(vline_view(record));
    return 0;
}

}  // namespace

void vtml_reset(vstream* s) {
    s->mode = vmode_none;
    s->logs_disabled = 0;
    s->callback = nullptr;
    s->data = nullptr;
    s->linesize = s->save_linesize = 79;
    s->matched = s->nheld = s->depth = s->changes = 0;
    s->style = s->blankstyle = style_text;
    s->can_underline = s->in_more = s->muted = s->skip_nl = s->blankstate = s->binding = s->inlink = 0;
    s->link_default = 20;
    s->morelines = s->morecount = 0;
    s->more_on = 1;
    s->rawlogs.n = s->linelogs.n = s->rawbuf.n = s->linebuf.n = 0;
    entermode(s, vmode_vtml);
}

vstream* measure_take() {
    if (nmeasuring == Int4(std::size(measuring))) return nullptr;
    vstream* s = &measuring[nmeasuring++];
    vtml_reset(s);
    s->depth = 1;
    s->linesize = measuringlinesize;
    s->logs_disabled = 1;
    return s;
}

void measure_done(vstream*) { nmeasuring--; }

Int4 vtml_measure(std::string_view text, UByte can_underline) {
    vstream* s = text.find('{') == std::string_view::npos ? nullptr : measure_take();
    if (!s) return textcolumns(text);
    Int4 width = 0;
    s->can_underline = can_underline;
    vstream_setcallback(s, addlength, &width);
    vstream_write(s, text);
    forceheld(s);
    finishline(s);
    measure_done(s);
    return width;
}

void vtml_inner(vstream* s, std::string_view text) {
    work += innerwork;
    markup(s, text);
}

boolean vtml_tired() { return work > maxwork; }

void vtml_place(vstream* s, std::string_view text, UByte style) {
    if (s->mode == vmode_paragraph)
        word_add(s, text, style);
    else
        line_place(s, text, style);
}

void vtml_newline(vstream* s) {
    boolean dropped = s->skip_nl || !s->newline_on;
    s->skip_nl = 0;
    s->newline_on = 1;
    if (!dropped) line_emit(s);
}

void vtml_plain(vstream* s, std::string_view text) {
    if (s->mode == vmode_paragraph) return flow(s, text);
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::string_view piece = text.substr(0, end);
        for (std::size_t tab; (tab = piece.find('\t')) != std::string_view::npos; piece.remove_prefix(tab + 1)) {
            line_place(s, piece.substr(0, tab), s->style);
            line_tab(s);
        }
        line_place(s, piece, s->style);
        if (end == std::string_view::npos) return;
        vtml_newline(s);
        text.remove_prefix(end + 1);
    }
}

vstream* vstream_new() {
    vstream* s = static_cast<vstream*>(memalloc(sizeof(vstream)));
    if (!s) return nullptr;
    new (s) vstream;
    vtml_reset(s);
    if (morerecord[0] == 0) buildmore();
    return s;
}

void vstream_delete(vstream* s) {
    if (!s) return;
    vstream_flush(s);
    if (s->callback) s->callback(s->data, nullptr, vcode_closing);
    memfree(s);
}

// In a paragraph the right margin stays as it is.
Int4 vstream_setlinesize(vstream* s, Int4 n) {
    n = std::clamp(n, 40, 255);
    if (s->mode == vmode_paragraph) {
        s->linesize = std::max(n - (s->save_linesize - s->linesize), 20);
        s->save_linesize = n;
    } else {
        s->linesize = n;
    }
    return n;
}

Int4 vstream_linesize(const vstream* s) { return s->mode == vmode_paragraph ? s->save_linesize : s->linesize; }

vsize vstream_getsize(const vstream* s) { return {vstream_linesize(s), s->can_underline}; }

void vstream_setsize(vstream* s, vsize size) {
    vstream_setlinesize(s, size.linesize);
    s->can_underline = size.can_underline;
}

void vstream_setunderline(vstream* s, boolean on) { s->can_underline = on; }

void vstream_setcallback(vstream* s, vcallback fn, void* data) {
    s->callback = fn;
    s->data = data;
}

void vstream_setmode(vstream* s, vmode m) {
    forceheld(s);
    vmode old = s->mode;
    finishline(s);
    if (old == vmode_paragraph) {
        if (s->para_blank) line_emit(s);
        s->linesize = s->save_linesize;
    }
    entermode(s, m);
    s->skip_nl = old == vmode_paragraph && m == vmode_vtml && !s->para_blank;
}

vmode vstream_mode(const vstream* s) { return s->mode; }
void vstream_setmuted(vstream* s, boolean muted) { s->muted = muted; }

// The marker stands only at the end of a chunk, and may come in pieces.
void vstream_write(vstream* s, std::string_view text) {
    if (text.empty()) return;
    s->unshown = 1;
    if (nmeasuring == 0) work = 0;
    log_raw(s, text);
    std::size_t before = std::size_t(s->matched);
    if (before > 0 && marker.substr(before).substr(0, text.size()) == text) {
        s->matched += Int4(text.size());
    } else {
        std::size_t tail = std::min(text.size(), marker.size());
        while (text.substr(text.size() - tail) != marker.substr(0, tail)) tail--;
        s->matched = 0;
        parse(s, marker.substr(0, before));
        parse(s, text.substr(0, text.size() - tail));
        s->matched = Int4(tail);
    }
    if (s->matched == Int4(marker.size())) {
        s->matched = 0;
        vstream_setmode(s, vmode_vtml);
    }
}

void vstream_text(vstream* s, std::string_view text) {
    if (s->mode == vmode_asis || s->mode == vmode_v6hlp) return vstream_write(s, text);
    while (!text.empty()) {
        std::size_t open = text.find('{'), brace = std::min(text.substr(0, open).find('}'), open);
        vstream_write(s, text.substr(0, brace));
        if (brace == std::string_view::npos) return;
        vstream_write(s, text[brace] == '{' ? "{c -(}" : "{c )-}");
        text.remove_prefix(brace + 1);
    }
}

namespace {

void feed(Int4& state, vstream* s, std::string_view text, void (*write)(vstream*, std::string_view)) {
    while (!text.empty()) {
        if (state && text[0] == '\n') text.remove_prefix(1);
        state = 0;
        std::size_t lf = text.find('\n'), end = std::min(text.substr(0, lf).find('\r'), lf);
        if (end == std::string_view::npos) return write(s, text);
        if (text[end] == '\n') {
            write(s, text.substr(0, end + 1));
        } else {
            write(s, text.substr(0, end));
            write(s, "\n");
            state = 1;
        }
        text.remove_prefix(end + 1);
    }
}

}  // namespace

void vstream_feed(Int4& state, vstream* s, std::string_view text) { feed(state, s, text, vstream_write); }
void vstream_feedtext(Int4& state, vstream* s, std::string_view text) { feed(state, s, text, vstream_text); }

void vstream_flush(vstream* s) {
    forceheld(s);
    finishline(s);
    if (s->callback) s->callback(s->data, nullptr, vcode_flush);
    log_flush(s);
}

void vstream_partial(vstream* s) {
    if (!s->unshown) return;
    s->unshown = 0;
    if (s->callback) {
        if (s->line.n > 0) {
            if (s->link.entry >= 0) s->line.links[s->link.entry + 1] = UByte(s->line.n);
            s->callback(s->data, line_record(s), vcode_partial);
        }
        s->callback(s->data, nullptr, vcode_flush);
    }
    log_flush(s);
}

// A colour directive as vstream_write would read it, but without its way through the parser when nothing waits.
void vstream_setcolor(vstream* s, UByte colour) {
    static const char* const directives[6] = {nullptr, "{res}", "{txt}", nullptr, "{err}", "{com}"};
    if (s->mode == vmode_asis || s->mode == vmode_v6hlp) return;
    if (colour >= std::size(directives) || !directives[colour]) return;
    boolean holds = vstream_holds(s);
    if (!holds && s->word.n == 0 && (s->style & style_colour) == colour) return;
    if (holds) return vstream_write(s, directives[colour]);
    log_raw(s, directives[colour]);
    s->style = UByte((s->style & ~style_colour) | colour);
    s->blankstate = 0;
}

boolean vstream_holds(const vstream* s) { return s->nheld > 0 || s->matched > 0; }
boolean vstream_atstart(const vstream* s) { return s->line.n == 0 && s->word.n == 0; }
UByte vstream_style(const vstream* s) { return s->style; }

Int4 vstream_more(vstream* s) {
    if (!s->callback || s->muted || !s->more_on || morerecord[0] == 0) return 0;
    s->in_more = 1;
    Int4 key = s->callback(s->data, morerecord, vcode_more);
    s->in_more = 0;
    boolean oneline = key == 10 || key == 13 || key == 'l';
    s->morecount = oneline ? s->morelines : 0;
    if (key != 3 && key != 'q') return key;
    breakpending = breakswitch;
    return 'q';
}

void vstream_setmore(vstream* s, boolean on) { s->more_on = on; }
void vstream_setpage(vstream* s, Int4 lines) { s->morelines = lines; }
void vstream_clearpage(vstream* s) { s->morecount = 0; }

}  // namespace velmo
