! A Fortran program that uses libovra's file utilities through the ovra module,
! with blank-padded names as Fortran keeps them. Runs in the current folder with
! OVRA_CLIENT_DATA set to "."; stops with a nonzero code on the first surprise.
program fortran_client
    use, intrinsic :: iso_c_binding, only: c_int, c_long
    use ovra
    implicit none
    character(len=64) :: name, dir, via_env, expanded
    character(len=12) :: slashes
    character(len=8) :: buffer
    integer(c_int) :: n, ierr, itype, isize, iclass, icode, fd, got
    integer(c_int) :: id(2), date(7)
    integer :: unit

    name = 'fortran_client.txt'
    dir = 'fortran_client_dir'
    n = len_trim(name)

    open (newunit=unit, file=trim(name), access='stream', form='unformatted', &
          status='replace')
    write (unit) 'hello'
    close (unit)

    call fcusta(name, n, id, itype, ierr)
    call expect(ierr == 0 .and. itype == 1, 'fcusta finds a regular file')
    call fcusta(name, n, ierr=ierr)
    call expect(ierr == 0, 'fcusta without id and type')
    call fcsize(name, n, isize, ierr)
    call expect(ierr == 0 .and. isize == 5, 'fcsize gives 5 bytes')
    call fcusiz(name, n, isize, ierr)
    call expect(ierr == 0 .and. isize == 5, 'fcusiz gives 5 bytes')
    call fcdate(name, n, 2, date, ierr)
    call expect(ierr == 0 .and. date(1) >= 2024 .and. date(7) == 0, 'fcdate gives this year')
    call fcdate(name, n, 3, date, ierr)
    call expect(ierr == -1, 'fcdate refuses which = 3')
    call fcsize(name, 1024, isize, ierr)
    call expect(ierr == -1, 'fcsize refuses a count above its name')

    fd = ov_open2(name, 0)
    call expect(fd >= 0, 'ov_open2 opens the file')
    got = ov_read(fd, buffer, 8)
    call expect(got == 5 .and. buffer(1:5) == 'hello', 'ov_read reads it back')
    call expect(ov_lseek(fd, 1_c_long, 0) == 1_c_long, 'ov_lseek')
    call expect(ov_close(fd) == 0, 'ov_close')

    via_env = '$OVRA_CLIENT_DATA/fortran_client.txt'
    call fc_env_variable(via_env, len_trim(via_env), expanded)
    call expect(expanded == './fortran_client.txt', 'fc_env_variable expands the variable')
    call fcusta(via_env, len_trim(via_env), itype=itype, ierr=ierr)
    call expect(ierr == 0 .and. itype == 1, 'fcusta through an environment reference')

    slashes = 'a\b\c\d'
    call iochsl(slashes, 5)
    call expect(slashes == 'a/b/c\d', 'iochsl turns the first backslashes')

    call fcumkd(dir, len_trim(dir), ierr)
    call expect(ierr == 0, 'fcumkd')
    call fcusta(dir, len_trim(dir), itype=itype, ierr=ierr)
    call expect(ierr == 0 .and. itype == 0, 'fcusta finds a directory')
    call fcudel(dir, len_trim(dir), 0, ierr)
    call expect(ierr == 0, 'fcudel removes the directory')

    call fcudel(name, n, 1, ierr)
    call expect(ierr == 0, 'fcudel removes the file')
    call fcusta(name, n, ierr=ierr)
    call expect(ierr == 2, 'fcusta: the file is gone')
    call fcuerr(ierr, iclass, icode)
    call expect(iclass == 1 .and. icode == 11, 'fcuerr classifies ENOENT')
    call fcsize(name, n, isize, ierr)
    call expect(ierr == 1, 'fcsize gives the class of ENOENT')

    print '(a)', 'fortran_client: all checks passed'

contains

    subroutine expect(ok, what)
        logical, intent(in) :: ok
        character(*), intent(in) :: what
        if (.not. ok) then
            print '(2a)', 'fortran_client: FAILED: ', what
            error stop 1
        end if
    end subroutine
end program fortran_client
