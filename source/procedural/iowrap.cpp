#include "ovra/ovIOWrap.h"

#include "procedural/iowrap_defaults.h"

#include "ub/ubGlyphs.h"

// The table itself: constant where the default is a function of a library
// linked at load time; each platform file supplies the runtime's functions.
ovOpenFunc ov_the_open_func = ub_open;
ovReadFunc ov_the_read_func = ovra_io::default_read();
ovWriteFunc ov_the_write_func = ovra_io::default_write();
ovStatFunc ov_the_stat_func = ub_stat;
ovCloseFunc ov_the_close_func = ovra_io::default_close();
ovTellFunc ov_the_tell_func = ovra_io::default_tell();
ovLseekFunc ov_the_lseek_func = ovra_io::default_lseek();
ovTruncateFunc ov_the_truncate_func = ovra_io::default_truncate();
ovCommitFunc ov_the_commit_func = ovra_io::commit_nothing;
ovUnlinkFunc ov_the_unlink_func = ub_unlink;
ovChmodFunc ov_the_chmod_func = ub_chmod;
ovIsattyFunc ov_the_isatty_func = ovra_io::default_isatty();
ovAltHandlesFunc ov_the_alt_handles = nullptr;
ovStati64Func ov_the_stati64_func = ub_stat64_func;

long ovra_io::commit_nothing(int) {
    return 0;
}

extern "C" {

OV_API int ov_read(int fd, void* buffer, unsigned int count) {
    return ov_the_read_func(fd, buffer, count);
}

OV_API int ov_write(int fd, const void* buffer, unsigned int count) {
    return ov_the_write_func(fd, buffer, count);
}

OV_API long ov_lseek(int fd, long offset, int origin) {
    return ov_the_lseek_func(fd, offset, origin);
}

OV_API int ov_close(int fd) {
    return ov_the_close_func(fd);
}

OV_API int ov_open2(const char* path, int flags) {
    return ov_the_open_func(path, flags, 0);
}

OV_API int ov_open3(const char* path, int flags, int mode) {
    return ov_the_open_func(path, flags, mode);
}

OV_API int ov_stat(const char* path, struct stat* result) {
    return ov_the_stat_func(path, result);
}

OV_API int ov_stati64(const char* path, ovStat64* result) {
    return ov_the_stati64_func(path, result);
}

OV_API long ov_tell(int fd) {
    return ov_the_tell_func(fd);
}

OV_API int ov_truncate(int fd, long size) {
    return ov_the_truncate_func(fd, size);
}

OV_API long ov_commit(int fd) {
    return ov_the_commit_func(fd);
}

OV_API int ov_unlink(const char* path) {
    return ov_the_unlink_func(path);
}

OV_API int ov_chmod(const char* path, int mode) {
    return ov_the_chmod_func(path, mode);
}

OV_API int ov_isatty(int fd) {
    return ov_the_isatty_func(fd);
}

OV_API int ov_iowrap_alt_handles(void) {
    return ov_the_alt_handles ? ov_the_alt_handles() : 0;
}

OV_API int g_system(const char* command) {
    return ub_system(command);
}

OV_API void iochsl(char* text, int /*text_len*/, const int* count) {
    if (!text || !count)
        return;
    for (int i = 0; i < *count; ++i) {
        if (text[i] == '\\')
            text[i] = '/';
    }
}

} // extern "C"

// truncate, commit, chmod and isatty are stored even when null: a caller may
// have no use for them, and the check was never made.
OV_API int ov_iowrap_set_io_functions(ovOpenFunc open, ovReadFunc read, ovWriteFunc write,
                                      ovStatFunc stat, ovCloseFunc close, ovTellFunc tell,
                                      ovLseekFunc lseek, ovTruncateFunc truncate,
                                      ovCommitFunc commit, ovUnlinkFunc unlink, ovChmodFunc chmod,
                                      ovIsattyFunc isatty, ovAltHandlesFunc alt_handles) {
    if (!open || !read || !write || !stat || !close || !tell || !lseek || !alt_handles || !unlink)
        return 0;
    ov_the_open_func = open;
    ov_the_read_func = read;
    ov_the_write_func = write;
    ov_the_stat_func = stat;
    ov_the_close_func = close;
    ov_the_tell_func = tell;
    ov_the_lseek_func = lseek;
    ov_the_truncate_func = truncate;
    ov_the_commit_func = commit;
    ov_the_unlink_func = unlink;
    ov_the_chmod_func = chmod;
    ov_the_isatty_func = isatty;
    ov_the_alt_handles = alt_handles;
    return 1;
}

OV_API int ov_iowrap_set_stati64(ovStati64Func stati64) {
    if (!stati64)
        return 0;
    ov_the_stati64_func = stati64;
    return 1;
}
