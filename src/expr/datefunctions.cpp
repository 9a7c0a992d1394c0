// Date functions of numbers. Arguments are truncated; what is no date, or beyond what a count of days can be, is
// missing.
#include "expr/bodies.h"
#include "output/dates.h"

namespace velmo {

namespace {

boolean isday(Double x) { return x >= -2147483648.0 && x < 2147483647.0; }

Double orbad(Int4 date) { return date == baddate ? missing : Double(date); }

// f of the civil date, missing when there is none.
template <class F> Double ofcivil(Double date, F f) {
    civildate c;
    return isday(date) && civil(Int4(date), c) ? Double(f(c)) : missing;
}

Double period(char kind, Double date) { return isday(date) ? orbad(periodof(kind, Int4(date))) : missing; }

Double start(char kind, Double x) { return isday(x) ? orbad(periodstart(kind, Int4(x))) : missing; }

Double yearpart(Double per, Double y, Double part) {
    if (!(y >= 1000 && y <= 9999 && part >= 1 && part <= per)) return missing;
    return per * (y - 1960) + part - 1;
}

}  // namespace

Double mdynum(Double m, Double d, Double y) {
    return isday(m) && isday(d) && isday(y) ? orbad(mdydate(Int4(m), Int4(d), Int4(y))) : missing;
}

Double downum(Double date) {
    Int4 day = isday(date) ? dayofweek(Int4(date)) : -1;
    return day < 0 ? missing : day;
}

Double daynum(Double date) { return ofcivil(date, [](const civildate& c) { return c.day; }); }
Double monthnum(Double date) { return ofcivil(date, [](const civildate& c) { return c.month; }); }
Double yearnum(Double date) { return ofcivil(date, [](const civildate& c) { return c.year; }); }
Double doynum(Double date) { return ofcivil(date, dayofyear); }
Double halfyearnum(Double date) { return ofcivil(date, [](const civildate& c) { return c.month > 6 ? 2 : 1; }); }
Double quarternum(Double date) { return ofcivil(date, [](const civildate& c) { return (c.month + 2) / 3; }); }
Double weeknum(Double date) {
    return ofcivil(date, [](const civildate& c) { return dayofyear(c) > 358 ? 52 : (dayofyear(c) - 1) / 7 + 1; });
}

Double wofdnum(Double date) { return period('w', date); }
Double mofdnum(Double date) { return period('m', date); }
Double qofdnum(Double date) { return period('q', date); }
Double hofdnum(Double date) { return period('h', date); }
Double dofwnum(Double x) { return start('w', x); }
Double dofmnum(Double x) { return start('m', x); }
Double dofqnum(Double x) { return start('q', x); }
Double dofhnum(Double x) { return start('h', x); }
Double dofynum(Double x) { return start('y', x); }
Double ywnum(Double y, Double part) { return yearpart(52, y, part); }
Double ymnum(Double y, Double part) { return yearpart(12, y, part); }
Double yqnum(Double y, Double part) { return yearpart(4, y, part); }
Double yhnum(Double y, Double part) { return yearpart(2, y, part); }

}  // namespace velmo
