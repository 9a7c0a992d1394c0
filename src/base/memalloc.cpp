// An 8-byte header ahead of each block says how large it is and so which allocator it came from; a second
// word keeps the block aligned to 16.
#include "base/memalloc.h"
#include <cstdlib>
#include "base/platform.h"

namespace velmo {

Int4 refusedcall = 0;

namespace {
constexpr std::size_t headersize = 16;
constexpr std::size_t pagethreshold = std::size_t(1) << 20;
}  // namespace

void* memalloc(std::size_t n) {
    if (n == 0 || n > memorylimit() || (refusedcall && --refusedcall == 0)) return nullptr;
    std::size_t total = n + headersize;
    void* base = total >= pagethreshold ? pagealloc(total) : std::malloc(total);
    if (!base) return nullptr;
    *static_cast<std::size_t*>(base) = total;
    return static_cast<char*>(base) + headersize;
}

void memfree(void* p) {
    if (!p) return;
    void* base = static_cast<char*>(p) - headersize;
    std::size_t total = *static_cast<std::size_t*>(base);
    if (total >= pagethreshold)
        pagefree(base, total);
    else
        std::free(base);
}

}  // namespace velmo
