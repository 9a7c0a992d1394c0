#include "core/settings.h"
#include "base/state.h"
#include "base/text.h"
#include "core/prefs.h"

namespace velmo {

UByte set_debug = 0, set_beep = 1, set_graphics = 1, set_virtual = 0, set_getsockopt = 0, set_checksum = 1;
UByte set_netdebug = 0, set_plot = 0, set_rssmat = 0, set_bmat = 0, set_override = 0;
UByte set_httpproxy = 0, set_httpproxyauth = 0;
Int4 set_textsize = 100, set_varlabelpos = 32, set_scrollbufsize = 32000;
Int4 set_entries = 100, set_timeout1 = 120, set_timeout2 = 300, set_httpproxyport = 80;
char set_cmdtitle[256], set_httpproxyhost[256], set_httpproxyuser[256], set_httpproxypw[256];

namespace {

// The stored name of each proxy setting; texts where `flag` and `number` are null.
const struct { const char* key; UByte* flag; Int4* number; char* text; } networkprefs[] = {
    {"usehttpproxy", &set_httpproxy, nullptr, nullptr},
    {"httpproxyport", nullptr, &set_httpproxyport, nullptr},
    {"httpproxyhost", nullptr, nullptr, set_httpproxyhost},
    {"usehttpproxyauth", &set_httpproxyauth, nullptr, nullptr},
    {"httpproxyuser", nullptr, nullptr, set_httpproxyuser},
    {"httpproxypw", nullptr, nullptr, set_httpproxypw},
};

}  // namespace

const setting* settingrow(std::string_view word) {
    for (const setting* row = settings; row < settings + nsettings; row++) {
        if (version < row->from || version > row->until || (row->needsdebug && !set_debug)) continue;
        if (row->min ? abbrev(word, row->word, row->min) : word == row->word) return row;
    }
    return nullptr;
}

boolean settingtext(const setting& row, std::string& text) {
    if (row.kind == set_own && !row.shown) return false;
    switch (row.kind) {
    case set_onoff: text = *static_cast<const UByte*>(row.where) ? "on" : "off"; return true;
    case set_int: text = std::to_string(*static_cast<const Int4*>(row.where)); return true;
    case set_text: text = static_cast<const char*>(row.where); return true;
    case set_own: text = row.shown(); return true;
    default: return false;
    }
}

void network_load() {
    for (const auto& p : networkprefs) {
        std::string text;
        std::int64_t n = 0;
        if (p.text && prefs_get("Network", p.key, text)) copytext(p.text, sizeof set_httpproxyhost, text);
        if (p.text || !prefs_getint("Network", p.key, n)) continue;
        if (p.flag) *p.flag = n != 0;
        if (p.number && n >= 1 && n <= 32000) *p.number = Int4(n);
    }
}

void network_store() {
    for (const auto& p : networkprefs) {
        if (p.text)
            prefs_set("Network", p.key, p.text);
        else
            prefs_setint("Network", p.key, p.flag ? *p.flag : *p.number);
    }
}

}  // namespace velmo
