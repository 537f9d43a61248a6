#include "ovra/ovHostUser.h"

#include "procedural_test_support.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <pwd.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

TEST(HostUserPosix, NamesFromTheSystemNoFullNameOrDomain) {
    char host[256] = {};
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    ASSERT_NE(ov_gethostname(), nullptr);
    EXPECT_STREQ(ov_gethostname(), host);

    const passwd* entry = getpwuid(getuid());
    ASSERT_NE(entry, nullptr);
    char* uid = nullptr;
    ovgetuid(&uid);
    EXPECT_STREQ(uid, entry->pw_name) << "the password entry of the real user id";
    ov_free_string(uid);

    // No full name or domain, even when the variables say "domain logon".
    proc_test::ScopedEnv server("LOGONSERVER", "\\\\SERVER");
    proc_test::ScopedEnv computer("COMPUTERNAME", "client");
    EXPECT_EQ(ovgetdomain(), nullptr);
    char out[256] = "untouched";
    unsigned size = sizeof out;
    EXPECT_EQ(ov_getusername_GetFullName(out, &size), 0);
    EXPECT_EQ(ov_getusername_NameFromDomain("user", "DOMAIN", out), 0);
    EXPECT_STREQ(out, "untouched");
    EXPECT_EQ(size, sizeof out);

    char* user = nullptr;
    char* full = nullptr;
    ovgetuser(&user, &full);
    EXPECT_STREQ(full, user) << "the full name falls back to the login name";
    ov_free_string(user);
    ov_free_string(full);
}

namespace {
volatile sig_atomic_t the_last_count = 0;
void remember(int count) {
    the_last_count = count;
}
} // namespace

// A real SIGINT from another process reaches ovra_interrupt as a signal handler.
TEST(HostUserPosix, SigintFromAnotherProcessCountsABreak) {
    const int zero = 0;
    ovbrks(&zero);
    OvBreakHandler(remember);
    struct sigaction action = {}, previous = {};
    action.sa_handler = ovra_interrupt;
    sigemptyset(&action.sa_mask);
    ASSERT_EQ(sigaction(SIGINT, &action, &previous), 0);

    for (int expected = 1; expected <= 3; ++expected) {
        SCOPED_TRACE(expected);
        const pid_t parent = getpid();
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            _exit(kill(parent, SIGINT) == 0 ? 0 : 1);
        int status = 0;
        while (waitpid(child, &status, 0) < 0) {
        }
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        int count = 0;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        do {
            ovbrkn(&count);
            if (count == expected)
                break;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        } while (std::chrono::steady_clock::now() < deadline);
        EXPECT_EQ(count, expected);
        EXPECT_EQ(the_last_count, expected);
    }

    sigaction(SIGINT, &previous, nullptr);
    OvBreakHandler(nullptr);
    ovbrks(&zero);
}
