// The normal distribution, of one variable and of two.
#include <algorithm>
#include "matrix/numeric.h"
#include "matrix/probability.h"

namespace velmo {

namespace {

constexpr Double roottwopi = 2.5066282746310007;

// Mills' ratio, the upper tail over the density, at y > 0: the continued fraction y + 1/(y + 2/(y + 3/...)) taken two
// steps at a time, numerators p and denominators q.
Double millsratio(Double y) {
    Double b = y * y + 3, step = 2, a = 0;
    Double p1 = 1, q1 = y, p2 = b - 1, q2 = b * y;
    Double was = p1 / q1, is = p2 / q2;
    for (Int4 i = 0; was != is && i < 500; i++) {
        b += 4;
        step -= 8;
        a += step;
        Double p = a * p1 + b * p2, q = a * q1 + b * q2;
        p1 = p2;
        p2 = p;
        q1 = q2;
        q2 = q;
        if (q2 >= 1e30) {
            p1 /= 1e30;
            p2 /= 1e30;
            q1 /= 1e30;
            q2 /= 1e30;
        }
        was = is;
        is = p2 / q2;
    }
    return is;
}

// The probability between 0 and y.
Double middle(Double y, Double density) {
    Double t = y * density, s = t, was = 0;
    for (Double j = 3; s != was; j += 2) {
        was = s;
        t *= y * y / j;
        s += t;
    }
    return s;
}

Double polynomial(const Double (&c)[8], Double x) {
    Double r = c[7];
    for (Int4 i = 6; i >= 0; i--) r = r * x + c[i];
    return r;
}

}  // namespace

Double norm(Double z) {
    if (!known(z)) return missing;
    if (z == 0) return 0.5;
    Double y = std::fabs(z), density = std::exp(-y * y / 2) / roottwopi, r = density / y;
    if (z > 0 && 1 - r == 1) return 1;
    if (z < 0 && r == 0) return 0;
    if (z < 0 && y > 2.32) return density * millsratio(y);
    if (z > 0 && y >= 3.5) return 1 - density * millsratio(y);
    return z > 0 ? 0.5 + middle(y, density) : 0.5 - middle(y, density);
}

Double invnorm(Double p) {
    static constexpr Double a[8] = {3.3871328727963666080e0,  1.3314166789178437745e+2, 1.9715909503065514427e+3,
                                    1.3731693765509461125e+4, 4.5921953931549871457e+4, 6.7265770927008700853e+4,
                                    3.3430575583588128105e+4, 2.5090809287301226727e+3};
    static constexpr Double b[8] = {1.0,                      4.2313330701600911252e+1, 6.8718700749205790830e+2,
                                    5.3941960214247511077e+3, 2.1213794301586595867e+4, 3.9307895800092710610e+4,
                                    2.8729085735721942674e+4, 5.2264952788528545610e+3};
    static constexpr Double c[8] = {1.42343711074968357734e0,  4.63033784615654529590e0,  5.76949722146069140550e0,
                                    3.64784832476320460504e0,  1.27045825245236838258e0,  2.41780725177450611770e-1,
                                    2.27238449892691845833e-2, 7.74545014278341407640e-4};
    static constexpr Double d[8] = {1.0,                       2.05319162663775882187e0,  1.67638483018380384940e0,
                                    6.89767334985100004550e-1, 1.48103976427480074590e-1, 1.51986665636164571966e-2,
                                    5.47593808499534494600e-4, 1.05075007164441684324e-9};
    static constexpr Double e[8] = {6.65790464350110377720e0,  5.46378491116411436990e0,  1.78482653991729133580e0,
                                    2.96560571828504891230e-1, 2.65321895265761230930e-2, 1.24266094738807843860e-3,
                                    2.71155556874348757815e-5, 2.01033439929228813265e-7};
    static constexpr Double f[8] = {1.0,                       5.99832206555887937690e-1, 1.36929880922735805310e-1,
                                    1.48753612908506148525e-2, 7.86869131145613259100e-4, 1.84631831751005468180e-5,
                                    1.42151175831644588870e-7, 2.04426310338993978564e-15};
    if (!(p > 0 && p < 1)) return missing;
    Double q = p - 0.5;
    if (std::fabs(q) <= 0.425) {
        Double r = 0.180625 - q * q;
        return q * polynomial(a, r) / polynomial(b, r);
    }
    Double r = std::sqrt(-std::log(q < 0 ? p : 1 - p));
    Double z = r <= 5 ? polynomial(c, r - 1.6) / polynomial(d, r - 1.6) : polynomial(e, r - 5) / polynomial(f, r - 5);
    return q < 0 ? -z : z;
}

Double normden(Double x) { return known(x) ? std::exp(-x * x / 2) / roottwopi : missing; }

Double normden(Double x, Double s) { return known(x, s) && s > 0 ? orfinite(normden(x) / s) : missing; }

// ---- Two variables

namespace {

// Owen's T taken from atan(a) / (2 pi), by his series, for h >= 0 and 0 <= a <= 1. Beyond 9, T is below 1e-19.
Double owenseries(Double h, Double a) {
    if (h > 9) return std::atan(a) / (2 * pi);
    Double y = h * h / 2, part = std::exp(-y), rest = 1 - part, power = a, sum = 0;
    for (Int4 j = 0; j < 300 && rest * power > 1e-17; j++) {
        Double term = rest * power / (2 * j + 1);
        sum += j % 2 ? -term : term;
        power *= a * a;
        part *= y / (j + 1);
        rest -= part;
    }
    return sum / (2 * pi);
}

// The same for any h, and the a that is over / h: 0 at h = 0, odd in a, and for a > 1 by T(h, a) and T(ah, 1/a) making
// up a product of probabilities.
Double owenrest(Double h, Double over) {
    if (h == 0 || over == 0) return 0;
    boolean negative = (h < 0) != (over < 0);
    h = std::fabs(h);
    over = std::fabs(over);
    Double t = over <= h ? owenseries(h, over / h)
                         : (norm(h) - 0.5) * (norm(over) - 0.5) - owenseries(over, h / over);
    return negative ? -t : t;
}

}  // namespace

Double binorm(Double h, Double k, Double r) {
    if (!known(h, k) || !(std::fabs(r) <= 1)) return missing;
    h = std::clamp(h, -8.0, 8.0);
    k = std::clamp(k, -8.0, 8.0);
    if (r == 1) return norm(std::min(h, k));
    if (r == -1) return h + k >= 0 ? norm(h) + norm(k) - 1 : 0;
    Double q = std::sqrt(1 - r * r);
    Double rests = owenrest(h, (k - h * r) / q) + owenrest(k, (h - k * r) / q);        // h and k may change places
    return std::clamp((norm(h) + norm(k)) / 2 + rests - std::acos(r) / (2 * pi), 1e-15, 1.0);
}

}  // namespace velmo
