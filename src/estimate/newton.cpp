#include "estimate/newton.h"
#include <algorithm>
#include <cmath>
#include "base/poll.h"
#include "language/options.h"
#include "matrix/kernels.h"
#include "output/errors.h"
#include "output/print.h"

namespace velmo {

namespace {

constexpr Int4 mostiterations = 16000, mosthalvings = 50;

}  // namespace

Int4 getopt_iteration(iterationform& o) {
    Int4 n;
    if (Int4 rc = getopt_int("iterate", 4, &o.most, 1, n)) return rc;
    if (Int4 rc = boundscheck("iterate()", o.most, 0, mostiterations)) return rc;
    if (Int4 rc = getopt_num("tolerance", 3, &o.tolerance, 1, n)) return rc;
    if (Int4 rc = getopt_num("ltolerance", 4, &o.ltolerance, 1, n)) return rc;
    if (o.tolerance < 0 || o.ltolerance < 0) return error(198);
    o.trace = getopt_flag("trace", 2);
    o.log = getopt_noflag("log", 2, true) || o.trace;
    return 0;
}

namespace {

struct newton {
    const evaluator& evaluate;
    const newtonform& form;
    std::vector<Double>& b;
    newtonresult& out;
    Int4 n;
    Double f = missing, before = missing;        // at b, and at the round's beginning
    std::vector<Double> g, old, delta;
    matrix H;                                    // of the last evaluation; out.V inverts that of the round's beginning
    boolean ridged = false;

    newton(const evaluator& e, const newtonform& w, std::vector<Double>& at, newtonresult& r)
        : evaluate(e), form(w), b(at), out(r), n(Int4(at.size())), g(at.size()), old(at.size()), delta(at.size()) {}

    std::size_t size() const { return b.size() * b.size(); }
    Double ll() const { return f == missing ? missing : 0 - f; }
    boolean worse() const { return f - before > 1e-12 * std::fabs(before); }

    Int4 evaluatehere() {
        std::fill(g.begin(), g.end(), 0.0);
        std::fill_n(H.row(0), size(), 0.0);
        Int4 rc = evaluate(b.data(), f, g.data(), H.row(0));
        if (!std::isfinite(f) || f > missing) f = missing;
        return rc;
    }

    Int4 invert() {
        std::vector<UByte> flag(b.size(), 0);
        std::copy_n(H.row(0), size(), out.V.row(0));
        Double* V = out.V.row(0);
        Int4 rc = form.plain ? matrin(V, n, n, 0, n - 1, nullptr, 0, -1, flag.data())
                             : matrin3(V, n, n, 0, n - 1, flag.data(), ridged);
        return rc > 1 ? error(rc) : rc;
    }

    // The step taken so many times is too small to matter.
    boolean settled(Double factor) const {
        for (std::size_t i = 0; i < b.size(); i++)
            if (!(std::fabs(factor * delta[i]) / (std::fabs(b[i]) + 0.001) <= form.iterate.tolerance)) return false;
        return true;
    }

    void fullstep() {
        old = b;
        for (Int4 i = 0; i < n; i++) {
            Double t = 0;
            for (Int4 j = 0; j < n; j++) t += out.V.at(i, j) * g[std::size_t(j)];
            delta[std::size_t(i)] = t;
            b[std::size_t(i)] -= t;
        }
    }

    // Where the whole step made it worse: half of it, a quarter...
    Int4 halve(Int4& status) {
        Double factor = 1;
        for (Int4 halvings = 1; worse(); halvings++) {
            if (halvings > mosthalvings) {
                status = ended_likelihood;
                break;
            }
            factor /= 2;
            for (std::size_t i = 0; i < b.size(); i++) b[i] = old[i] - factor * delta[i];
            if (settled(factor)) {               // b is the old point, and so is what was known there
                f = before;
                status = ended_coefficients;
                return 0;
            }
            if (Int4 rc = evaluatehere()) return rc;
        }
        for (std::size_t i = 0; i < b.size(); i++) delta[i] = b[i] - old[i];
        return 0;
    }

    Int4 endtest() const {
        if (form.perfect && f == 0) return ended_likelihood;
        if (before >= f && std::fabs(before) * form.iterate.ltolerance >= before - f) return ended_likelihood;
        return settled(1) ? ended_coefficients : ended_none;
    }

    Int4 show() const {
        if (!form.iterate.log) return 0;
        prttextf("%-15s", ("Iteration " + std::to_string(out.iterations) + ":").c_str());
        prttext("log likelihood = ");
        prtnumber("%10.0g", ll());
        prtnl();
        for (std::size_t i = 0; form.iterate.trace && i < b.size(); i++) {
            prtblanks(i % 5 ? 2 : 12);
            prtnumber("%9.0g", b[i]);
            if (i % 5 == 4 || i + 1 == b.size()) prtnl();
        }
        return breakpending;
    }

    // One step from b; `inverted` tells on an end that out.V is what remains.
    Int4 round(Int4& status, boolean& inverted) {
        inverted = true;
        if (Int4 rc = invert()) return rc;
        fullstep();
        if (settled(1)) {
            status = ended_coefficients;
            return 0;
        }
        if (Int4 rc = evaluatehere()) return rc;
        if (worse())
            if (Int4 rc = halve(status)) return rc;
        inverted = status == ended_coefficients;
        if (!inverted)
            if (Int4 end = endtest()) status = end;
        return 0;
    }

    Int4 run() {
        boolean inverted = false;
        for (out.iterations = 0; out.status == ended_none; out.iterations++) {
            before = f;
            if (show()) return 1;
            if (out.iterations >= form.iterate.most) {
                out.status = ended_iterations;
                inverted = false;
                break;
            }
            if (Int4 rc = round(out.status, inverted)) return rc;
            if (out.status != ended_none) break;
        }
        out.ll = ll();
        return finish(inverted);
    }

    void questionable(matrix& m) {
        out.status = ended_questionable;
        for (Int4 i = 0; i < n; i++) m.at(i, i) = 0;
    }

    Int4 finish(boolean inverted) {
        boolean was = ridged;
        if (was) questionable(inverted ? out.V : H);
        if (!inverted)
            if (Int4 rc = invert()) return rc;
        if (ridged && !was) questionable(out.V);
        return 0;
    }
};

}  // namespace

Int4 mlnewton(const evaluator& evaluate, const newtonform& form, std::vector<Double>& b, newtonresult& out) {
    newton m(evaluate, form, b, out);
    if (Int4 rc = makematrix(m.H, m.n, m.n)) return rc;
    if (Int4 rc = makematrix(out.V, m.n, m.n)) return rc;
    out.V.symmetric = true;
    if (Int4 rc = m.evaluatehere()) return rc;
    return m.run();
}

}  // namespace velmo
