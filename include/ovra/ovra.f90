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
    use, intrinsic :: iso_c_binding, only: c_char, c_int, c_long, c_null_char
    implicit none
    private

    public :: fcusta_c, fcsize_c, fcumkd_c, fcudel_c, fcuddl_c, fcudat_c, fcdate_c
    public :: fcuerr, fcmcer, fcusiz_c, iochsl_c, fc_env_variable_c
    public :: fc_allow_env_in_paths, ov_open2_c, ov_read, ov_write, ov_close, ov_lseek
    public :: ov_unlink_c, g_system_c
    public :: fcusta, fcsize, fcusiz, fcumkd, fcudel, fcuddl, fcudat, fcdate, iochsl
    public :: fc_env_variable, ov_open2, ov_unlink, g_system

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
end module ovra
