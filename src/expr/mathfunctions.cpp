// Both forms of the evaluator call these same routines, so that a value does not depend on how it was reached.
#include <cmath>
#include "core/macros.h"
#include "data/cells.h"
#include "data/run.h"
#include "expr/arithmetic.h"
#include "expr/bodies.h"
#include "stored/families.h"

namespace velmo {

namespace {

constexpr Double pi = 3.141592653589793;

}  // namespace

Double lognum(Double x) { return x <= 0 || x == missing ? missing : std::log(x); }

Double expnum(Double x) { return x > 709 ? missing : x < -709 ? 0 : std::exp(x); }

Double powernum(Double x, Double y) {
    if (anymissing(x, y)) return missing;
    if (y == 0) return 1;
    if (x == 0) return y > 0 ? 0 : missing;
    boolean whole = y == std::floor(y);
    if (whole && y >= 1 && y <= 32) {
        Double r = x;
        for (Int4 i = Int4(y); i > 1; i--) r *= x;
        return r;
    }
    if (x > 0) return expnum(y * std::log(x));
    if (!whole) return missing;
    Double r = expnum(y * std::log(-x));
    boolean even = std::floor(y / 2) == y / 2;
    return even || r == missing ? r : -r;
}

Double intnum(Double x) {
    if (x == missing) return missing;
    Double r = std::floor(x);
    return x < 0 && r != x ? r + 1 : r;
}

Double floatnum(Double x) {
    if (x == missing) return missing;
    Float f = tofloat(x);
    return f == floatmissing ? missing : Double(f);
}

Double signnum(Double x) { return x == missing ? missing : x > 0 ? 1 : x < 0 ? -1 : 0; }

Double atannum(Double x) {
    if (x == missing) return missing;
    Double a = std::fabs(x);
    Double t = a <= 1 ? a : 1 / a;
    Double r = 0;
    if (t > 0.2679491924) {
        t = (0.7320508075688772 * t - 1 + t) / (t + 1.7320508075688772);
        r = 0.5235987756;
    }
    Double u = t * t;
    Double p = t * (0.55913709 / (u + 1.4087812) + 0.60310579 - 0.05160454 * u) + r;
    if (a > 1) p = pi / 2 - p;
    return x < 0 ? -p : p;
}

namespace {

boolean beyondtrig(Double x) { return x < -1e18 || x > 1e18; }

// The angle whose tangent is x / sqrt(1 - x*x), for |x| < 1.
Double arcsine(Double x) { return atannum(x / std::sqrt(1 - x * x)); }

}  // namespace

Double sinnum(Double x) { return beyondtrig(x) ? missing : std::sin(x); }

Double cosnum(Double x) { return beyondtrig(x) ? missing : std::cos(x); }

Double tannum(Double x) { return beyondtrig(x) || std::cos(x) == 0 ? missing : std::tan(x); }

Double asinnum(Double x) {
    if (std::fabs(x) == 1) return x * (pi / 2);
    return std::fabs(x) > 1 ? missing : arcsine(x);
}

Double acosnum(Double x) {
    if (std::fabs(x) == 1) return x > 0 ? 0 : pi;
    return std::fabs(x) > 1 ? missing : pi / 2 - arcsine(x);
}

Double log10num(Double x) { return x <= 0 || x == missing ? missing : std::log(x) / std::log(10.0); }

Double roundnum(Double x, Double y) {
    if (y == 0) return x;
    return anymissing(x, y) ? missing : std::floor(x / y + 0.5) * y;
}

Double modnum(Double x, Double y) {
    if (anymissing(x, y) || !(y > 0)) return missing;
    Double r = x - std::floor(x / y) * y;
    return r < 0 ? r + y : r;
}

Double reldifnum(Double x, Double y) {
    return anymissing(x, y) ? missing : std::fabs(x - y) / (std::fabs(y) + 1);
}

// The cut points are built by repeated addition, so that they are those of a table made the same way.
Double autocodenum(Double x, Double n, Double x0, Double x1) {
    if (!(n > 0 && n < 1000) || !(x0 < x1) || anymissing(x, x1)) return missing;
    Double d = (x1 - x0) / n;
    Double cut = x0;
    for (Int4 k = 1; k <= n - 1; k++) {
        cut += d;
        if (cut >= x) return cut;
    }
    return x1;
}

Double groupnum(Double n, Int4 obs) {
    if (n == missing || n <= 0 || lastobs <= firstobs) return missing;
    return std::floor((Double(obs) - firstobs) * (n - 0.000001) / (Double(lastobs) - firstobs) + 1);
}

Double oldresult(Double k) {
    if (!(k >= 0 && k <= 20)) return missing;
    return k < 1 ? 0 : rscalar(Int4(k));
}

Double replaying() {
    const char* text = macroget("_0");
    return !text || !*text || *text == ',' ? 1 : 0;
}

Int4 subscripted(Double value) {
    if (!(value >= -2147483648.0 && value < 2147483647.0)) return 0;
    std::int64_t obs = std::int64_t(value) + groupfirst - 1;
    return obs < groupfirst || obs > grouplast || obs > nobs ? 0 : Int4(obs);
}

}  // namespace velmo
