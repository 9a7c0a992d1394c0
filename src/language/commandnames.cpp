#include "language/commandnames.h"
#include <algorithm>
#include <set>
#include "base/state.h"
#include "base/text.h"
#include "core/adopath.h"
#include "core/commands.h"
#include "core/objects.h"

namespace velmo {

char unknownword[namesize] = "";

void commandnames(std::string_view beginning, std::vector<std::string>& names) {
    for (Int4 i = 0; i < ncommands; i++) {
        const command& row = commands[i];
        boolean known = row.handler && row.from <= version && version <= row.until;
        if (known && std::string_view(row.word).starts_with(beginning)) names.emplace_back(row.word);
    }
    char name[36];
    for (object* o = objnext(nullptr, name, obj_program); o; o = objnext(o, name, obj_program))
        if (std::string_view(name).starts_with(beginning)) names.emplace_back(name);
    pathnames(beginning, ".ado", names);
}

namespace {

// Single changes that lead from a to b, by the rows of the table of distances between their beginnings.
Int4 changes(std::string_view a, std::string_view b) {
    std::vector<Int4> before2, before, row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); j++) row[j] = Int4(j);
    for (std::size_t i = 1; i <= a.size(); i++) {
        before2 = before;
        before = row;
        row[0] = Int4(i);
        for (std::size_t j = 1; j <= b.size(); j++) {
            boolean same = lowerchar(a[i - 1]) == lowerchar(b[j - 1]);
            row[j] = std::min({before[j] + 1, row[j - 1] + 1, before[j - 1] + !same});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], before2[j - 2] + 1);
        }
    }
    return row.back();
}

}  // namespace

std::vector<std::string> nearest(std::string_view word, const std::vector<std::string>& candidates, std::size_t most) {
    std::size_t limit = std::max<std::size_t>(1, word.size() / 3);
    std::set<std::pair<Int4, std::string>> found;
    for (const std::string& candidate : candidates) {
        if (candidate.size() + limit < word.size() || word.size() + limit < candidate.size()) continue;
        Int4 away = changes(word, candidate);
        if (away <= Int4(limit)) found.emplace(away, candidate);
    }
    std::vector<std::string> names;
    for (const auto& [away, name] : found)
        if (names.size() < most) names.push_back(name);
    return names;
}

}  // namespace velmo
