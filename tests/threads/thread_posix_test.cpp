// POSIX: a standard-library thread that was not joined ends the process when destroyed.
#include "ovra/ovSystemOperations.h"
#include "ovra/ovThread.h"

#include <gtest/gtest.h>

namespace {

class IdleTask final : public ovIThreadTask {
public:
    void run() override {}
};

} // namespace

TEST(ThreadPosixDeathTest, UnjoinedThreadEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const ovPosixProcessThreadOperations ops;
    EXPECT_DEATH({ ovThread thread(std::make_shared<IdleTask>(), &ops); }, "");
}
