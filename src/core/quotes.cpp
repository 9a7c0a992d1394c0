#include "core/quotes.h"
#include "base/text.h"

namespace velmo {

boolean readquoted(std::string_view text, quoted& out) {
    boolean compound = text.substr(0, 2) == "`\"";
    if (!compound && text.substr(0, 1) != "\"") return false;
    std::size_t begin = compound ? 2 : 1, width = begin, p = begin;
    for (Int4 level = 1; p < text.size(); p++) {
        if (!compound && text[p] == '"') break;
        std::string_view pair = compound ? text.substr(p, 2) : std::string_view();
        if (pair == "\"'" && --level == 0) break;
        if (pair == "`\"") level++;
        p += pair == "\"'" || pair == "`\"";
    }
    if (p > text.size()) p = text.size();
    out.closed = p < text.size();
    out.content = text.substr(begin, p - begin);
    out.length = out.closed ? p + width : p;
    return true;
}

std::string_view unquoted(std::string_view text) {
    std::string_view whole = trimmed(text);
    quoted q;
    return readquoted(whole, q) && q.closed && q.length == whole.size() ? q.content : text;
}

std::string escaped(std::string_view text) {
    std::string out;
    for (char c : text) {
        if (c == '$' || c == '`' || c == '\\') out += '\\';
        out += c;
    }
    return out;
}

}  // namespace velmo
