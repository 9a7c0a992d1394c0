// query: the settings and their values, and what the sizes cost.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>
#include "base/columns.h"
#include "base/poll.h"
#include "base/text.h"
#include "commands/system/arguments.h"
#include "core/settings.h"
#include "core/tokenizer.h"
#include "output/dates.h"
#include "output/errors.h"
#include "output/formats.h"
#include "output/print.h"
#include "stored/families.h"

namespace velmo {

namespace {

// What is shown, group by group, in the order of the lines: left, right, left, ...
// To add one: its word, as the table of settings has it.
constexpr const char* statuswords[] = {
    "type",    "level",       "dp",       "rmsg",     "trace", "more",    "linesize", "pagesize",
    "linegap", "varlabelpos", "graphics", "textsize", "beep",  "virtual", "seed",     "sortseed",
    "memory",  "maxvar",      "matsize",  "adosize",  "beta",  "debug",   "pollrate", "polltime",
    "entries", "scrollbufsize", "colors",
};
constexpr const char* filewords[] = {
    "logtype",  "prefix",   "loghelp",   "charset",       "checksum",      "unlinktimeout",
    "timeout1", "timeout2", "httpproxy", "httpproxyhost", "httpproxyport", "httpproxyauth",
};

std::string valueof(const char* word) {
    std::string text;
    const setting* row = settingrow(word);
    if (row) settingtext(*row, text);
    return text;
}

// Half a line: 4 blanks, the name in 15 columns, the value in `n`.
Int4 halfline(const char* word, std::size_t n) {
    std::string text = valueof(word);
    if (n) text.resize(n, ' ');
    prtf("    %-15s", word);
    return prtresult(text);
}

Int4 group(const char* title, const char* const* words, std::size_t n) {
    prtcolour();
    prtrawf("{title:%s}\n", title);
    for (std::size_t i = 0; i < n; i += 2) {
        halfline(words[i], 17);
        prtbar();
        if (i + 1 < n) halfline(words[i + 1], 0);
        if (Int4 rc = prtnl()) return rc;
    }
    return 0;
}

// ---- The sizes and what they cost.

Double tablebytes() {
    Double sum = 0;
    for (Int4 i = 0; i < nfixedtables; i++) sum += Double(fixedtables[i].size);
    return sum;
}

Double matrixbytes() { return (matsize + 11.0) * matsize * 8; }

Int4 sizerow(const char* name, const std::string& value, const char* what, Double bytes) {
    char cost[40];
    memtext(cost, sizeof cost, bytes);
    prtf("    %-16s", name);
    prtresult(rightjustified(value, 8));
    prtf("    %-28s", what);
    prtresult(rightjustified(cost, 14));
    return prtnl();
}

Int4 memorytable() {
    prtmarkup("{title:Current memory allocation}\n\n");
    prt("                     current                                memory usage\n");
    prtf("    %-16s%8s    %-28s%14s\n", "settable", "value", "description", "(1M = 1024k)");
    prtraw("    {hline 70}\n");
    sizerow("set maxvar", valueof("maxvar"), "max. variables allowed", tablebytes());
    sizerow("set memory", valueof("memory"), "max. data space", Double(memory));
    sizerow("set matsize", valueof("matsize"), "max. RHS vars in models", matrixbytes());
    prtraw("{space 60}{hline 14}\n");
    return sizerow("", "", "", tablebytes() + Double(memory) + matrixbytes());
}

// ---- Results.

constexpr Int4 buildnumber = 1;

void storeresults() {
    rclear();
    const struct { const char* name; Double value; } numbers[] = {
        {"memory", Double(memory)},   {"maxvar", Double(maxvar)}, {"matsize", Double(matsize)},
        {"m_memory", Double(memory)}, {"m_maxvar", tablebytes()}, {"m_matsize", matrixbytes()},
        {"born", Double(mdydate(11, 21, 2026))}, {"compilenumber", buildnumber},
    };
    for (const auto& row : numbers) rstore(row.name, row.value);
    for (const char* word : {"sortseed", "pagesize", "linesize", "adosize", "linegap", "textsize"})
        rstore(word, std::strtod(valueof(word).c_str(), nullptr));
    for (const char* word : {"virtual", "dp", "trace", "rmsg", "logtype", "graphics"}) rmacro(word, valueof(word));
}

Int4 queryall() {
    if (Int4 rc = group("Status", statuswords, std::size(statuswords))) return rc;
    prtnl();
    return group("Files", filewords, std::size(filewords));
}

Int4 queryone(const setting& row) {
    std::string text;
    if (row.handler == settingrow("memory")->handler) return memorytable();
    if (!settingtext(row, text)) return notallowed(row.word);
    prtf("%s ", row.word);
    prtresult(text);
    return prtnl();
}

}  // namespace

// query [memory | word]
Int4 cmd_query() {
    std::string word = nexttoken();
    const setting* row = word.empty() ? nullptr : settingrow(word);
    if (!word.empty() && !row) return notallowed(tokcontent());
    if (Int4 rc = nothingelse()) return rc;
    printing as(out_text);
    if (Int4 rc = row ? queryone(*row) : queryall()) return rc;
    storeresults();
    return breakpending;
}

}  // namespace velmo
