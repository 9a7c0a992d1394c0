// Stored programs: objects of kind 7, one contiguous block each
//   | header (storedprogram) | n + 1 offsets, UInt4, from the object's data | text |
// A line of the text is one byte with its leading blanks, the line without them and without double blanks outside
// quotes, and a zero. Nobody keeps an address: a running program's lines are fetched by name and offset, through a
// cache that is dropped when the store has moved or another program of that name has come.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "core/objects.h"

namespace velmo {

struct storedprogram {
    Int4 loadid;           // nonzero: defined while an ado-file was being loaded
    Int4 lastused;         // sysclock at definition and at each call
    UByte running, sortpreserve, subprogram;
    UByte progclass;       // 0 none, 1 r, 2 s, 3 e
    UByte byable;          // 0 not, 1 onecall, 2 recall, 3 recall with noheader
    char home[namesize];   // the program that owns this one; empty for one of its own
    char pad[2];
    Int4 lines;
};

// State
extern char programname[namesize];     // the running program, empty outside; set by the calls below alone
extern char programhome[namesize];     // its home
extern Int4 programline;               // index of the next line, from 0
extern UByte subprogramlevel;          // the running program is a subprogram
extern UByte programclass;             // class of the running program
extern Int4 loadingid;                 // nonzero while an ado-file is being loaded


// The program of that name seen from `home`, or null: the one that belongs to the home, else the oldest without one.
object* findprogram(std::string_view name, std::string_view home);
// The program of exactly that home ("" for none), or null.
object* exactprogram(std::string_view name, std::string_view home);
inline storedprogram& programheader(object* o) { return *reinterpret_cast<storedprogram*>(o->data()); }
// Line i of a program into out (conslen bytes): behind one blank, or behind its whole indentation; false behind the
// last.
boolean programtext(object* o, Int4 i, char* out, boolean indented = false);
void setprogramname(std::string_view name);
void setprogramhome(std::string_view home);
// The running program's object, or null when it has gone.
object* runningprogram();

// What is known of a program's line without obeying it, found when it is first run and forgotten when a program comes
// or goes, or `version` changes.
struct lineinfo {
    boolean known;
    boolean blank;          // nothing to obey: no text, or a comment
    Int4 firstmark;         // where the first $, backquote or backslash stands; -1 without one: nothing to expand
    Int4 behindmarks;       // bytes behind the last one
    Int4 length;
    Int4 cutat;             // where the brace stands that ends the line and its block; -1 without one
    Int4 skipto;            // of a block's first line: the line behind its end, once the block has been skipped; else 0
};
// The information on line i, or null behind the last one. Valid until another program's is asked for.
lineinfo* lineknown(object* o, Int4 i);
// The information on the line that nextline has left in cmdbuf; null when it is no program's line. Whoever rewrites
// cmdbuf, or obeys the line, takes it.
extern const lineinfo* currentline;
// Drops it and its subprograms unless it is running.
void dropprogram(std::string_view name, std::string_view home);
// Drops those from ado-files loaded before the one numbered `below`, unless they run, each with its subprograms.
void discardprograms(Int4 below = 2147483647);

}  // namespace velmo
