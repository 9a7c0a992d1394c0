// Elapsed dates and periods. A date is a count of days, 1 January 1960 being 0; weeks (52 a year), months,
// quarters and half years count from the first one of 1960; years are calendar years. Everything is exact
// integer arithmetic on the Gregorian calendar carried back over all years 100 to 9999. Nothing prints.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

inline constexpr Int4 baddate = Int4(0x80000001u);    // the mark of what is no date

struct civildate { Int4 year, month, day; };          // month 1 to 12, day 1 to 31

extern const char* const monthnames[12];              // "January" to "December"

// The date of a day; baddate unless 100 <= y <= 9999, 1 <= m <= 12 and the day is one of that month.
Int4 mdydate(Int4 m, Int4 d, Int4 y);
// The day of a date; false when the year falls outside 100 to 9999.
boolean civil(Int4 date, civildate& out);
boolean isleap(Int4 year);
// Day of the week, 0 Sunday to 6; -1 outside -679350..2936550.
Int4 dayofweek(Int4 date);
// Day of the year, 1 to 366, of a valid civil date.
Int4 dayofyear(const civildate& c);

// A period kind is its letter: 'd' days, 'w' weeks, 'm' months, 'q' quarters, 'h' half years, 'y' years.
// periodsper gives 365 (unused), 52, 12, 4, 2, 1.
Int4 periodsper(char kind);
// The period of `kind` that holds a date; baddate when the date is none. For 'd' the date itself.
Int4 periodof(char kind, Int4 date);
// The first day of a period; baddate when out of range. For 'd' the value itself.
Int4 periodstart(char kind, Int4 period);

// Reads a date from text by a mask of the letters m, d, y, each once; digits ahead of y give the century.
// topyear is missing or 1000 to 9999. Returns the date or `missing`. Rules: see the date functions' help.
Double readdate(std::string_view text, std::string_view mask, Double topyear);
// Reads a period: kind 'y', 'h', 'q', 'm' or 'w', mask of y and the kind's letter in either order ("y" alone for
// years). Returns the period's number (for years the year) or `missing`.
Double readperiod(char kind, std::string_view text, std::string_view mask, Double topyear);

}  // namespace velmo
