// A fixture that starts the block with as few bytes as a test likes and gives the usual start values back afterwards.
#pragma once
#include <gtest/gtest.h>
#include <random>
#include "core/memory.h"
#include "core/prefs.h"

namespace velmo {

struct smallmemory : testing::Test {
    std::mt19937 random;

    smallmemory(UInt4 seed, std::uint64_t bytes) : random(seed), startbytes(bytes) {}
    void SetUp() override { begin(startbytes); }
    void TearDown() override {
        memory_stop();
        setlengths(5000);
        matsize = 400;
        memory = 10485760;
        quietlevel = 0;
    }
    void begin(std::uint64_t bytes) {
        quietlevel = shows_nothing;
        memory_stop();
        setlengths(2048);
        memory = bytes;
        ASSERT_EQ(memory_start(), 0);
        ASSERT_EQ(memory, bytes);
        began();
    }
    virtual void began() {}
    UInt4 pick(UInt4 n) { return UInt4(random() % n); }

private:
    std::uint64_t startbytes;
};

}
