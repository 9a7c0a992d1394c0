// Any bytes as a do-file: the reader, the tokenizer, every command. Afterwards the session must be as whole as before.
#include "core/commands.h"
#include "core/room.h"
#include "language/dofile.h"
#include "language/levels.h"
#include "session.h"

using namespace velmo;

// The words of commands that reach beyond the session; bytes that the reader drops don't hide them.
static bool reachesout(std::string_view text) {
    static constexpr std::string_view outside[] = {"shell", "xshell", "erase",    "copy", "cp",   "mkdir",
                                                   "chdir", "cd",     "dir",      "ls",   "sleep", "do",
                                                   "run",   "save",   "outsheet", "beep", "memory",
                                                   "outfile", "postfile"};
    std::string word;
    for (std::size_t i = 0; i <= text.size(); i++) {
        char c = i < text.size() ? text[i] : ' ';
        if (c == '!') return true;
        if (isnamechar(c)) word += c;
        if (isnamechar(c) || (UByte(c) < 32 && c != '\n' && c != '\r' && c != '\t')) continue;
        const char* name = builtinname(word.c_str());
        for (std::string_view o : outside)
            if (name && o == name) return true;
        if (word == "VELMO" || word.find("perm") == 0) return true;
        word.clear();
    }
    return false;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    startsession();
    std::string text(reinterpret_cast<const char*>(data), size), joined = text;
    for (std::size_t at; (at = joined.find_first_of("/*")) != std::string::npos;) joined.erase(at, 1);
    if (reachesout(text) || reachesout(joined)) return 0;
    writefile("fuzz.do", text);
    obey(size % 2 ? "do fuzz, nostop" : "run fuzz");
    if (memory_check() || dofile || dolevel || openreaders || !execflag || quietlevel || semicolon) std::abort();
    cleardata(false);
    obey("version 7");
    return 0;
}
