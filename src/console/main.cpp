// The program on a console.
#include <algorithm>
#include <cstdio>
#include <string_view>
#include "base/platform.h"
#include "console/pipe.h"
#include "console/standard.h"
#include "console/terminal.h"
#include "output/results.h"
#include "session/session.h"

namespace {

constexpr const char* usage =
    "velmo [switches] [command]\n"
    "  -q   no logo and no notes          -m#  memory, # megabytes     -d#  matsize\n"
    "  -b   batch: run command and leave  -k#  memory, # kilobytes     -v#  maxvar\n"
    "  -s   batch, log in markup form     -e   batch without a signal at the end\n"
    "Switches may be written /q and so on. Without a command, lines are read from standard input.\n";

}  // namespace

int main(int argc, char** argv) {
    velmo::openstandardfiles();
    if (argc > 1 && std::string_view(argv[1]) == "--help") return std::fputs(usage, stdout) < 0;
    if (argc > 1 && std::string_view(argv[1]) == "--version") return std::puts("Velmo 7.0") < 0;
    if (!velmo::session_attach(velmo::isterminal(1) ? velmo::terminalfront : velmo::pipefront)) return 1;
    if (velmo::session_init(argc, argv) < 0) {
        velmo::results_close();
        return 1;
    }
    velmo::Int4 status = velmo::session_main();
    return velmo::output_failed() ? std::max(status, 1) : status;
}
