! The procedural interface of libovra for Fortran callers.
!
! libovra takes each character argument as a pointer immediately followed by its
! hidden length (an int passed by value), the order the Windows Fortran compilers
! use. gfortran and most others put hidden lengths at the end of the argument
! list, so the C functions cannot be called from them as plain externals.
!
! This module gives both forms:
!   - `<name>_c`: bind(C) interfaces to the exported functions, with the hidden
!     length as an explicit `integer(c_int), value` argument;
!   - `<name>`: convenience procedures that take ordinary `character(*)`
!     arguments and pass len(name) for the caller, so existing code keeps
!     calling `fcusta(name, n, id, itype, ierr)`.
! `n` is the number of characters that count (pass len_trim(name)): the library
! does not trim. The outcome is the last argument, as in C: 0 success, a
! positive errno value or error class, -1 for rejected arguments.
!
! Compile this file with your program (gfortran -c ovra.f90) and link
! libovra. `id`, `itype` and `date` may be omitted where C accepts null.
module ovra
    use, intrinsic :: iso_c_binding, only: c_char, c_int, c_long, c_null_char, c_double, &
                                           c_ptr, c_funptr
    implicit none
    private

    public :: fcusta_c, fcsize_c, fcumkd_c, fcudel_c, fcuddl_c, fcudat_c, fcdate_c
    public :: fcuerr, fcmcer, fcusiz_c, iochsl_c, fc_env_variable_c
    public :: fc_allow_env_in_paths, ov_open2_c, ov_read, ov_write, ov_close, ov_lseek
    public :: ov_unlink_c, g_system_c
    public :: fcusta, fcsize, fcusiz, fcumkd, fcudel, fcuddl, fcudat, fcdate, iochsl
    public :: fc_env_variable, ov_open2, ov_unlink, g_system
    ! Host, user, arguments, dates and breaks (ovra/ovHostUser.h).
    public :: ncha_c, ccase_c, ovghnm_c, ovghtp_c, ovgtun_c, argget_c, ovdate_c, ddate_c
    public :: ovchdir_c, argsgi, nargq, timedp, ovwait, ovbreakhandler, ovbreakchecker
    public :: ovbrks, ovra_interrupt, ovbrkq, ovbrkn, ovbrkc, ov_break_query
    public :: ov_querying_break, ov_sse2_support, ov_random, ovwinversion, ovislocallogonnt
    public :: ncha, ccase, ovghnm, ovghtp, ovgtun, argget, ovdate, ddate, ovchdir

    ! Longest prepared path, in characters.
    integer, parameter, public :: ov_max_path = 1024

    interface
        subroutine fcusta_c(name, name_len, n, id, itype, ierr) bind(C, name="fcusta")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: name(*)
            integer(c_int), value :: name_len
            integer(c_int), intent(in) :: n
            integer(c_int), intent(out), optional :: id(2)
            integer(c_int), intent(out), optional :: itype
            integer(c_int), intent(out) :: ierr
        end subroutine

        subroutine fcsize_c(name, name_len, n, isize, ierr) bind(C, name="fcsize")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: name(*)
            integer(c_int), value :: name_len
            integer(c_int), intent(in) :: n
            integer(c_int), intent(out) :: isize, ierr
        end subroutine

        ! The exported C++ function: count by value, size and error by reference.
        subroutine fcusiz_c(name, name_len, n, isize, ierr) bind(C, name="_Z6fcusizPKciiRiS1_")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: name(*)
            integer(c_int), value :: name_len, n
            integer(c_int), intent(out) :: isize, ierr
        end subroutine

        subroutine fcumkd_c(name, name_len, n, ierr) bind(C, name="fcumkd")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: name(*)
            integer(c_int), value :: name_len
            integer(c_int), intent(in) :: n
            integer(c_int), intent(out) :: ierr
        end subroutine

        subroutine fcudel_c(name, name_len, n, is_file, ierr) bind(C, name="fcudel")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: name(*)
            integer(c_int), value :: name_len
            integer(c_int), intent(in) :: n, is_file
            integer(c_int), intent(out) :: ierr
        end subroutine

        subroutine fcuddl_c(name, name_len, n, ierr) bind(C, name="fcuddl")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: name(*)
            integer(c_int), value :: name_len
            integer(c_int), intent(in) :: n
            integer(c_int), intent(out) :: ierr
        end subroutine

        subroutine fcudat_c(name, name_len, n, which, date, ierr) bind(C, name="fcudat")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: name(*)
            integer(c_int), value :: name_len
            integer(c_int), intent(in) :: n, which
            integer(c_int), intent(out), optional :: date(7)
            integer(c_int), intent(out) :: ierr
        end subroutine

        ! `unused` stands for the ignored pointer-sized argument.
        subroutine fcdate_c(name, name_len, n, unused, which, date, ierr) bind(C, name="fcdate")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: name(*)
            integer(c_int), value :: name_len
            integer(c_int), intent(in) :: n
            integer(c_int), intent(in), optional :: unused
            integer(c_int), intent(in) :: which
            integer(c_int), intent(out), optional :: date(7)
            integer(c_int), intent(out) :: ierr
        end subroutine

        subroutine fcuerr(errno_value, iclass, icode) bind(C, name="fcuerr")
            import :: c_int
            integer(c_int), intent(in) :: errno_value
            integer(c_int), intent(out) :: iclass, icode
        end subroutine

        subroutine fcmcer(errno_value, iclass) bind(C, name="fcmcer")
            import :: c_int
            integer(c_int), intent(in) :: errno_value
            integer(c_int), intent(out) :: iclass
        end subroutine

        subroutine iochsl_c(text, text_len, count) bind(C, name="iochsl")
            import :: c_char, c_int
            character(kind=c_char), intent(inout) :: text(*)
            integer(c_int), value :: text_len
            integer(c_int), intent(in) :: count
        end subroutine

        ! `out` receives at most 1024 characters and a NUL.
        subroutine fc_env_variable_c(in, n, out) bind(C, name="fc_env_variable")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: in(*)
            integer(c_int), value :: n
            character(kind=c_char), intent(out) :: out(*)
        end subroutine

        integer(c_int) function fc_allow_env_in_paths(flag) bind(C, name="fc_allow_env_in_paths")
            import :: c_int
            integer(c_int), value :: flag
        end function

        ! Paths given to the C functions below must end with c_null_char.
        integer(c_int) function ov_open2_c(path, flags) bind(C, name="ov_open2")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: path(*)
            integer(c_int), value :: flags
        end function

        integer(c_int) function ov_unlink_c(path) bind(C, name="ov_unlink")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: path(*)
        end function

        integer(c_int) function g_system_c(command) bind(C, name="g_system")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: command(*)
        end function

        integer(c_int) function ov_read(fd, buffer, count) bind(C, name="ov_read")
            import :: c_int
            import :: c_char
            integer(c_int), value :: fd, count
            character(kind=c_char), intent(inout) :: buffer(*)
        end function

        integer(c_int) function ov_write(fd, buffer, count) bind(C, name="ov_write")
            import :: c_int
            import :: c_char
            integer(c_int), value :: fd, count
            character(kind=c_char), intent(in) :: buffer(*)
        end function

        integer(c_int) function ov_close(fd) bind(C, name="ov_close")
            import :: c_int
            integer(c_int), value :: fd
        end function

        integer(c_long) function ov_lseek(fd, offset, origin) bind(C, name="ov_lseek")
            import :: c_int, c_long
            integer(c_int), value :: fd, origin
            integer(c_long), value :: offset
        end function

        ! Host, user, arguments, dates and breaks.
        integer(c_int) function ncha_c(text, text_len) bind(C, name="ncha")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: text(*)
            integer(c_int), value :: text_len
        end function

        subroutine ccase_c(text, text_len, mode) bind(C, name="ccase")
            import :: c_char, c_int
            character(kind=c_char), intent(inout) :: text(*)
            integer(c_int), value :: text_len
            integer(c_int), intent(in) :: mode
        end subroutine

        subroutine ovghnm_c(buf, buf_len, n) bind(C, name="ovghnm")
            import :: c_char, c_int
            character(kind=c_char), intent(out) :: buf(*)
            integer(c_int), value :: buf_len
            integer(c_int), intent(out) :: n
        end subroutine

        subroutine ovghtp_c(buf, buf_len, n) bind(C, name="ovghtp")
            import :: c_char, c_int
            character(kind=c_char), intent(out) :: buf(*)
            integer(c_int), value :: buf_len
            integer(c_int), intent(out) :: n
        end subroutine

        subroutine ovgtun_c(user, user_len, full, full_len) bind(C, name="ovgtun")
            import :: c_char, c_int
            character(kind=c_char), intent(out) :: user(*)
            integer(c_int), value :: user_len
            character(kind=c_char), intent(out) :: full(*)
            integer(c_int), value :: full_len
        end subroutine

        ! The library keeps the address of argv: give it an array that lives on
        ! (a saved or module array of c_loc's of NUL-terminated texts).
        subroutine argsgi(argc, argv) bind(C, name="argsgi")
            import :: c_int, c_ptr
            integer(c_int), value :: argc
            type(c_ptr), intent(in) :: argv(*)
        end subroutine

        subroutine nargq(n) bind(C, name="nargq")
            import :: c_int
            integer(c_int), intent(out) :: n
        end subroutine

        ! Writes the argument and, when it fits, a NUL; the rest is untouched.
        subroutine argget_c(index, buf, buf_len, n) bind(C, name="argget")
            import :: c_char, c_int
            integer(c_int), intent(in) :: index
            character(kind=c_char), intent(inout) :: buf(*)
            integer(c_int), value :: buf_len
            integer(c_int), intent(out) :: n
        end subroutine

        subroutine timedp(t) bind(C, name="timedp")
            import :: c_double
            real(c_double), intent(out) :: t
        end subroutine

        subroutine ovdate_c(buf, buf_len) bind(C, name="ovdate")
            import :: c_char, c_int
            character(kind=c_char), intent(inout) :: buf(*)
            integer(c_int), value :: buf_len
        end subroutine

        subroutine ddate_c(buf, buf_len) bind(C, name="ddate")
            import :: c_char, c_int
            character(kind=c_char), intent(inout) :: buf(*)
            integer(c_int), value :: buf_len
        end subroutine

        subroutine ovwait(ms) bind(C, name="ovwait")
            import :: c_int
            integer(c_int), intent(in) :: ms
        end subroutine

        integer(c_int) function ovchdir_c(dir) bind(C, name="ovchdir")
            import :: c_char, c_int
            character(kind=c_char), intent(in) :: dir(*)
        end function

        ! handler: c_funloc of a bind(C) subroutine taking integer(c_int), value;
        ! c_null_funptr removes it.
        subroutine ovbreakhandler(handler) bind(C, name="OvBreakHandler")
            import :: c_funptr
            type(c_funptr), value :: handler
        end subroutine

        ! checker: c_funloc of a bind(C) subroutine taking type(c_ptr), value.
        subroutine ovbreakchecker(checker, data) bind(C, name="OvBreakChecker")
            import :: c_funptr, c_ptr
            type(c_funptr), value :: checker
            type(c_ptr), value :: data
        end subroutine

        subroutine ovbrks(value) bind(C, name="ovbrks")
            import :: c_int
            integer(c_int), intent(in) :: value
        end subroutine

        subroutine ovra_interrupt(signal_number) bind(C, name="ovra_interrupt")
            import :: c_int
            integer(c_int), value :: signal_number
        end subroutine

        subroutine ovbrkq(count) bind(C, name="ovbrkq")
            import :: c_int
            integer(c_int), intent(out) :: count
        end subroutine

        subroutine ovbrkn(count) bind(C, name="ovbrkn")
            import :: c_int
            integer(c_int), intent(out) :: count
        end subroutine

        subroutine ovbrkc() bind(C, name="ovbrkc")
        end subroutine

        integer(c_int) function ov_break_query() bind(C, name="ov_break_query")
            import :: c_int
        end function

        integer(c_int) function ov_querying_break() bind(C, name="ov_querying_break")
            import :: c_int
        end function

        integer(c_int) function ov_sse2_support() bind(C, name="ov_sse2_support")
            import :: c_int
        end function

        real(c_double) function ov_random() bind(C, name="ov_random")
            import :: c_double
        end function

        integer(c_int) function ovwinversion() bind(C, name="ovWinVersion")
            import :: c_int
        end function

        integer(c_int) function ovislocallogonnt() bind(C, name="ovIsLocalLogonNT")
            import :: c_int
        end function
    end interface

contains

    subroutine fcusta(name, n, id, itype, ierr)
        character(*), intent(in) :: name
        integer(c_int), intent(in) :: n
        integer(c_int), intent(out), optional :: id(2), itype
        integer(c_int), intent(out) :: ierr
        call fcusta_c(name, len(name), n, id, itype, ierr)
    end subroutine

    subroutine fcsize(name, n, isize, ierr)
        character(*), intent(in) :: name
        integer(c_int), intent(in) :: n
        integer(c_int), intent(out) :: isize, ierr
        call fcsize_c(name, len(name), n, isize, ierr)
    end subroutine

    subroutine fcusiz(name, n, isize, ierr)
        character(*), intent(in) :: name
        integer(c_int), intent(in) :: n
        integer(c_int), intent(out) :: isize, ierr
        call fcusiz_c(name, len(name), n, isize, ierr)
    end subroutine

    subroutine fcumkd(name, n, ierr)
        character(*), intent(in) :: name
        integer(c_int), intent(in) :: n
        integer(c_int), intent(out) :: ierr
        call fcumkd_c(name, len(name), n, ierr)
    end subroutine

    subroutine fcudel(name, n, is_file, ierr)
        character(*), intent(in) :: name
        integer(c_int), intent(in) :: n, is_file
        integer(c_int), intent(out) :: ierr
        call fcudel_c(name, len(name), n, is_file, ierr)
    end subroutine

    subroutine fcuddl(name, n, ierr)
        character(*), intent(in) :: name
        integer(c_int), intent(in) :: n
        integer(c_int), intent(out) :: ierr
        call fcuddl_c(name, len(name), n, ierr)
    end subroutine

    subroutine fcudat(name, n, which, date, ierr)
        character(*), intent(in) :: name
        integer(c_int), intent(in) :: n, which
        integer(c_int), intent(out), optional :: date(7)
        integer(c_int), intent(out) :: ierr
        call fcudat_c(name, len(name), n, which, date, ierr)
    end subroutine

    subroutine fcdate(name, n, which, date, ierr)
        character(*), intent(in) :: name
        integer(c_int), intent(in) :: n, which
        integer(c_int), intent(out), optional :: date(7)
        integer(c_int), intent(out) :: ierr
        call fcdate_c(name, len(name), n, which=which, date=date, ierr=ierr)
    end subroutine

    ! Backslashes among the first `count` characters become slashes.
    subroutine iochsl(text, count)
        character(*), intent(inout) :: text
        integer(c_int), intent(in) :: count
        call iochsl_c(text, len(text), count)
    end subroutine

    ! The expansion of name(1:n), blank-padded into `out` (cut to len(out)).
    subroutine fc_env_variable(name, n, out)
        character(*), intent(in) :: name
        integer(c_int), intent(in) :: n
        character(*), intent(out) :: out
        character(kind=c_char) :: buf(ov_max_path + 1)
        integer :: i
        call fc_env_variable_c(name, n, buf)
        out = ' '
        do i = 1, min(len(out), ov_max_path)
            if (buf(i) == c_null_char) exit
            out(i:i) = buf(i)
        end do
    end subroutine

    integer(c_int) function ov_open2(path, flags)
        character(*), intent(in) :: path
        integer(c_int), intent(in) :: flags
        ov_open2 = ov_open2_c(trim(path) // c_null_char, flags)
    end function

    integer(c_int) function ov_unlink(path)
        character(*), intent(in) :: path
        ov_unlink = ov_unlink_c(trim(path) // c_null_char)
    end function

    integer(c_int) function g_system(command)
        character(*), intent(in) :: command
        g_system = g_system_c(trim(command) // c_null_char)
    end function

    integer(c_int) function ncha(text)
        character(*), intent(in) :: text
        ncha = ncha_c(text, len(text))
    end function

    subroutine ccase(text, mode)
        character(*), intent(inout) :: text
        integer(c_int), intent(in) :: mode
        call ccase_c(text, len(text), mode)
    end subroutine

    subroutine ovghnm(buf, n)
        character(*), intent(out) :: buf
        integer(c_int), intent(out) :: n
        call ovghnm_c(buf, len(buf), n)
    end subroutine

    subroutine ovghtp(buf, n)
        character(*), intent(out) :: buf
        integer(c_int), intent(out) :: n
        call ovghtp_c(buf, len(buf), n)
    end subroutine

    subroutine ovgtun(user, full)
        character(*), intent(out) :: user, full
        call ovgtun_c(user, len(user), full, len(full))
    end subroutine

    ! Argument `index` (0 is the program) into buf, blank-padded; n = its length,
    ! 0 for an index outside the arguments.
    subroutine argget(index, buf, n)
        integer(c_int), intent(in) :: index
        character(*), intent(out) :: buf
        integer(c_int), intent(out) :: n
        buf = ' '
        call argget_c(index, buf, len(buf), n)
        if (n < len(buf)) buf(n + 1:) = ' '
    end subroutine

    ! The asctime text: 24 characters and a newline (achar(10)); the NUL only
    ! when buf holds 26 characters or more.
    subroutine ovdate(buf)
        character(*), intent(inout) :: buf
        call ovdate_c(buf, len(buf))
    end subroutine

    subroutine ddate(buf)
        character(*), intent(inout) :: buf
        call ddate_c(buf, len(buf))
    end subroutine

    integer(c_int) function ovchdir(dir)
        character(*), intent(in) :: dir
        ovchdir = ovchdir_c(trim(dir) // c_null_char)
    end function
end module ovra
