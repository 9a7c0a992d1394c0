// The walk over the run, firstobs to lastobs (data/run.h): by blocks, by blocks with the mask of the `if`, or by the
// observations that the `if` selects. Each notices a Break, and hands up what its body returns; a body without result
// can't fail.
#pragma once
#include <algorithm>
#include <type_traits>
#include "base/poll.h"
#include "data/run.h"
#include "expr/evaluate.h"

namespace velmo {

template <class F, class... A> Int4 walkstep(F& one, A... a) {
    if constexpr (std::is_void_v<decltype(one(a...))>) {
        one(a...);
        return 0;
    } else {
        return one(a...);
    }
}

// one(first, n): the pieces of up to blocksize observations. 0, 1 on a Break, or what one returned.
template <class F> Int4 overblocks(F one) {
    for (Int4 first = firstobs; first <= lastobs; first += blocksize) {
        if (Int4 rc = walkstep(one, first, std::min(blocksize, lastobs - first + 1))) return rc;
        if (tick()) return 1;
        if (lastobs - first < blocksize) break;
    }
    return 0;
}

// one(first, n, mask): likewise, with 1 in the mask where the `if` holds. The whole block's `if` is evaluated before
// one sees it.
template <class F> Int4 overmasks(F one) {
    UByte mask[blocksize];
    return overblocks([&](Int4 first, Int4 n) {
        exp_ifblock(first, n, mask);
        return walkstep(one, first, n, static_cast<const UByte*>(mask));
    });
}

// one(obs): the observations that the `if` selects. Where it reads the variable `written` at other observations, or
// draws random numbers between those that one() draws, it is evaluated right before the call.
template <class F> Int4 overobs(F one, Int4 written = 0) {
    boolean masked = exp_maskable(written);
    UByte mask[blocksize];
    return overblocks([&](Int4 first, Int4 n) -> Int4 {
        if (masked) exp_ifblock(first, n, mask);
        for (Int4 i = 0; i < n; i++) {
            if (masked ? mask[i] : exp_iftest(first + i))
                if (Int4 rc = walkstep(one, first + i)) return rc;
            if (tick()) return 1;
        }
        return 0;
    });
}

}  // namespace velmo
