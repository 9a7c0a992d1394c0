// Preferences: text by section and key, kept in ~/.config/velmo/preferences ("[section]" lines, "key=value" lines)
// between sessions. Read once at the start; written by prefs_save when something changed.
#pragma once
#include <string>
#include <string_view>
#include "base/types.h"

namespace velmo {

void prefs_load();                     // a missing or unreadable file is an empty one
// Writes what changed, as a file that only its user can read (a proxy's password may stand there); false when it could
// not be written, and then a later call tries again.
boolean prefs_save();
std::string prefs_file();              // its name
// False when there is no such key.
boolean prefs_get(std::string_view section, std::string_view key, std::string& value);
boolean prefs_getint(std::string_view section, std::string_view key, std::int64_t& value);
void prefs_set(std::string_view section, std::string_view key, std::string_view value);
void prefs_setint(std::string_view section, std::string_view key, std::int64_t value);

}  // namespace velmo
