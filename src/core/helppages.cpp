#include "core/helppages.h"
#include <algorithm>
#include "base/text.h"
#include "core/adopath.h"
#include "core/commands.h"
#include "core/settings.h"
#include "core/webfile.h"

namespace velmo {

UByte loghelp = 0;

namespace {

constexpr std::string_view marker = "{vtml}\n", entrymark = "{* entry: ", endmark = "{* end}",
                           keywordsmark = "\n{* keywords:", contents = "velmo";

// Commands that are told of on another's page.
constexpr std::string_view shared[][2] = {
    {"bysort", "by"},         {"else", "if"},           {"break", "nobreak"},     {"cat", "type"},
    {"chdir", "cd"},          {"pwd", "cd"},            {"cp", "copy"},           {"ls", "dir"},
    {"keep", "drop"},         {"replace", "generate"},  {"decode", "encode"},     {"move", "order"},
    {"markout", "mark"},      {"marksample", "mark"},   {"restore", "preserve"},  {"post", "postfile"},
    {"postclose", "postfile"}, {"run", "do"},           {"noisily", "quietly"},   {"sreturn", "return"},
    {"global", "local"},      {"macro", "local"},       {"c_local", "local"},     {"tempname", "tempvar"},
    {"tempfile", "tempvar"},  {"query", "set"},         {"xshell", "shell"},      {"man", "help"},
    {"HELPCHK", "help"},      {"lookup", "search"},     {"showpoint", "debug"},   {"_repart", "debug"},
    {"mat_put_rr", "estimates"}, {"_matcell", "_matrows"}, {"_predict", "predict"},
    {"regres_p", "predict"},  {"regriv_p", "predict"},  {"logit_p", "predict"},   {"probit_p", "predict"},
    {"probit", "logit"},      {"mlsum", "mleval"},      {"mlvecsum", "mleval"},   {"mlmatsum", "mleval"},
    {"_mlmatbysum", "mleval"},
};

// Pages that hold entries.
constexpr std::string_view entrypages[] = {
    "mathfunctions", "textfunctions", "datefunctions", "randomfunctions", "specialfunctions", "operators",
    "matrixfunctions", "macrofunctions", "settings", "directives", "codes", "egen",
};

boolean hasfile(const std::string& page, helpplace& place) {
    boolean plain = std::all_of(page.begin(), page.end(), [](char c) { return isnamechar(c) || c == '-'; });
    if (page.empty() || !plain || !pathsearch(page, ".hlp", 1)) return false;
    place = {page, usingname, ""};
    return true;
}

boolean haspage(std::string_view name, helpplace& place) {
    if (hasfile(std::string(name), place)) return true;
    for (const auto& row : shared)
        if (name == row[0]) return hasfile(std::string(row[1]), place);
    return false;
}

// The names of the entry that begins with this line; false when none does.
boolean entrynames(std::string_view line, std::vector<std::string_view>& names) {
    names.clear();
    if (!line.starts_with(entrymark)) return false;
    line.remove_prefix(entrymark.size());
    line = line.substr(0, line.find('}'));
    while (!line.empty()) {
        std::size_t comma = std::min(line.find(", "), line.size());
        names.push_back(trimmed(line.substr(0, comma)));
        line.remove_prefix(std::min(comma + 2, line.size()));
    }
    return true;
}

std::string_view takeline(std::string_view& text) {
    std::size_t n = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, n);
    text.remove_prefix(std::min(n + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

// The page's text as far as it tells of the entry; empty when it has none of that name.
std::string_view entrytext(std::string_view page, std::string_view entry) {
    std::vector<std::string_view> names;
    const char* begin = nullptr;
    while (!page.empty()) {
        std::string_view line = takeline(page);
        boolean isentry = entrynames(line, names);
        if (begin && (isentry || line.starts_with(endmark))) return {begin, std::size_t(line.data() - begin)};
        if (isentry && std::find(names.begin(), names.end(), entry) != names.end()) begin = page.data();
    }
    return begin ? std::string_view(begin, std::size_t(page.data() - begin)) : std::string_view();
}

Int4 readpage(const std::string& path, std::string& text) {
    static bytereader r;
    text.clear();
    Int4 handle = webopen(path, web_textread | web_local);
    if (handle < 0) return -handle;
    reader_start(r, handle);
    while (reader_fill(r) < read_eof) text.append(reinterpret_cast<const char*>(r.buf), std::size_t(r.len));
    webclose(handle);
    return r.failed ? readfailure() : 0;
}

boolean hasentry(const std::string& name, helpplace& place) {
    std::string text;
    for (std::string_view page : entrypages) {
        if (!hasfile(std::string(page), place) || readpage(place.path, text)) continue;
        if (entrytext(text, name).empty()) continue;
        place.entry = name;
        return true;
    }
    return false;
}

// `log(x)` as `log()`; the setting that a word abbreviates in full.
std::string entryname(std::string_view name) {
    std::size_t open = name.find('(');
    if (open != name.npos && name.ends_with(')')) return std::string(name.substr(0, open)) + "()";
    std::string_view word = name.starts_with("set ") ? trimmed(name.substr(4)) : name;
    const setting* row = settingrow(word);
    return row ? std::string("set ") + row->word : "";
}

}  // namespace

boolean findhelp(std::string_view typed, helpplace& place) {
    std::string name(trimmed(typed));
    if (name.empty()) name = contents;
    if (haspage(name, place) || hasentry(name, place)) return true;
    if (const char* full = builtinname(name.c_str()); full && haspage(full, place)) return true;
    if (std::string entry = entryname(name); !entry.empty() && hasentry(entry, place)) return true;
    std::size_t blank = name.find(' ');
    return blank != name.npos && findhelp(name.substr(0, blank), place);
}

std::vector<std::string> helpnames() {
    std::vector<std::string> names;
    pathnames("", ".hlp", names);
    for (const auto& row : shared) names.emplace_back(row[0]);
    helpplace place;
    std::string text;
    std::vector<std::string_view> entries;
    for (std::string_view page : entrypages) {
        if (!hasfile(std::string(page), place) || readpage(place.path, text)) continue;
        for (std::string_view rest = text; !rest.empty();)
            if (entrynames(takeline(rest), entries)) names.insert(names.end(), entries.begin(), entries.end());
    }
    return names;
}

std::vector<std::string> helpabout(std::string_view word) {
    std::vector<std::string> pages, found;
    pathnames("", ".hlp", pages);
    helpplace place;
    std::string text;
    for (const std::string& page : pages) {
        if (!hasfile(page, place) || readpage(place.path, text)) continue;
        std::size_t mark = text.rfind(keywordsmark);
        if (mark == text.npos) continue;
        std::string keywords = text.substr(mark + keywordsmark.size());
        for (char& c : keywords) c = isletter(c) || isdigit(c) || c == '-' ? lowerchar(c) : ' ';
        if (keywords.find(" " + std::string(word) + " ") != keywords.npos) found.push_back(page);
    }
    return found;
}

boolean ismarkup(std::string_view text) { return takeline(text) == marker.substr(0, marker.size() - 1); }

Int4 helptext(const helpplace& place, std::string& text) {
    if (Int4 rc = readpage(place.path, text)) return rc;
    if (!ismarkup(text)) return 0;
    if (place.entry.empty())
        text.resize(std::min(text.size(), text.rfind(keywordsmark)));
    else
        text = std::string(marker) + std::string(entrytext(text, place.entry));
    while (text.ends_with('\n')) text.pop_back();
    text += '\n';
    return 0;
}

}  // namespace velmo
