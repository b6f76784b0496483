#include "CorvaneBrell/Model/Paced.h"

#include <gtest/gtest.h>

#include "Tests/Support/FakeMainLoop.h"

namespace brell::testing {

using namespace std::chrono_literals;

TEST(PacedTest, WhatIsAskedForSoonerIsDoneOnceWhenTheWhileIsOver) {
    FakeMainLoop loop;
    int done = 0;
    auto paced = std::make_unique<Paced>(loop, 1s, [&] { ++done; });
    const auto askAfter = [&](std::chrono::milliseconds time) {
        loop.advance(time);
        paced->ask();
    };
    askAfter(400ms);
    askAfter(100ms);
    loop.advance(499ms);
    EXPECT_EQ(done, 0) << "as if it had been done when it was made";
    loop.advance(1ms);
    EXPECT_EQ(done, 1);
    loop.advance(5s);
    EXPECT_EQ(done, 1) << "nobody asked";
    askAfter(0ms);
    loop.runUntilIdle();
    EXPECT_EQ(done, 2) << "at once, after so long";
    askAfter(999ms);
    loop.runUntilIdle();
    EXPECT_EQ(done, 2);
    paced.reset();
    loop.advance(1s);
    EXPECT_EQ(done, 2) << "nobody is there to do it";
}

}  // namespace brell::testing
