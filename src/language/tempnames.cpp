// Temporary names: variables and objects by a counter in base 36, files by a number. A level drops what was named since
// its entry.
#include "language/tempnames.h"
#include <algorithm>
#include <cstdlib>
#include <vector>
#include "base/text.h"
#include "core/objects.h"
#include "core/tempfiles.h"
#include "data/dataset.h"
#include "data/posting.h"
#include "data/structure.h"
#include "matrix/matrices.h"
#include "output/errors.h"
#include "stored/held.h"
#include "stored/posted.h"

namespace velmo {

Int4 tempnamecounter = 0;
Int4 tempfilecounter = 0;
Int4 tempnamebase = 0;
Int4 tempfilebase = 0;

namespace {

// Numbers whose names were in use when the counter came to them, ascending: nobody's temporary names.
std::vector<Int4> passedover;

std::string nameofnumber(Int4 n) {
    std::string text = "__000000";
    for (std::size_t i = 7; i >= 2; i--, n /= 36) text[i] = char(n % 36 < 10 ? '0' + n % 36 : 'A' + n % 36 - 10);
    return text;
}

}  // namespace

std::string newtempname() {
    while (true) {
        if (tempnamecounter >= 2147483647) {
            tempnamecounter = 0;
            passedover.clear();
        }
        std::string name = nameofnumber(tempnamecounter);
        boolean used = findvar(name) || objfind(name, obj_scalar) || matfind(name);
        if (used) passedover.push_back(tempnamecounter);
        tempnamecounter++;
        if (!used) return name;
    }
}

Int4 newtempfile(std::string& out) {
    char path[pathsize];
    tempfilecounter = tempfilecounter >= 1333000 ? 1 : tempfilecounter + 1;
    if (Int4 rc = tempfilename(path, '_', tempfilecounter)) return error(rc);
    out = path;
    return 0;
}

boolean istempname(std::string_view name, Int4 from) {
    if (name.size() != 8 || name.substr(0, 2) != "__") return false;
    std::int64_t n = 0;
    for (char c : name.substr(2)) {
        if (!isdigit(c) && !(c >= 'A' && c <= 'Z')) return false;
        n = n * 36 + (isdigit(c) ? c - '0' : c - 'A' + 10);
    }
    if (n < from || n >= tempnamecounter) return false;
    return !std::binary_search(passedover.begin(), passedover.end(), Int4(n));
}

namespace {

std::vector<std::string> namedsince(Int4 from, Int4 type) {
    std::vector<std::string> names;
    char name[36];
    for (object* o = objnext(nullptr, name, type); o; o = objnext(o, name, type))
        if (istempname(name, from)) names.push_back(name);
    return names;
}

void droptempnames(Int4 from) {
    if (from == tempnamecounter) return;
    std::vector<UByte> marks(std::size_t(nvar), 0);
    boolean any = false;
    for (Int4 v = 1; v <= nvar; v++) any |= (marks[std::size_t(v - 1)] = istempname(varlist[v - 1], from));
    if (any) dropworkvars(marks.data());
    for (const std::string& name : namedsince(from, obj_scalar)) objdel(name, obj_scalar);
    for (const std::string& name : namedsince(from, obj_matrix)) matdrop(name);
    for (const std::string& name : namedsince(from, obj_postfile)) post_close(name);
    for (const std::string& name : held_names())
        if (istempname(name, from)) estimates_drop(name);
}

void droptempfiles(Int4 from) {
    char path[pathsize];
    for (Int4 n = from + 1; n <= tempfilecounter; n++)
        if (tempfilename(path, '_', n) == 0) removewithretry(path);
}

}  // namespace

void tempnames_started() {
    tempnamecounter = tempfilecounter = tempnamebase = tempfilebase = 0;
    passedover.clear();
}

Int4 tempnames_levelleft() {
    if (version < 310) return 0;
    droptempfiles(tempfilebase);
    droptempnames(tempnamebase);
    return 0;
}

}  // namespace velmo
