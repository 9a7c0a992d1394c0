// All that the program asks of the system but the terminal: clock, files, directories, pages, processes,
// environment. POSIX in platform.cpp; no other file includes a system header or asks which system it is on.
// A file is known by its descriptor, 0 or above. Names are bytes, `/` separates.
#pragma once
#include <string>
#include <string_view>
#include <vector>
#include "base/types.h"

namespace velmo {

struct clocktime { Int4 year, month, day, hour, minute, second; };   // month 1 to 12, local time

std::int64_t clockms();                  // milliseconds of a clock that never goes back
clocktime localclock();
void sleepms(Int4 ms);                   // returns early on a signal
// Opens the null device on what is missing of standard input, output and error.
void openstandardfiles();
boolean isterminal(Int4 fd);
// SIGINT, SIGABRT, SIGTERM and SIGHUP store into breakpending, the last two into endpending too; SIGPIPE and SIGXFSZ
// are ignored.
void installsignals();

// Files. openread and so on return a descriptor, or -1 with the reason in openfailure.
enum openreason { open_fine, open_notfound, open_exists, open_refused, open_broken };    // broken: by Break
extern openreason openfailure;           // why the last open failed
Int4 fileopenread(const char* name);
Int4 fileopenwrite(const char* name, boolean replace, boolean append, boolean ispublic);  // else must be new
Int4 fileopenprivate(const char* name, boolean append);   // for this user's eyes only; emptied unless appended to
Int4 fileopenboth(const char* name, boolean ispublic);    // to read and write; made when it isn't there
// Bytes read, 0 at the end, -1 on an error, or when Break came while nothing was there to be read.
Pint fileread(Int4 fd, void* out, std::size_t n);
boolean filewrite(Int4 fd, const void* in, std::size_t n);   // false when not all could be written
extern boolean diskfull;                 // why the last write that failed did: there was no room
Filepos fileseek(Int4 fd, Filepos pos, Int4 whence);         // whence 0 start, 1 here, 2 end; -1 on an error
// A new file beside the regular file `name` (or beside what the link `name` leads to), with its owner and mode: its
// descriptor, with the names of both; -1 when there is no such file, or the folder or the owner doesn't allow it.
Int4 filebeside(const char* name, std::string& target, std::string& beside);
Filepos roominstead(const char* name);           // bytes that a file could have that is written over this one
void filetoend(Int4 fd);       // each later write goes to the end, also behind what others have written since
boolean fileclose(Int4 fd);
boolean fileremove(const char* name);                        // never a device
boolean filerename(const char* from, const char* to);

struct fileinfo { boolean exists, isdirectory; Filepos size; clocktime changed; };
fileinfo filestat(const char* name);
boolean samefile(const char* a, const char* b);   // both exist and are one file, by whatever names
std::string currentdir();
boolean changedir(const char* name);
boolean makedir(const char* name, boolean ispublic);
// Makes a new folder that only this user can enter: `stem` and six characters. Its name, or "" when it can't be made.
std::string makeprivatedir(std::string stem);
void removetree(const char* name);               // a file, or a folder with all that is in it; links are not followed
// Names in a folder, sorted bytewise, without "." and ".."; false when it can't be read.
boolean listdir(const char* name, std::vector<std::string>& names);

std::string environmenttext(const char* name);   // empty when not set
std::string homedir();                           // the user's, empty when unknown
std::string programfile();                       // full path of the running program
std::string fullpath(const char* name);          // absolute form of name, without resolving links
Int4 processid();

// Pages for large blocks: zeroed, touched when used; null when n is beyond memory, swap or the group's limit.
void* pagealloc(std::size_t n);
void pagefree(void* p, std::size_t n);
std::size_t memorylimit();                       // bytes that one process may hope for

// What must reach the user although the session is at its end: standard error.
void messagebox(const char* title, const char* text);

// Runs `command` in the user's shell (`shell` names it; empty: /bin/sh), or an interactive shell when command
// is empty. Waits. -1 when no process could be started, else its status.
Int4 runshell(const char* shell, const char* command);

}  // namespace velmo
