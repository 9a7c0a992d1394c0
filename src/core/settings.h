// The settings' rows, for set, query and everything that reads a setting by name. The table is
// session/settings.def; each variable lives with its owner and the row points to it.
#pragma once
#include <string>
#include <string_view>
#include "base/types.h"

namespace velmo {

enum settingkind : UByte {
    set_onoff,      // UByte
    set_int,        // Int4, lo..hi
    set_text,       // char field of hi bytes
    set_ignored,    // any argument, nothing happens
    set_notice,     // any argument, note lo (a return code whose message is printed), nothing else
    set_own,        // its own handler reads the rest of the line
};

struct setting {
    const char* word;
    UByte min;            // 0: the whole word
    settingkind kind;
    void* where;          // the variable, by kind; null for handlers
    Int4 lo, hi;
    Int4 (*handler)();    // set_own: parses and sets; else called after the change
    std::string (*shown)();    // set_own: the value as text; null when there is none to show
    Int2 from, until;     // versions in which the row exists
    UByte needsdebug;     // only with set debug on
};

extern const setting* const settings;
extern const Int4 nsettings;

// The row that `word` selects, in table order, among those of the present version and debug state; null when none.
const setting* settingrow(std::string_view word);
// Its value as query shows it; false when the row has none.
boolean settingtext(const setting& row, std::string& text);
// The proxy settings, which are kept between sessions without being told so.
void network_load();
void network_store();

// State
extern UByte set_debug;       // rows of its own are there
// Settings whose subsystem isn't built yet.
extern UByte set_beep, set_graphics, set_virtual, set_getsockopt, set_checksum, set_netdebug;
extern UByte set_plot, set_rssmat, set_bmat, set_override, set_httpproxy, set_httpproxyauth;
extern Int4 set_textsize, set_varlabelpos, set_scrollbufsize, set_entries;
extern Int4 set_timeout1, set_timeout2, set_httpproxyport;
extern char set_cmdtitle[256], set_httpproxyhost[256], set_httpproxyuser[256], set_httpproxypw[256];

}  // namespace velmo
