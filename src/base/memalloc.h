// Work space outside the arena. Whatever may be large comes from here, never from a container that would abort:
// a null result is a return code (909) of the caller.
#pragma once
#include <cstddef>
#include <utility>
#include "base/types.h"

namespace velmo {

// State: the call that is refused, counted from here, 0 for none. For tests of what happens then (debug refuse #).
extern Int4 refusedcall;

// n bytes, aligned for any type, not cleared; null when refused or when n is 0 or beyond the machine's memory.
// Sizes from the page threshold (1 MB) on come from the page allocator and are touched only when used.
void* memalloc(std::size_t n);

// Gives back what memalloc gave; null is ignored.
void memfree(void* p);

// A block of work space that frees itself; get<T>() is null when it was refused.
struct workspace {
    void* p;
    explicit workspace(std::size_t n) : p(memalloc(n)) {}
    ~workspace() { memfree(p); }
    workspace(workspace&& other) : p(other.p) { other.p = nullptr; }
    workspace(const workspace&) = delete;
    workspace& operator=(workspace&& other) {
        std::swap(p, other.p);
        return *this;
    }
    workspace& operator=(const workspace&) = delete;
    template <class T> T* get() const { return static_cast<T*>(p); }
};

}  // namespace velmo
