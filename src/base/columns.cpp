#include "base/columns.h"
#include <algorithm>
#include <clocale>
#include <cstring>
#include <cwchar>
#include <langinfo.h>

namespace velmo {

namespace {

boolean continues(char c) { return (UByte(c) & 0xC0) == 0x80; }

// Bytes of the sequence that a byte above 127 begins; 0 when it begins none.
Int4 sequencelength(UByte lead) { return lead < 0xC2 || lead > 0xF4 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4; }

std::string blanks(std::string_view text, Int4 n) {
    return std::string(std::size_t(std::max(n - textcolumns(text), 0)), ' ');
}

}  // namespace

boolean utf8locale() {
    static const boolean is = std::setlocale(LC_CTYPE, "") && std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0;
    return is;
}

boolean isascii(std::string_view text) {
    std::size_t i = 0;
    for (std::uint64_t eight; i + 8 <= text.size(); i += 8) {
        std::memcpy(&eight, text.data() + i, 8);
        if (eight & 0x8080808080808080u) return false;
    }
    for (; i < text.size(); i++)
        if (UByte(text[i]) > 127) return false;
    return true;
}

Int4 decodeutf8(std::string_view text, Int4& code) {
    UByte lead = UByte(text[0]);
    code = lead;
    if (lead < 128) return 1;
    Int4 n = sequencelength(lead);
    if (n == 0 || text.size() < std::size_t(n)) return 0;
    code = lead & (0x7F >> n);
    for (Int4 i = 1; i < n; i++) {
        if (!continues(text[std::size_t(i)])) return 0;
        code = code << 6 | (UByte(text[std::size_t(i)]) & 63);
    }
    boolean overlong = (n == 3 && code < 0x800) || (n == 4 && code < 0x10000);
    return overlong || (code >= 0xD800 && code < 0xE000) || code > 0x10FFFF ? 0 : n;
}

void appendutf8(std::string& out, Int4 code) {
    if (code < 0x80) {
        out += char(code);
        return;
    }
    Int4 more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    out += char(more == 1 ? 0xC0 | code >> 6 : more == 2 ? 0xE0 | code >> 12 : 0xF0 | code >> 18);
    while (more-- > 0) out += char(0x80 | (code >> 6 * more & 63));
}

textchar charat(std::string_view text) {
    Int4 code, n;
    if (UByte(text[0]) < 128) return {1, 1, text[0]};
    if (!utf8locale() || (n = decodeutf8(text, code)) == 0) return {1, 1, -1};
    if (code < 0xA0) return {n, n, code};
    Int4 columns = wcwidth(wchar_t(code));
    return {n, columns < 0 ? 1 : columns, code};       // a character that the library doesn't know yet
}

Int4 textcolumns(std::string_view text) {
    if (isascii(text)) return Int4(text.size());
    Int4 n = 0;
    while (!text.empty()) {
        textchar c = charat(text);
        n += c.columns;
        text.remove_prefix(std::size_t(c.bytes));
    }
    return n;
}

std::size_t bytesin(std::string_view text, Int4 n) {
    std::size_t bytes = 0;
    std::size_t most = std::size_t(std::max(n, 0));
    if (isascii(text.substr(0, most + 1))) return std::min(text.size(), most);
    while (bytes < text.size()) {
        textchar c = charat(text.substr(bytes));
        if (c.columns > n) break;
        n -= c.columns;
        bytes += std::size_t(c.bytes);
    }
    return bytes;
}

Int4 unfinishedbytes(std::string_view text) {
    Int4 n = 0;
    while (n < 3 && n < Int4(text.size()) && continues(text[text.size() - 1 - std::size_t(n)])) n++;
    if (n == Int4(text.size()) || !utf8locale()) return 0;
    return sequencelength(UByte(text[text.size() - 1 - std::size_t(n)])) > n + 1 ? n + 1 : 0;
}

std::string leftjustified(std::string_view text, Int4 n) { return std::string(text) + blanks(text, n); }
std::string rightjustified(std::string_view text, Int4 n) { return blanks(text, n) + std::string(text); }

}  // namespace velmo
