// A dataset file beside the data in memory, for merge and append: which variables they share, where the others come
// to stand, and rows that go from one to the other. New variables stand behind visnvar until join_finish, so that a
// failure on the way leaves variables and observations as they were.
#pragma once
#include <string_view>
#include <vector>
#include "core/rectangle.h"
#include "data/dtafile.h"
#include "data/dtamemory.h"
#include "data/dtaread.h"

namespace velmo {

struct sharedvar { Int4 var, filevar; UByte oldtype; };

struct joining {
    dtafile f;
    Int4 oldvars, oldobs;
    boolean done = false;
    std::vector<sharedvar> both;             // in the file's order, without (e)
    std::vector<sharedvar> fresh;            // variables of the file that memory had not
    std::vector<dtachar> chars;
    std::vector<UByte> blank;                // a row with everything missing, (e) 0
    std::vector<dtacopy> copies;             // runs of the fresh variables, and of `direct`
    std::vector<sharedvar> direct;           // shared variables that go over as they are: the same type
    joining();
    ~joining();                              // unless done: nobs and variables as they were
};

// Opens the file and matches its variables with memory's by their exact names: the file's codes.
Int4 join_open(joining& j, std::string_view name);
// "x is str5 in using data": 106.
Int4 join_otherkind(const joining& j, const sharedvar& s);
// The file's other variables join memory's, with room for them; characteristics are read. Then join_layout.
Int4 join_addvars(joining& j);
// Works out `blank` and `copies`: after join_addvars, and whenever a type has changed.
void join_layout(joining& j);
// A value of a file's row into a shared variable; a wider type is taken as replace would. 0, 901, 903.
Int4 join_store(joining& j, const sharedvar& s, const UByte* row, Int4 obs);
// Value labels that memory lacks (if wanted), labels and characteristics; then variables and observations are in. Tells
// which types have changed.
Int4 join_finish(joining& j, boolean labels);

inline void join_copy(const joining& j, const UByte* row, Int4 obs) {
    dta_copyrow(j.copies, row, rowptr(obs));
}

}  // namespace velmo
