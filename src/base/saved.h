// Guards: what is changed for a time is put back on every way out of the scope.
//   saved quiet(quietlevel, shows_errors); changes quietlevel now, puts the old value back at the end of the scope
//   onexit free([&] { memfree(p); });    runs at the end of the scope
#pragma once

namespace velmo {

template <class T> struct saved {
    T& place;
    T old;
    explicit saved(T& p) : place(p), old(p) {}
    saved(T& p, T now) : place(p), old(p) { p = now; }
    ~saved() { place = old; }
    saved(const saved&) = delete;
    saved& operator=(const saved&) = delete;
};

template <class F> struct onexit {
    F run;
    explicit onexit(F f) : run(f) {}
    ~onexit() { run(); }
    onexit(const onexit&) = delete;
    onexit& operator=(const onexit&) = delete;
};

}  // namespace velmo
