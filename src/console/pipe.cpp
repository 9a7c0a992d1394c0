#include "console/pipe.h"
#include <string>
#include "base/poll.h"
#include "console/standard.h"
#include "console/style.h"

namespace velmo {

namespace {

// The unfinished line waits until it is known how it ends.
std::string partial;

void showline(const UByte* record) {
    static std::string text;
    plaintext(vline_view(record), text);
    text += '\n';
    putall(text);
    partial.clear();
}

void keeppartial(const UByte* record) { plaintext(vline_view(record), partial); }

void end() {
    putall(partial);
    partial.clear();
    flushall();
}

Int4 readtyped(char* buf, Int4 n, boolean) {
    flushall();
    if (endpending) return typed_over;
    Int4 len = readline(buf, n, false);
    buf[len < 0 ? 0 : len] = 0;
    return len;
}

}  // namespace

extern constexpr frontend pipefront{
    .end = end, .typedline = readtyped, .line = showline, .partial = keeppartial, .flush = flushall, .bell = ringbell};

}  // namespace velmo
