// A session without a console for the fuzz targets: in an empty folder of its own, with little memory, in batch mode
// (so that no shell runs), its output thrown away.
#pragma once
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <unistd.h>
#include "base/state.h"
#include "base/text.h"
#include "core/memory.h"
#include "data/dataset.h"
#include "language/turn.h"
#include "output/results.h"
#include "session/session.h"

inline void startsession() {
    static bool started = false;
    if (started) return;
    started = true;
    char folder[] = "/tmp/velmofuzzXXXXXX", name[] = "velmo", quiet[] = "-q", memory[] = "-k2000";
    char* arguments[] = {name, quiet, memory};
    if (!mkdtemp(folder) || chdir(folder) || !std::freopen("/dev/null", "r", stdin)) std::abort();
    setenv("HOME", folder, 1);
    setenv("TEMP", folder, 1);
    setenv("VELMO", VELMO_SOURCE "/share/velmo", 1);
    struct sigaction onabort;
    sigaction(SIGABRT, nullptr, &onabort);      // the fuzzer's own, which the session takes
    if (!velmo::session_attach(velmo::nofrontend)) std::abort();
    if (velmo::session_init(3, arguments) < 0) std::abort();
    sigaction(SIGABRT, &onabort, nullptr);
    velmo::setpagesize(0);
    velmo::batchmode = 1;
}

// Break comes every so often from now on, so that no loop is endless; 0 ends it.
inline void breakevery(int seconds) {
    static timer_t timer;
    static bool made = false;
    struct sigevent byint {};
    byint.sigev_notify = SIGEV_SIGNAL;
    byint.sigev_signo = SIGINT;
    if (!made && timer_create(CLOCK_MONOTONIC, &byint, &timer)) std::abort();
    made = true;
    itimerspec times{{seconds, 0}, {seconds, 0}};
    timer_settime(timer, 0, &times, nullptr);
}

// One typed line.
inline velmo::Int4 obey(const char* line) {
    velmo::copytext(velmo::cmdbuf, std::size_t(velmo::conslen), line);
    velmo::settokpos(velmo::cmdbuf);
    breakevery(2);
    velmo::docmd();
    breakevery(0);
    return velmo::lastrc;
}

inline void writefile(const char* name, std::string_view bytes) {
    std::FILE* f = std::fopen(name, "wb");
    if (!f || std::fwrite(bytes.data(), 1, bytes.size(), f) != bytes.size() || std::fclose(f)) std::abort();
}
