/* A C program that uses libovra's procedural interface as C callers do: I/O
 * through the replaceable table's wrappers, then the file utilities with
 * Fortran-style arguments. Runs in the current folder; exits nonzero on the
 * first surprise. OVRA_CLIENT_DATA must name the current folder (".") . */
#include "ovra/ovFileUtils.h"
#include "ovra/ovIOWrap.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#if defined(_WIN32)
#define CLIENT_BINARY O_BINARY
#else
#define CLIENT_BINARY 0
#endif

static int failures = 0;

static void check(int ok, const char* what) {
    if (!ok) {
        fprintf(stderr, "c_client: FAILED: %s (errno %d)\n", what, errno);
        ++failures;
    }
}

int main(void) {
    const char* file = "c_client_file.txt";
    const char* dir = "c_client_dir";
    /* Fortran passes names blank-padded, with the length that counts apart. */
    char padded[40];
    int n = (int)strlen(file);
    int ierr = -5, type = -5, size = -5, cls = -5, code = -5, is_file = 1, which = 2;
    int id[2], date[7];
    char buffer[16] = {0};
    char expanded[1025];
    int fd;

    memset(padded, ' ', sizeof padded);
    memcpy(padded, file, strlen(file));

    fd = ov_open3(file, O_CREAT | O_WRONLY | O_TRUNC | CLIENT_BINARY, 0644);
    check(fd >= 0, "ov_open3 creates the file");
    check(ov_write(fd, "hello, C", 8) == 8, "ov_write writes 8 bytes");
    check(ov_commit(fd) == 0, "ov_commit is a no-op");
    check(ov_close(fd) == 0, "ov_close");

    fd = ov_open2(file, O_RDONLY | CLIENT_BINARY);
    check(fd >= 0, "ov_open2 opens it again");
    check(ov_lseek(fd, 7, SEEK_SET) == 7, "ov_lseek");
    check(ov_read(fd, buffer, sizeof buffer) == 1 && buffer[0] == 'C', "ov_read after a seek");
    check(ov_close(fd) == 0, "ov_close again");
    check(ov_iowrap_alt_handles() == 0, "no alternative handles by default");

    fcusta(padded, (int)sizeof padded, &n, id, &type, &ierr);
    check(ierr == 0 && type == 1, "fcusta finds a regular file");
    fcsize(padded, (int)sizeof padded, &n, &size, &ierr);
    check(ierr == 0 && size == 8, "fcsize gives 8 bytes");
    fcdate(padded, (int)sizeof padded, &n, NULL, &which, date, &ierr);
    check(ierr == 0 && date[0] >= 2024 && date[6] == 0, "fcdate gives this year");
    which = 3;
    fcdate(padded, (int)sizeof padded, &n, NULL, &which, date, &ierr);
    check(ierr == -1, "fcdate refuses which = 3");

    fc_env_variable("$OVRA_CLIENT_DATA/c_client_file.txt", 35, expanded);
    check(strcmp(expanded, "./c_client_file.txt") == 0, "fc_env_variable expands $OVRA_CLIENT_DATA");
    {
        const char* via_env = "$OVRA_CLIENT_DATA\\..\\c_client_file.txt";
        int m = (int)strlen(via_env);
        fcusta(via_env, m, &m, NULL, NULL, &ierr);
        check(ierr != 0, "a backslash belongs to the variable name");
        via_env = "$OVRA_CLIENT_DATA/c_client_file.txt";
        m = (int)strlen(via_env);
        fcusta(via_env, m, &m, NULL, &type, &ierr);
        check(ierr == 0 && type == 1, "fcusta through an environment reference");
    }

    n = (int)strlen(dir);
    fcumkd(dir, n, &n, &ierr);
    check(ierr == 0, "fcumkd");
    fcusta(dir, n, &n, NULL, &type, &ierr);
    check(ierr == 0 && type == 0, "fcusta finds a directory");
    is_file = 0;
    fcudel(dir, n, &n, &is_file, &ierr);
    check(ierr == 0, "fcudel removes the empty directory");

    n = (int)strlen(file);
    is_file = 1;
    fcudel(file, n, &n, &is_file, &ierr);
    check(ierr == 0, "fcudel removes the file");
    fcusta(file, n, &n, NULL, NULL, &ierr);
    check(ierr == ENOENT, "fcusta: gone");
    fcuerr(&ierr, &cls, &code);
    check(cls == 1 && code == 11, "fcuerr classifies ENOENT");

    if (failures)
        return 1;
    puts("c_client: all checks passed");
    return 0;
}
