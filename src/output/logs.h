// Log files on the console stream: the batch log, the session's log (log) and its command log (cmdlog). Who opens a
// file gives its descriptor here and gets it back to close. A log's text never shows an error: a write that fails
// leaves the log open and silent.
#pragma once
#include <string_view>
#include "base/types.h"

namespace velmo {

// Opens the batch log `name`, truncating it, as VTML or as plain text; false when it can't be opened.
boolean batchlog_open(const char* name, boolean vtml);
void batchlog_close();
// Whether `path` is a file that a log is being written to.
boolean islogfile(const char* path);

struct logstate {
    Int4 file = -1;            // descriptor, -1 when closed
    boolean on = false;        // else the file is kept, and gets nothing
    boolean vtml = false;      // markup as written, else finished lines; a command log has neither
    boolean alive = false;     // of a command log: no write has failed
    char name[pathsize] = "";  // full path
};

// State
extern logstate sessionlog, commandlog;
extern UByte logastext;        // set logtype: 1 text, 0 vtml
extern char logprefix[256];    // set prefix

// The session's log from here on; true when the stream refuses it, and then it stays closed.
boolean log_start(Int4 file, std::string_view name, boolean vtml);
boolean log_resume();          // true when the stream refuses
void log_pause();              // what the stream holds for it is written out first
Int4 log_end();                // the descriptor, to be closed
// Nothing more goes to the session's and the batch log, from here on and until false is told.
void logs_hold(boolean hold);
// The rule, the file, the type and, with a label ("opened"), date and time; nothing under quietly.
void log_header(const char* label);
void log_closingrule();

void cmdlog_start(Int4 file, std::string_view name);
Int4 cmdlog_end();             // the descriptor, to be closed
// One typed line; lines of the cmdlog command itself are left out.
void cmdlog_line(std::string_view line);

}  // namespace velmo
