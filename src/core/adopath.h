// The installation and ado directories, and the search along them. The ado-path is the macro S_ADO, a list separated
// by `;` in which a code word (BASE, SITE, ...) stands for its directory and anything else for itself.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

// State
extern char installdir[pathsize];      // ends in /
extern char usingname[pathsize];       // the path that the last search or using found
struct sysdirrow { const char* word; char path[pathsize]; };
extern sysdirrow sysdirs[7];           // VELMO UPDATES BASE SITE VJBPLUS PERSONAL OLDPLACE
inline constexpr const char* defaultadopath = "UPDATES;BASE;SITE;.;PERSONAL;VJBPLUS;OLDPLACE";

// Finds the installation: VELMO in the environment, share/velmo beside the program, ../share/velmo. The marker file
// isvelmo.70 must be there. 0 found, 1 no directory, 2 no marker.
Int4 findinstallation();
void adopath_init();                   // builds the table of directories
// The nth (from 1) file name+suffix along the ado-path (each directory itself, then its one-letter subfolder), its
// path in usingname; false when there is none.
boolean pathsearch(std::string_view name, std::string_view suffix, Int4 nth);
// Adds the names, without the suffix, of all files along the ado-path that begin and end so; a name may come twice.
void pathnames(std::string_view beginning, std::string_view suffix, std::vector<std::string>& names);

}  // namespace velmo
