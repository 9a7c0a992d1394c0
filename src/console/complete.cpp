#include "console/complete.h"
#include <algorithm>
#include <cctype>
#include "base/platform.h"
#include "base/state.h"
#include "core/adopath.h"
#include "core/commands.h"
#include "core/memory.h"
#include "core/objects.h"
#include "data/dataset.h"
#include "language/commandnames.h"

namespace velmo {

namespace {

constexpr std::string_view blanks = " \t";

boolean begins(std::string_view s, std::string_view beginning) { return s.substr(0, beginning.size()) == beginning; }

Int4 flagsof(std::string_view word) {
    const command* row = commandrow_any(std::string(word).c_str());
    return row ? row->flags : 0;
}

std::vector<std::string_view> split(std::string_view s) {
    std::vector<std::string_view> words;
    while (true) {
        std::size_t from = s.find_first_not_of(blanks);
        if (from == s.npos) return words;
        s.remove_prefix(from);
        std::size_t n = std::min(s.find_first_of(blanks), s.size());
        words.push_back(s.substr(0, n));
        s.remove_prefix(n);
    }
}

// The words of a command behind its prefixes (`by a: quietly`); a colon counts behind a prefix only.
std::vector<std::string_view> commandwords(std::string_view head) {
    std::vector<std::string_view> words = split(head);
    while (!words.empty()) {
        std::size_t colon = head.find(':');
        Int4 flags = flagsof(words[0].substr(0, words[0].find(':')));
        if (!(flags & cmd_prefix)) break;
        if (colon != head.npos) {
            head.remove_prefix(colon + 1);
            words = split(head);
        } else if (flags & cmd_colon) {
            break;
        } else {
            words.erase(words.begin());
        }
    }
    return words;
}

// Names that begin with two underscores are temporary or the system's own.
void addvariables(std::string_view word, completion& c) {
    for (Int4 v = 0; v < nvar; v++) {
        std::string_view name = varlist[v];
        boolean hidden = name[0] == '(' || (begins(name, "__") && !begins(word, "__"));
        if (!hidden && begins(name, word)) c.words.emplace_back(name);
    }
}

void addfiles(std::string_view word, completion& c) {
    std::size_t slash = word.rfind('/');
    std::string typedfolder(word.substr(0, slash == word.npos ? 0 : slash + 1)), folder = typedfolder;
    std::string_view beginning = word.substr(typedfolder.size());
    if (folder.empty()) folder = "./";
    if (begins(folder, "~/")) folder = homedir() + folder.substr(1);
    std::vector<std::string> names;
    listdir(folder.c_str(), names);
    c.files = true;
    for (const std::string& name : names) {
        if (!begins(name, beginning) || (name[0] == '.' && beginning.empty())) continue;
        boolean isfolder = filestat((folder + name).c_str()).isdirectory;
        c.words.push_back(typedfolder + name + (isfolder ? "/" : ""));
    }
}

std::size_t identifierstart(std::string_view s) {
    std::size_t i = s.size();
    while (i > 0 && (std::isalnum(UByte(s[i - 1])) || s[i - 1] == '_' || UByte(s[i - 1]) > 127)) i--;
    return i;
}

}  // namespace

void completionsof(std::string_view before, completion& c) {
    c = {};
    c.quoted = std::count(before.begin(), before.end(), '"') % 2 == 1;
    if (c.quoted) {
        c.from = before.rfind('"') + 1;
        addfiles(before.substr(c.from), c);
        return;
    }
    std::size_t blank = before.find_last_of(blanks), wordfrom = blank == before.npos ? 0 : blank + 1;
    std::size_t namefrom = identifierstart(before);
    std::vector<std::string_view> words = commandwords(before.substr(0, wordfrom));
    if (!words.empty() && (words.back() == "using" || (words.size() == 1 && (flagsof(words[0]) & cmd_filename)))) {
        c.from = wordfrom;
        addfiles(before.substr(wordfrom), c);
    } else if (c.from = namefrom; commandwords(before.substr(0, namefrom)).empty()) {
        if (namefrom < before.size()) commandnames(before.substr(namefrom), c.words);
    } else {
        addvariables(before.substr(namefrom), c);
    }
    std::sort(c.words.begin(), c.words.end());
    c.words.erase(std::unique(c.words.begin(), c.words.end()), c.words.end());
}

// Never ends within a character of several bytes.
std::string commonbeginning(const completion& c) {
    if (c.words.empty()) return "";
    std::string_view first = c.words.front(), last = c.words.back();
    std::size_t n = 0;
    while (n < first.size() && n < last.size() && first[n] == last[n]) n++;
    while (n > 0 && n < first.size() && (UByte(first[n]) & 0xC0) == 0x80) n--;
    return std::string(first.substr(0, n));
}

}  // namespace velmo
