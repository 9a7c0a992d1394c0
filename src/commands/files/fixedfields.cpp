// The reader of observations by a field table.
#include "commands/files/fixedfields.h"
#include <algorithm>
#include "base/text.h"
#include "commands/files/dictionary.h"
#include "commands/files/textrows.h"
#include "output/errors.h"

namespace velmo {

namespace {

constexpr Int4 longesttoken = 262;

// A field with what its variable's cell needs.
struct placedfield {
    textfield field;
    rowcell cell;
    boolean number;           // a numeric field of a numeric variable: blanks go, a point may be implied
};

struct fieldreading {
    std::vector<placedfield> fields;
    Int4 linesperobs;
    char cleaned[2 * numbermargin + textlinesize + 64];      // a number without blanks, with its point
};

// A token from pos on: to the closing quote or the next blank; pos goes behind it.
std::string_view tokenat(std::string_view line, std::size_t& pos) {
    while (pos < line.size() && line[pos] == ' ') pos++;
    if (pos >= line.size()) return {};
    char quote = line[pos] == '"' || line[pos] == '\'' ? line[pos++] : char(0);
    std::size_t end = std::min(line.find(quote ? quote : ' ', pos), line.size());
    end = std::min(end, pos + longesttoken);
    std::string_view text = line.substr(pos, end - pos);
    pos = quote && end < line.size() && line[end] == quote ? end + 1 : end;
    return text;
}

std::string_view columnsat(std::string_view line, std::size_t& pos, Int4 width) {
    if (pos >= line.size()) return {};
    std::string_view text = line.substr(pos, std::size_t(width));
    pos += text.size();
    return text;
}

// A text of digits, perhaps with a sign, gets a point `decimals` digits from the right.
char* putpoint(char* begin, char* end, Int4 decimals) {
    char* digits = begin + (begin < end && (*begin == '-' || *begin == '+'));
    if (digits == end || !std::all_of(digits, end, isdigit)) return end;
    Int4 zeros = std::max(decimals - Int4(end - digits), 0);
    std::move_backward(digits, end, end + zeros);
    std::fill(digits, digits + zeros, '0');
    end += zeros;
    std::move_backward(end - decimals, end, end + 1);
    end[-decimals] = '.';
    return end + 1;
}

// A number's field in columns: blanks within go, and the implied point is put.
std::string_view numbertext(fieldreading& r, std::string_view text, Int4 decimals) {
    if (!decimals && text.find(' ') == std::string_view::npos) return text;
    char *begin = r.cleaned + numbermargin, *end = begin;
    for (char c : text)
        if (c != ' ') *end++ = c;
    if (decimals) end = putpoint(begin, end, decimals);
    return {begin, std::size_t(end - begin)};
}

// One field of the line in hand, from `pos` on where it has no column: 0 or a code.
Int4 readfield(fieldreading& r, const placedfield& f, std::string_view line, std::size_t& pos, Int4 obs) {
    if (f.field.column >= 0) pos = std::size_t(f.field.column);
    pos += std::size_t(f.field.skip);
    if (pos >= std::size_t(textlinesize)) return error(611);
    std::string_view text = f.field.width ? columnsat(line, pos, f.field.width) : tokenat(line, pos);
    text = trimmed(text);
    if (f.number) text = numbertext(r, text, f.field.decimals);
    return rows_text(f.cell, text, false, obs);
}

// The lines behind the first up to line `to`.
Int4 passlines(linereader& lines, Int4& line, Int4 to) {
    for (; line < to; line++)
        if (Int4 rc = lines_next(lines)) return rc;
    return 0;
}

// What the end of the file leaves out is missing; the observation stays, with a message.
Int4 cutshort(const fieldreading& r, std::size_t from) {
    for (std::size_t i = from; i < r.fields.size(); i++) rows_clearcell(r.fields[i].cell);
    if (Int4 rc = rows_add()) return rc;
    return error(612);
}

// One observation: 0, lines_atend, or a code.
Int4 readobservation(linereader& lines, fieldreading& r, Int4 obs) {
    if (Int4 rc = lines_next(lines)) return rc;
    Int4 line = 1;
    std::size_t pos = 0;
    for (std::size_t i = 0; i < r.fields.size(); i++) {
        const placedfield& f = r.fields[i];
        if (line < f.field.line) pos = 0;
        Int4 rc = passlines(lines, line, f.field.line);
        if (rc == lines_atend) return cutshort(r, i);
        if (rc || (rc = readfield(r, f, lines.line(), pos, obs))) return rc;
    }
    Int4 rc = passlines(lines, line, r.linesperobs);
    if (rc > 0) return rc;
    return rows_add();
}

// Passes over n lines, or so many of them as there are.
Int4 droplines(linereader& lines, std::int64_t n) {
    Int4 rc = 0;
    while (n-- > 0 && !rc) rc = lines_next(lines);
    return rc;
}

}  // namespace

Int4 readfields(linereader& lines, const fieldtable& table, Int4 first, Int4 last) {
    static fieldreading r;
    r.linesperobs = table.lines;
    r.fields.clear();
    for (const textfield& f : table.fields) {
        rowcell cell = rows_cell(f.var);
        r.fields.push_back({f, cell, !isstringtype(cell.type) && f.letter == 'f' && f.width > 0});
    }
    std::int64_t ahead = std::max(table.firstline, 1) - 1;
    Int4 rc = droplines(lines, ahead + (std::int64_t(first) - 1) * table.lines);
    for (Int4 obs = first; obs <= last && !rc; obs++) rc = readobservation(lines, r, obs);
    return std::max(rc, 0);
}

}  // namespace velmo
