// Divisions of the block, for the two files that make and choose them: rectangle.cpp and room.cpp.
#pragma once
#include "core/rectangle.h"

namespace velmo {

// What follows from a record length and the live objects.
struct division {
    Int4 lrecl, tmaxobs, maxobs, mvar;
    UByte* database;
};

// The division with records of `length` bytes; false below 4 bytes.
boolean divide(std::int64_t length, division& d);
// Where the objects would begin if they had no holes.
UByte* storestart();
// Takes back rows that objects have given up since: maxobs becomes that of d, the present division.
void reclaimrows(const division& d);
// Brings the live rows into places 0 to nobs - 1 and makes the rest of the order the identity: 0 or 9999.
Int4 packrows();

}  // namespace velmo
