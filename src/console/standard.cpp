#include "console/standard.h"
#include <cerrno>
#include <csignal>
#include <cstdio>
#include "base/frontend.h"
#include "base/poll.h"
#include "console/keys.h"

namespace velmo {

namespace {

boolean writefailed = false;

void outputfailed() {
    writefailed = true;
    if (errno != EPIPE && errno != EIO) return;
    if (!endpending) endpending = SIGPIPE;
    breakpending = breakswitch;
}

}  // namespace

void putall(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) outputfailed();
}

void flushall() {
    if (std::fflush(stdout) != 0) outputfailed();
}

boolean output_failed() { return writefailed; }

Int4 readline(char* buf, Int4 n, boolean onterminal) {
    static Int4 ends = 0;              // one behind the other: a terminal that gives nothing else has gone
    Int4 len = 0;
    for (boolean any = false;; any = true) {
        int c = keys_queued();
        if (c < 0) c = std::getc(stdin);
        if (c != EOF) ends = 0;
        if (c == '\n') return len;
        if (c != EOF) {
            if (c != '\r' && len < n - 1) buf[len++] = char(c);
            continue;
        }
        boolean broken = std::ferror(stdin) && errno == EINTR && !endpending;
        boolean typed = !std::ferror(stdin) && onterminal && ++ends < 10;
        if (broken || typed) std::clearerr(stdin);
        if (broken) {                  // Break at the prompt: an empty line
            if (onterminal) putall("\n");
            return 0;
        }
        return any ? len : typed ? typed_end : typed_over;
    }
}

void ringbell() {
    std::fputc('\a', stderr);
    std::fflush(stderr);
}

}  // namespace velmo
