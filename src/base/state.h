// The few scalars that every floor reads. They stand here, below everything, so that no floor has to include
// a higher one to learn the size of a line or whether lines are being skipped. Each says who changes it.
#pragma once
#include "base/types.h"

namespace velmo {

// State
extern Int4 maxvar;         // most variables, 2048 to 32767; changed by setmaxvar only
extern Int4 matsize;        // largest matrix dimension, 10 to 11000; changed by setmatsize only
extern Int4 conslen;        // capacity of cmdbuf in bytes, maxvar*33 + 216
extern Int4 macrolen;       // longest macro value in bytes, maxvar*33 + 200
extern Int2 version;        // 100 times the version obeyed, 100 to 700; restored at the end of each level
extern Int2 callerversion;  // that of the caller of this do-file or program; 0 at the console
extern UByte execflag;      // 1: commands run; 0: lines are only skipped
extern UByte quietlevel;    // what shows, of the roles in output/print.h: those from this one on
extern UByte savedquiet;    // quietlevel of the caller of this do-file or program; noisily goes back to it
extern Int4 batchmode;      // 0 interactive, 1 batch, 2 batch that does not echo the start-up command
extern Int4 lastrc;         // return code of the last command turn
extern Int4 rcvalue;        // what the language sees as _rc; written by capture only
extern UByte rmsg;          // set rmsg: report time and clock after each command
extern UByte tracing;       // set trace
extern UByte inprogram;     // 1 while the line source is a stored program

// Values of quietlevel.
constexpr UByte shows_all = 0, shows_errors = 3, shows_nothing = 5;

// Sets maxvar and the two lengths that follow from it.
void setlengths(Int4 newmaxvar);

// The widest row in bytes that maxvar allows.
inline Int4 maxwidth() { return maxvar * 12; }

}  // namespace velmo
