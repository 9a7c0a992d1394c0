#include "language/review.h"
#include <vector>
#include "base/state.h"
#include "core/events.h"

namespace velmo {

char* reviewring;

namespace {

Int4 head = 0;      // where the mark 1 stands
Int4 ringsize = 0;  // conslen + 1 when the ring was made; 0: there is none

Int4 before(Int4 at) { return at == 0 ? ringsize - 1 : at - 1; }
void put(char c) {
    reviewring[head] = c;
    head = head + 1 == ringsize ? 0 : head + 1;
}

}  // namespace

void review_init() {
    ringsize = conslen + 1;
    for (Int4 i = 0; i < ringsize; i++) reviewring[i] = 0;
    head = 0;
    reviewring[head] = 1;
}

void reviewpush(std::string_view line) {
    line = line.substr(0, std::size_t(ringsize - 3));
    for (char c : line) put(c == 0 || c == 1 ? ' ' : c);
    put(0);
    reviewring[head] = 1;
}

// Each line ends with the 0 that is walked over first; the line's start lies behind the next 0 or the mark.
std::string reviewget(Int4 i) {
    Int4 at = before(head);
    if (reviewring[at] != 0) return "";
    std::string reversed;
    for (Int4 skipped = 0;;) {
        at = before(at);
        char c = reviewring[at];
        if (c == 1) {
            // The oldest line is cut by the head; an intact ring start also ends here.
            return skipped == i ? std::string(reversed.rbegin(), reversed.rend()) : "";
        }
        if (c != 0) {
            if (skipped == i) reversed += c;
            continue;
        }
        if (skipped == i) return {reversed.rbegin(), reversed.rend()};
        skipped++;
    }
}

void review_ended() { ringsize = 0; }

// The newest 100 lines stay.
void review_sized(sizedwhat what) {
    if (what != sized_maxvar || !ringsize) return;
    std::vector<std::string> lines;
    for (Int4 i = 0; i < 100; i++) {
        lines.push_back(reviewget(i));
        if (lines.back().empty()) break;
    }
    review_init();
    for (; !lines.empty(); lines.pop_back())
        if (!lines.back().empty()) reviewpush(lines.back());
}

}  // namespace velmo
