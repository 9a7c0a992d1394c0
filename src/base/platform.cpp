// POSIX. Nothing here knows what the program does with what it gets.
#include "base/platform.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysinfo.h>
#include <sys/wait.h>
#include <unistd.h>
#include "base/poll.h"

namespace velmo {

openreason openfailure = open_fine;
boolean diskfull = false;

namespace {

clocktime broken(std::time_t t) {
    std::tm b{};
    localtime_r(&t, &b);
    return {b.tm_year + 1900, b.tm_mon + 1, b.tm_mday, b.tm_hour, b.tm_min, b.tm_sec};
}

void onsignal(int) { breakpending = breakswitch; }

// open, which may wait for a pipe's other end.
int openwaiting(const char* name, int flags, mode_t mode = 0) {
    int fd;
    do fd = open(name, flags, mode);
    while (fd < 0 && errno == EINTR && !breakpending);
    return fd;
}

// The session ends as soon as what runs has noticed a Break, and under nobreak behind it.
void onend(int signal) {
    endpending = signal;
    breakpending = breakswitch;
}

Int4 opened(int fd) {
    openfailure = open_fine;
    if (fd >= 0) return fd;
    openfailure = errno == EINTR ? open_broken
                  : errno == ENOENT || errno == ENOTDIR ? open_notfound : errno == EEXIST ? open_exists : open_refused;
    return -1;
}

// A number from a one-number file such as a control group's limit; `otherwise` when there is none.
std::size_t numberinfile(const char* name, std::size_t otherwise) {
    std::FILE* f = std::fopen(name, "r");
    if (!f) return otherwise;
    unsigned long long v = 0;
    boolean fine = std::fscanf(f, "%llu", &v) == 1;
    std::fclose(f);
    return fine && v > 0 && v < (1ull << 60) ? std::size_t(v) : otherwise;
}

}  // namespace

std::int64_t clockms() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return std::int64_t(t.tv_sec) * 1000 + t.tv_nsec / 1000000;
}

clocktime localclock() { return broken(std::time(nullptr)); }

void sleepms(Int4 ms) {
    if (ms <= 0) return;
    timespec t{ms / 1000, long(ms % 1000) * 1000000};
    nanosleep(&t, nullptr);
}

void installsignals() {
    struct sigaction a{};
    a.sa_handler = onsignal;
    sigemptyset(&a.sa_mask);
    for (int s : {SIGINT, SIGABRT}) sigaction(s, &a, nullptr);
    a.sa_handler = onend;
    for (int s : {SIGTERM, SIGHUP}) {
        struct sigaction old{};
        if (sigaction(s, nullptr, &old) == 0 && old.sa_handler != SIG_IGN) sigaction(s, &a, nullptr);     // nohup
    }
    a.sa_handler = SIG_IGN;
    for (int s : {SIGPIPE, SIGXFSZ}) sigaction(s, &a, nullptr);      // the write that failed tells it
}

void openstandardfiles() {
    for (int fd = 0; fd <= 2; fd++)
        if (fcntl(fd, F_GETFD) < 0 && open("/dev/null", fd == 0 ? O_RDONLY : O_WRONLY) != fd) return;
}

boolean isterminal(Int4 fd) { return isatty(fd); }

Int4 fileopenread(const char* name) {
    int fd = openwaiting(name, O_RDONLY | O_CLOEXEC);
    struct stat s{};
    if (fd >= 0 && fstat(fd, &s) == 0 && S_ISDIR(s.st_mode)) {
        close(fd);
        openfailure = open_refused;
        return -1;
    }
    return opened(fd);
}

Int4 fileopenwrite(const char* name, boolean replace, boolean append, boolean ispublic) {
    int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (append ? O_APPEND : replace ? O_TRUNC : O_EXCL);
    return opened(openwaiting(name, flags, ispublic ? 0666 : 0644));
}

Int4 fileopenprivate(const char* name, boolean append) {
    int fd = open(name, O_WRONLY | O_CREAT | O_CLOEXEC | (append ? O_APPEND : O_TRUNC), 0600);
    if (fd >= 0) fchmod(fd, 0600);
    return opened(fd);
}

Int4 fileopenboth(const char* name, boolean ispublic) {
    return opened(openwaiting(name, O_RDWR | O_CREAT | O_CLOEXEC, ispublic ? 0666 : 0644));
}

Pint fileread(Int4 fd, void* out, std::size_t n) {
    while (true) {
        ssize_t got = read(fd, out, n);
        if (got >= 0 || errno != EINTR || breakpending) return got;
    }
}

boolean filewrite(Int4 fd, const void* in, std::size_t n) {
    const char* p = static_cast<const char*>(in);
    while (n > 0) {
        ssize_t put = write(fd, p, n);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) {
            diskfull = put == 0 || errno == ENOSPC || errno == EDQUOT || errno == EFBIG;
            return false;
        }
        p += put;
        n -= std::size_t(put);
    }
    return true;
}

Filepos fileseek(Int4 fd, Filepos pos, Int4 whence) {
    return lseek(fd, pos, whence == 0 ? SEEK_SET : whence == 1 ? SEEK_CUR : SEEK_END);
}

Int4 filebeside(const char* name, std::string& target, std::string& beside) {
    struct stat s{};
    char* whole = realpath(name, nullptr);
    if (!whole) return -1;
    target = whole;
    std::free(whole);
    if (stat(target.c_str(), &s) != 0 || !S_ISREG(s.st_mode) || access(target.c_str(), W_OK) != 0) return -1;
    beside = target.substr(0, target.rfind('/') + 1) + ".velmo-XXXXXX";
    int fd = mkostemp(beside.data(), O_CLOEXEC);
    if (fd < 0) return -1;
    struct stat own{};
    boolean same = fstat(fd, &own) == 0 && own.st_uid == s.st_uid && own.st_gid == s.st_gid;
    if ((same || fchown(fd, s.st_uid, s.st_gid) == 0) && fchmod(fd, s.st_mode & 07777) == 0) return fd;
    close(fd);
    unlink(beside.c_str());
    return -1;
}

Filepos roominstead(const char* name) {
    struct statvfs s{};
    struct rlimit limit{};
    if (statvfs(name, &s) != 0 || getrlimit(RLIMIT_FSIZE, &limit) != 0) return 0;
    rlim_t room = rlim_t(s.f_bavail) * s.f_frsize + rlim_t(filestat(name).size);
    return Filepos(std::min(room, limit.rlim_cur));
}

void filetoend(Int4 fd) { fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_APPEND); }

boolean fileclose(Int4 fd) { return close(fd) == 0; }

boolean fileremove(const char* name) {
    struct stat s{};
    boolean isdevice = lstat(name, &s) == 0 && (S_ISCHR(s.st_mode) || S_ISBLK(s.st_mode));
    return !isdevice && unlink(name) == 0;
}

boolean filerename(const char* from, const char* to) { return rename(from, to) == 0; }

fileinfo filestat(const char* name) {
    struct stat s{};
    if (stat(name, &s) != 0) return {false, false, 0, {}};
    return {true, S_ISDIR(s.st_mode), s.st_size, broken(s.st_mtime)};
}

boolean samefile(const char* a, const char* b) {
    struct stat s{}, t{};
    return stat(a, &s) == 0 && stat(b, &t) == 0 && s.st_dev == t.st_dev && s.st_ino == t.st_ino;
}

std::string currentdir() {
    char here[pathsize];
    return getcwd(here, sizeof here) ? here : "";
}

boolean changedir(const char* name) { return chdir(name) == 0; }
boolean makedir(const char* name, boolean ispublic) { return mkdir(name, ispublic ? 0777 : 0755) == 0; }

std::string makeprivatedir(std::string stem) {
    stem += "XXXXXX";
    return mkdtemp(stem.data()) ? stem : "";
}

void removetree(const char* name) {
    std::error_code ignored;
    std::filesystem::remove_all(name, ignored);
}

boolean listdir(const char* name, std::vector<std::string>& names) {
    names.clear();
    DIR* d = opendir(name);
    if (!d) return false;
    while (dirent* e = readdir(d)) {
        std::string_view n = e->d_name;
        if (n != "." && n != "..") names.emplace_back(n);
    }
    closedir(d);
    std::sort(names.begin(), names.end());
    return true;
}

std::string environmenttext(const char* name) {
    const char* v = std::getenv(name);
    return v ? v : "";
}

std::string homedir() {
    std::string home = environmenttext("HOME");
    if (!home.empty()) return home;
    passwd* p = getpwuid(getuid());
    return p && p->pw_dir ? p->pw_dir : "";
}

std::string programfile() {
    char path[pathsize];
    ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    return n > 0 ? std::string(path, std::size_t(n)) : "";
}

std::string fullpath(const char* name) {
    if (name[0] == '/') return name;
    std::string here = currentdir();
    if (!here.empty() && here.back() != '/') here += '/';
    while (name[0] == '.' && name[1] == '/') name += 2;
    return here + name;
}

Int4 processid() { return getpid(); }

void* pagealloc(std::size_t n) {
    if (n > memorylimit()) return nullptr;
    void* p = mmap(nullptr, n, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (p == MAP_FAILED) return nullptr;
    madvise(p, n, MADV_HUGEPAGE);    // fewer misses of the address cache; a refusal does not matter
    return p;
}

void pagefree(void* p, std::size_t n) {
    if (p) munmap(p, n);
}

std::size_t memorylimit() {
    static const std::size_t limit = [] {
        struct sysinfo s{};
        std::size_t all = ~std::size_t(0) >> 2;
        if (sysinfo(&s) == 0) all = (std::size_t(s.totalram) + s.totalswap) * s.mem_unit;
        all = std::min(all, numberinfile("/sys/fs/cgroup/memory.max", all));
        return std::min(all, numberinfile("/sys/fs/cgroup/memory/memory.limit_in_bytes", all));
    }();
    return limit;
}

void messagebox(const char* title, const char* text) { std::fprintf(stderr, "%s %s\n", title, text); }

Int4 runshell(const char* shell, const char* command) {
    const char* program = *shell ? shell : "/bin/sh";
    pid_t child = fork();
    if (child < 0) return -1;
    if (child == 0) {
        for (int s : {SIGPIPE, SIGXFSZ}) signal(s, SIG_DFL);
        if (*command)
            execlp(program, program, "-c", command, static_cast<char*>(nullptr));
        else
            execlp(program, program, static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return -1;
    if (!WIFEXITED(status)) return 128 + WTERMSIG(status);
    return WEXITSTATUS(status) == 127 && !*command ? -1 : WEXITSTATUS(status);
}

}  // namespace velmo
