// Log sets. A write that fails clears the file's alive byte: the file stays attached and receives nothing more.
#include "output/vtmllogs.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include "base/platform.h"
#include "output/vtmlinternal.h"
#include "output/vtmllines.h"

namespace velmo {

namespace {

constexpr Int4 maxlogs = 5;

void writeall(vlogset& set, const void* bytes, std::size_t n) {
    for (Int4 i = 0; i < set.n; i++)
        if (set.alive[i] && !filewrite(set.file[i], bytes, n)) set.alive[i] = 0;
}

void flush(vlogset& set, vlogbuffer& buf) {
    if (buf.n > 0) writeall(set, buf.text, std::size_t(buf.n));
    buf.n = 0;
}

void append(vlogset& set, vlogbuffer& buf, std::string_view bytes) {
    if (bytes.size() > sizeof buf.text - std::size_t(buf.n)) flush(set, buf);
    if (bytes.size() > sizeof buf.text) {
        writeall(set, bytes.data(), bytes.size());
        return;
    }
    std::memcpy(buf.text + buf.n, bytes.data(), bytes.size());
    buf.n += Int4(bytes.size());
}

Int4 position(const vlogset& set, Int4 file) {
    return Int4(std::find(set.file, set.file + set.n, file) - set.file);
}

void drop(vlogset& set, Int4 at) {
    std::copy(set.file + at + 1, set.file + set.n, set.file + at);
    std::copy(set.alive + at + 1, set.alive + set.n, set.alive + at);
    set.n--;
}

// What the logs of the set have not yet got is written out before a file joins or leaves, unless it is re-added.
boolean change(vstream* s, vlogset& set, vlogbuffer& buf, Int4 file, Int4 how) {
    if (how != 1) {
        Int4 at = position(set, file);
        if (at == set.n) return true;
        if (how == 2) flush(set, buf);
        drop(set, at);
        if (how == 2) return false;
    }
    if (set.n == maxlogs || s->logs_disabled) return true;
    if (how == 1) flush(set, buf);
    set.file[set.n] = file;
    set.alive[set.n++] = 1;
    return false;
}

// What a raw log needs ahead of the first text, so that it shows as it does here.
void writeheader(vstream* s) {
    static const char* const colours[8] = {"{txt}", "{res}", "{txt}", "{txt}", "{err}", "{com}", "{txt}", "{hi}"};
    UByte style = s->line.n == 0 && s->word.n > 0 ? s->word.style[0] : s->style;
    char text[200];
    const char* font = style & style_italic ? "{it}" : style & style_bold ? "{bf}" : "{sf}";
    Int4 n = std::snprintf(text, sizeof text, "{vtml}\r\n%s%s%s", colours[style & style_colour], font,
                           style & style_underline ? "{ul on}" : "{ul off}");
    char* rest = text + n;
    std::size_t left = sizeof text - std::size_t(n);
    if (s->mode == vmode_paragraph)
        std::snprintf(rest, left, "{p %d %d %d}\r\n", s->first_indent, s->next_indent, s->save_linesize - s->linesize);
    else if (s->mode == vmode_asis)
        std::snprintf(rest, left, "{asis}\r\n");
    else if (s->mode == vmode_v6hlp)
        std::snprintf(rest, left, "{v6hlp}\r\n");
    vlogset last{1, {s->rawlogs.file[s->rawlogs.n - 1]}, {1}};
    writeall(last, text, std::strlen(text));
    s->rawlogs.alive[s->rawlogs.n - 1] = last.alive[0];
}

}  // namespace

boolean vstream_lograw(vstream* s, Int4 file, Int4 how) {
    if (change(s, s->rawlogs, s->rawbuf, file, how)) return true;
    if (how != 2) writeheader(s);
    return false;
}

boolean vstream_logline(vstream* s, Int4 file, Int4 how) { return change(s, s->linelogs, s->linebuf, file, how); }

// The bytes as written; a newline at the end of what is written becomes CR LF.
void log_raw(vstream* s, std::string_view text) {
    if (s->rawlogs.n == 0) return;
    boolean ends = !text.empty() && text.back() == '\n';
    append(s->rawlogs, s->rawbuf, ends ? text.substr(0, text.size() - 1) : text);
    if (ends) append(s->rawlogs, s->rawbuf, "\r\n");
}

void log_line(vstream* s) {
    const vline& l = s->line;
    char text[258];
    std::memcpy(text, l.text, std::size_t(l.n));
    for (Int4 i = 0, start = 0; i < l.nruns; start = l.runend[i++])
        for (Int4 c = start; (l.runstyle[i] & style_graphic) && c < l.runend[i]; c++)
            text[c] = plaingraphic(UByte(text[c]));
    text[l.n] = '\r';
    text[l.n + 1] = '\n';
    append(s->linelogs, s->linebuf, {text, std::size_t(l.n) + 2});
}

void log_flush(vstream* s) {
    flush(s->rawlogs, s->rawbuf);
    flush(s->linelogs, s->linebuf);
}

}  // namespace velmo
