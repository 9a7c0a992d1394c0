// Marks for AddressSanitizer: bytes of the block that nobody may touch now. In other builds they cost nothing.
#pragma once
#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define VELMO_GUARDS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VELMO_GUARDS
#endif
#endif
#ifdef VELMO_GUARDS
#include <sanitizer/asan_interface.h>
#endif

namespace velmo {

#ifdef VELMO_GUARDS
inline void forbid(const void* p, std::size_t n) { __asan_poison_memory_region(p, n); }
inline void permit(const void* p, std::size_t n) { __asan_unpoison_memory_region(p, n); }
#else
inline void forbid(const void*, std::size_t) {}
inline void permit(const void*, std::size_t) {}
#endif
inline void forbid(const void* from, const void* to) {
    if (from < to) forbid(from, std::size_t(static_cast<const char*>(to) - static_cast<const char*>(from)));
}

}  // namespace velmo
