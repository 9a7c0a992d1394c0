#include "language/definition.h"
#include <algorithm>
#include <string>
#include <vector>
#include "base/poll.h"
#include "base/saved.h"
#include "base/state.h"
#include "base/text.h"
#include "core/objects.h"
#include "core/quotes.h"
#include "core/tokenizer.h"
#include "language/braces.h"
#include "language/dofile.h"
#include "language/lines.h"
#include "language/programs.h"
#include "language/turn.h"
#include "output/errors.h"
#include "output/print.h"
#include "output/results.h"

namespace velmo {

namespace {

// A body as it is read: the texts one behind the other, each with its indentation byte and its zero.
struct body {
    std::vector<UInt4> offsets;
    std::string text;
};

// Leading blanks become a byte, runs of blanks outside quotes one blank, a trailing blank goes.
void appendline(body& b, std::string_view line) {
    std::size_t indent = std::min(line.find_first_not_of(' '), line.size());
    b.offsets.push_back(UInt4(b.text.size()));
    b.text += char(std::min<std::size_t>(indent, 255));
    for (std::size_t i = indent, end; i < line.size(); i = end) {
        end = behindquote(line, i);
        if (line[i] == ' ' && (i + 1 == line.size() || line[i + 1] == ' ')) continue;
        b.text += line.substr(i, end - i);
    }
    b.text += '\0';
}

boolean isend() {
    settokpos(cmdbuf);
    return std::string_view(nexttoken()) == "end" && tokpeeknonblank() == 0;
}

Int4 takeline(body& b) {
    if (Int4(b.offsets.size()) >= maxprogramlines) return error(1000);
    appendline(b, cmdbuf);
    return Int4(b.text.size()) > maxprogramtext ? error(1000) : 0;
}

void numberprompt(Int4 line) {
    if (quietlevel >= shows_errors) return;
    printing as(out_text);
    prtf("%3d", line);
}

Int4 readbody(body& b, boolean braces) {
    Int4 depth = braces ? bracebalance(cmdbuf) : 0;
    Int4 rc = braces ? takeline(b) : 0;
    while (!braces || depth > 0) {
        numberprompt(Int4(b.offsets.size()) + 1);
        saved text(typingtext, UByte(1));
        if (nextline(0)) return breakpending ? 1 : error(612);
        if (!braces && isend()) return 0;
        if (!rc) rc = takeline(b);
        if (rc && !braces) return rc;
        if (braces) depth += bracebalance(cmdbuf);      // a loop too long is read to its end, too
    }
    return rc;
}

Int4 storebody(std::string_view name, const storedprogram& header, const body& b) {
    UInt4 table = UInt4((b.offsets.size() + 1) * sizeof(UInt4)), start = UInt4(sizeof header) + table;
    std::size_t total = start + b.text.size();
    object* o = objnew(name, obj_program, total, total);
    if (!o) return 950;
    objwrite(o, 0, &header, sizeof header);
    std::vector<UInt4> offsets = b.offsets;
    offsets.push_back(UInt4(b.text.size()));
    for (UInt4& offset : offsets) offset += start;
    objwrite(o, sizeof header, offsets.data(), table);
    objwrite(o, start, b.text.data(), b.text.size());
    return 0;
}

}  // namespace

Int4 programdefine(std::string_view givenname, std::string_view givenhome, const programoptions& options,
                   boolean braces) {
    std::string name(givenname), home(givenhome);
    body b;
    if (Int4 rc = readbody(b, braces)) return rc;
    if (b.offsets.empty()) return 0;
    storedprogram header{};
    header.loadid = loadingid;
    header.lastused = sysclock;
    header.sortpreserve = options.sortpreserve;
    header.progclass = options.progclass;
    header.byable = options.byable;
    header.subprogram = !home.empty();
    copytext(header.home, namesize, home);
    header.lines = Int4(b.offsets.size());
    return storebody(name, header, b);
}

}  // namespace velmo
