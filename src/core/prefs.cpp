// The file is small and read whole. Before writing it is read again, so that what another session stored in the
// meantime stays; only the keys that this session set are laid over it. A new file takes the place of the old one
// in one step.
#include "core/prefs.h"
#include <charconv>
#include <vector>
#include "base/platform.h"
#include "base/text.h"

namespace velmo {

namespace {

struct preference { std::string section, key, value; boolean changed; };
std::vector<preference> prefs;

std::string prefsfolder() { return homedir() + "/.config/velmo"; }

preference* find(std::vector<preference>& all, std::string_view section, std::string_view key) {
    for (preference& p : all)
        if (p.section == section && p.key == key) return &p;
    return nullptr;
}

void store(std::vector<preference>& all, const preference& p) {
    if (preference* old = find(all, p.section, p.key))
        *old = p;
    else
        all.push_back(p);
}

std::string filetext(const std::string& name) {
    std::string text;
    Int4 fd = fileopenread(name.c_str());
    if (fd < 0) return text;
    char part[4096];
    constexpr std::size_t most = 1u << 20;
    for (Pint n; text.size() < most && (n = fileread(fd, part, sizeof part)) > 0;) text.append(part, std::size_t(n));
    fileclose(fd);
    return text;
}

std::vector<preference> readall() {
    std::vector<preference> all;
    std::string text = filetext(prefsfolder() + "/preferences"), section;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = std::min(text.find('\n', at), text.size());
        std::string_view line = std::string_view(text).substr(at, end - at);
        at = end + 1;
        std::size_t equals = line.find('=');
        if (line.size() > 2 && line.front() == '[' && line.back() == ']')
            section = line.substr(1, line.size() - 2);
        else if (equals != line.npos)
            store(all, {section, std::string(trimmed(line.substr(0, equals))), std::string(line.substr(equals + 1)),
                        false});
    }
    return all;
}

std::string textof(const std::vector<preference>& all) {
    std::string text;
    std::vector<std::string> done;
    for (const preference& first : all) {
        boolean seen = false;
        for (const std::string& s : done) seen = seen || s == first.section;
        if (seen) continue;
        done.push_back(first.section);
        text += "[" + first.section + "]\n";
        for (const preference& p : all)
            if (p.section == first.section) text += p.key + "=" + p.value + "\n";
    }
    return text;
}

}  // namespace

void prefs_load() { prefs = readall(); }

std::string prefs_file() { return prefsfolder() + "/preferences"; }

boolean prefs_save() {
    boolean changed = false;
    for (const preference& p : prefs) changed = changed || p.changed;
    if (!changed) return true;
    std::vector<preference> all = readall();
    for (const preference& p : prefs)
        if (p.changed) store(all, p);
    std::string folder = prefsfolder(), name = prefs_file(), fresh = name + ".new", text = textof(all);
    makedir((homedir() + "/.config").c_str(), false);
    makedir(folder.c_str(), false);
    Int4 fd = fileopenprivate(fresh.c_str(), false);
    if (fd < 0) return false;
    boolean fine = filewrite(fd, text.data(), text.size());
    fine = fileclose(fd) && fine && filerename(fresh.c_str(), name.c_str());
    if (!fine) fileremove(fresh.c_str());
    for (preference& p : prefs) p.changed = p.changed && !fine;
    return fine;
}

void prefs_ended() { prefs_save(); }

boolean prefs_get(std::string_view section, std::string_view key, std::string& value) {
    preference* p = find(prefs, section, key);
    if (p) value = p->value;
    return p != nullptr;
}

boolean prefs_getint(std::string_view section, std::string_view key, std::int64_t& value) {
    preference* p = find(prefs, section, key);
    if (!p) return false;
    const char* end = p->value.data() + p->value.size();
    std::int64_t n = 0;
    std::from_chars_result r = std::from_chars(p->value.data(), end, n);
    if (r.ec != std::errc() || r.ptr != end) return false;
    value = n;
    return true;
}

void prefs_set(std::string_view section, std::string_view key, std::string_view value) {
    std::string text(value.substr(0, value.find('\n')));
    store(prefs, {std::string(section), std::string(key), text, true});
}

void prefs_setint(std::string_view section, std::string_view key, std::int64_t value) {
    prefs_set(section, key, std::to_string(value));
}

}  // namespace velmo
