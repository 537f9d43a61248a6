/* A C program that uses libovra's host, user, argument, date and break
 * functions as C callers do, with its own arguments in the store and a real
 * interrupt signal. Exits nonzero on the first surprise. */
#include "ovra/ovHostUser.h"

#include <signal.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;
static volatile sig_atomic_t last_break = 0;

static void check(int ok, const char* what) {
    if (!ok) {
        fprintf(stderr, "c_hostuser_client: FAILED: %s\n", what);
        ++failures;
    }
}

static void on_break(int count) {
    last_break = count;
}

int main(int argc, char** argv) {
    char* user = NULL;
    char* full = NULL;
    char buf[4096]; /* the program's name is its whole path on some systems */
    char cut[6];
    int n = -1, index = 0, count = -1;
    const char* host = ov_gethostname();

    check(host != NULL && host[0] != '\0', "ov_gethostname");
    ovgetuser(&user, &full);
    check(user != NULL && strcmp(user, "USERERROR") != 0, "ovgetuser gives the login name");
    check(full != NULL && full[0] != '\0', "ovgetuser gives a full name");
    ov_free_string(user);
    ov_free_string(full);
    ov_free_string(ovgetdomain());

    argsgi(argc, argv);
    check(get_argc() == argc && get_argv() == argv, "the argument store");
    argget(&index, buf, (int)sizeof buf, &n);
    check(n > 0 && n < (int)sizeof buf && n == (int)strlen(buf), "argget of the program's name");
    memset(cut, '#', sizeof cut);
    argget(&index, cut, 4, &n);
    check(n == 4 && cut[4] == '#', "argget cut to its buffer, with nothing past it");
    index = argc;
    argget(&index, buf, (int)sizeof buf, &n);
    check(n == 0 && buf[0] == '\0', "argget at the count");

    OvBreakHandler(on_break);
    check(signal(SIGINT, ovra_interrupt) != SIG_ERR, "ovra_interrupt as the handler");
    raise(SIGINT);
    ovbrkn(&count);
    check(count == 1 && last_break == 1, "an interrupt signal counts one break");
    count = 0;
    ovbrks(&count);
    OvBreakHandler(NULL);
    signal(SIGINT, SIG_DFL);

    memset(buf, 'x', sizeof buf);
    ddate(buf, 20);
    check(buf[2] == ' ' && buf[14] == '.' && buf[20] == 'x', "ddate writes 20 characters");
    check(ov_random() >= 0.0 && ov_random() <= 1.0, "ov_random from 0 to 1");
    check(ovWinVersion() == ovWIN_VERSION_NT, "ovWinVersion");

    if (failures)
        return 1;
    puts("c_hostuser_client: all checks passed");
    return 0;
}
