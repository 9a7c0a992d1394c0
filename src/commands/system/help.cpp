// help, HELPCHK and search: pages of help, shown, looked for, followed by their links.
#include <algorithm>
#include <string>
#include <vector>
#include "base/frontend.h"
#include "base/poll.h"
#include "base/saved.h"
#include "base/text.h"
#include "core/helppages.h"
#include "core/quotes.h"
#include "core/tokenizer.h"
#include "language/commandnames.h"
#include "language/dofile.h"
#include "output/errors.h"
#include "output/logs.h"
#include "output/print.h"
#include "output/results.h"
#include "output/vtmllines.h"

namespace velmo {

namespace {

constexpr UByte link_help = 12, link_search = 13;

struct helplink {
    UByte type;
    std::string target;
    boolean operator==(const helplink&) const = default;
};
std::vector<helplink> lastlinks;       // of the page shown last, as `help #` counts them

// ---- The links of a page, as the markup engine finds them.

Int4 takelinks(void* data, const UByte* record, Int4 code) {
    auto& links = *static_cast<std::vector<helplink>*>(data);
    if (code != vcode_line) return 0;
    const UByte* at = vline_view(record).links;
    for (Int4 n = *at++; n > 0; n--, at += 4 + at[3]) {
        helplink link = {at[2], reinterpret_cast<const char*>(at + 4)};
        boolean known = std::find(links.begin(), links.end(), link) != links.end();
        boolean plain = link.target.find_first_of("{}:") == link.target.npos;
        if (plain && !known && (link.type == link_help || link.type == link_search)) links.push_back(link);
    }
    return 0;
}

// Old text begins in its mode, which ends with the marker.
std::string_view modeof(std::string_view text) { return ismarkup(text) ? "" : "{v6hlp}\n"; }

std::vector<helplink> linksof(const helpplace& place, std::string_view text) {
    std::vector<helplink> links;
    vstream* s = vstream_new();
    if (!s) return links;
    vstream_setcallback(s, takelinks, &links);
    vstream_write(s, modeof(text));
    Int4 state = 0;
    vstream_feed(state, s, text);
    vstream_delete(s);
    if (!place.entry.empty()) links.push_back({link_help, place.page});
    std::erase(links, helplink{link_help, place.entry.empty() ? place.page : place.entry});
    return links;
}

Int4 showlinks() {
    if (lastlinks.empty()) return 0;
    prtraw("\n{txt}{p 0 7}\nlinks:\n");
    Int4 n = 0;
    for (const auto& [type, target] : lastlinks)
        prtrawf("{bind:{%s %s:#%d %s}} \n", type == link_help ? "help" : "search", target.c_str(), ++n, target.c_str());
    return prtraw("{p_end}\n");
}

// ---- A page.

// By the line, so that q at a page's end ends it.
Int4 feedlines(std::string_view text) {
    Int4 state = 0;
    while (!text.empty()) {
        std::size_t n = std::min(text.find('\n'), text.size() - 1) + 1;
        vstream_feed(state, results, text.substr(0, n));
        poll();
        if (breakpending) return 1;
        text.remove_prefix(n);
    }
    return 0;
}

Int4 showpage(const helpplace& place) {
    std::string text;
    if (Int4 rc = helptext(place, text)) return rc;
    lastlinks = linksof(place, text);
    if (!levelshows()) return 0;
    prtfresh();
    if (!loghelp) logs_hold(true);
    onexit giveback([] { if (!loghelp) logs_hold(false); });
    prtraw("\n{txt}");
    prtraw(modeof(text));
    Int4 rc = feedlines(text);
    prtraw("{vtml}\n");
    prtraw("{reset}");
    prtfresh();
    if (!rc) rc = showlinks();
    // Who has read enough, and is not in the middle of a do-file, has not failed.
    if (!rc || dofile || !front->echoes()) return rc;
    breakpending = 0;
    return 0;
}

std::string typedname() {
    std::string_view rest = trimmed(tokrest());
    return std::string(unquoted(rest));
}

// Pages about it, and names that are near to it: five together.
Int4 nohelp(const std::string& name) {
    Int4 rc = errorf(111, "help for %s not found\n", name.c_str());
    std::string word = name, line;
    for (char& c : word) c = lowerchar(c);
    std::vector<std::string> pages = helpabout(word);
    for (const std::string& near : nearest(name, helpnames(), 5))
        if (std::find(pages.begin(), pages.end(), near) == pages.end()) pages.push_back(near);
    if (pages.size() > 5) pages.resize(5);
    for (const std::string& page : pages) line += " {help " + page + "}";
    if (!line.empty()) prtraw("{txt}near to it:" + line + "\n");
    return rc;
}

Int4 showhelp(const std::string& name) {
    helpplace place;
    return findhelp(name, place) ? showpage(place) : nohelp(name);
}

}  // namespace

void help_started() { lastlinks.clear(); }

// help [name | #n]
Int4 cmd_help() {
    std::string name = typedname();
    if (name[0] != '#') return showhelp(name);
    Int4 n;
    if (!readinteger(name.substr(1), n) || n < 1 || n > Int4(lastlinks.size()))
        return errorf(111, "the last page has no link %s\n", name.c_str());
    return showhelp(lastlinks[std::size_t(n) - 1].target);
}

// HELPCHK name: 0 when there is help on it, else 111, silently.
Int4 cmd_HELPCHK() {
    helpplace place;
    return findhelp(typedname(), place) ? 0 : 111;
}

// search r(#): what a return code means.
Int4 cmd_search() {
    std::string name = typedname();
    if (!name.starts_with("r(") || !name.ends_with(")")) return error(198);
    return showhelp(name);
}

}  // namespace velmo
