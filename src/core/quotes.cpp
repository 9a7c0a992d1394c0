#include "core/quotes.h"
#include <algorithm>
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

boolean nextitem(std::string_view& list, std::string_view& item, boolean atquotes) {
    list = ltrimmed(list);
    if (list.empty()) return false;
    quoted q;
    if (!readquoted(list, q)) {
        q.length = std::min(list.find_first_of(atquotes ? " \"" : " "), list.size());
        if (atquotes && q.length > 1 && list.substr(q.length - 1, 2) == "`\"") q.length--;
        q.content = list.substr(0, q.length);
    }
    item = q.content;
    list.remove_prefix(q.length);
    return true;
}

boolean nextpiece(std::string_view& text, std::string_view breaks, quoted& out) {
    text = ltrimmed(text);
    if (text.empty()) return false;
    if (!readquoted(text, out)) {
        out.length = std::max<std::size_t>(std::min(text.find_first_of(breaks), text.size()), 1);
        out.content = text.substr(0, out.length);
    }
    text.remove_prefix(out.length);
    return true;
}

std::size_t behindquote(std::string_view text, std::size_t i) {
    quoted q;
    return readquoted(text.substr(i), q) ? i + q.length : i + 1;
}

std::size_t matchingend(std::string_view text) {
    Int4 depth = 0;
    for (std::size_t i = 0; i < text.size(); i = behindquote(text, i)) {
        depth += text[i] == '(' || text[i] == '[';
        depth -= text[i] == ')' || text[i] == ']';
        if (depth == 0) return i + 1;
    }
    return 0;
}

std::string_view unquoted(std::string_view text) {
    text = trimmed(text);
    quoted q;
    return readquoted(text, q) && q.closed && q.length == text.size() ? q.content : text;
}

boolean takeouterquotes(std::string_view& text) {
    std::size_t width = text.substr(0, 1) == "\"" ? 1 : text.substr(0, 2) == "`\"" ? 2 : 0;
    std::string_view close = width == 1 ? "\"" : "\"'";
    if (width && (text.size() < 2 * width || text.substr(text.size() - width) != close)) return false;
    text = text.substr(width, text.size() - 2 * width);
    return true;
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
