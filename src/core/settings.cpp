#include "core/settings.h"

namespace velmo {

UByte set_debug = 0, set_beep = 1, set_graphics = 1, set_virtual = 0, set_getsockopt = 0, set_checksum = 1;
UByte set_netdebug = 0, set_loghelp = 0, set_plot = 0, set_rssmat = 0, set_bmat = 0, set_override = 0;
UByte set_httpproxy = 0, set_httpproxyauth = 0;
Int4 set_level = 95, set_textsize = 100, set_adosize = 128, set_varlabelpos = 32, set_scrollbufsize = 32000;
Int4 set_entries = 100, set_timeout1 = 120, set_timeout2 = 300, set_httpproxyport = 80;
UByte set_logtext = 0;
Double set_tol = 0;
char set_cmdtitle[256], set_prefix[256], set_httpproxyhost[256], set_httpproxyuser[256], set_httpproxypw[256];

}  // namespace velmo
