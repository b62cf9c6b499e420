// Runs a piece of a test in a process of its own that has no rights beyond those of an ordinary user.
//
//     inOrdinaryProcess([] { EXPECT_NE(geteuid(), 0u); });
#pragma once

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>

namespace brindlet {

inline bool dropRootRights() {
    constexpr unsigned nobody = 65534;
    if (::geteuid() != 0) return true;
    return ::setgroups(0, nullptr) == 0 && ::setgid(nobody) == 0 && ::setuid(nobody) == 0 && ::setuid(0) != 0;
}

// The body's expectations are printed by the process that runs it, and its failure is a failure here.
template <class Body>
void inOrdinaryProcess(Body body) {
    std::fflush(nullptr);
    const pid_t process = ::fork();
    ASSERT_GE(process, 0);
    if (process == 0) {
        bool passed = dropRootRights();
        try {
            if (passed) body();
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
        }
        passed = passed && !testing::Test::HasFailure();
        std::fflush(nullptr);
        ::_exit(passed ? 0 : 1);
    }
    int status = -1;
    ::waitpid(process, &status, 0);
    EXPECT_EQ(status, 0) << "see above for what failed in the process of its own";
}

}  // namespace brindlet
