! A Fortran program that uses libovra's host, user, argument, date and break
! functions through the ovra module. Stops with a nonzero code on the first
! surprise.
module hostuser_client_hooks
    use, intrinsic :: iso_c_binding, only: c_int, c_ptr, c_f_pointer
    use ovra, only: ovbrks, ov_querying_break
    implicit none
    integer(c_int) :: last_break = -1, handler_calls = 0
    integer(c_int), target :: checker_calls = 0
    integer(c_int) :: querying_seen = -1

contains

    subroutine on_break(count) bind(C)
        integer(c_int), value :: count
        last_break = count
        handler_calls = handler_calls + 1
    end subroutine

    ! Detects one break of its own on every poll; data points at its call count.
    subroutine check_break(data) bind(C)
        type(c_ptr), value :: data
        integer(c_int), pointer :: calls
        integer(c_int) :: one_more
        call c_f_pointer(data, calls)
        calls = calls + 1
        querying_seen = ov_querying_break()
        one_more = -1
        call ovbrks(one_more)
    end subroutine
end module hostuser_client_hooks

program fortran_hostuser_client
    use, intrinsic :: iso_c_binding
    use ovra
    use hostuser_client_hooks
    implicit none
    character(len=32) :: text
    character(len=64) :: host, user, full
    character(len=1) :: one, other
    character(len=26) :: asc
    character(len=20) :: dd
    character(kind=c_char, len=8), target, save :: arg0 = 'prog' // c_null_char
    character(kind=c_char, len=8), target, save :: arg1 = 'alpha' // c_null_char
    type(c_ptr), save :: argv(3)
    integer(c_int) :: n, count
    real(c_double) :: t, r
    integer :: i

    text = 'abc   '
    call expect(ncha(text) == 3, 'ncha trims the blanks')
    call expect(ncha('     ') == 0, 'ncha of blanks is 0')
    text = 'Hello, World 42'
    call ccase(text, 1)
    call expect(text == 'HELLO, WORLD 42', 'ccase 1 raises')
    call ccase(text, 2)
    call expect(text == 'hello, world 42', 'ccase 2 lowers')

    call ovghnm(host, n)
    call expect(n > 0 .and. len_trim(host) == n, 'ovghnm gives the host name, blank-padded')
    call ovghnm(one, n)
    call expect(n == 1 .and. one == host(1:1), 'ovghnm cuts to one character')
    call ovghtp(host, n)
    call expect(n == 0 .and. host == ' ', 'ovghtp: no host type')

    call ovgtun(user, full)
    call expect(len_trim(user) > 0 .and. user /= 'USERERROR', 'ovgtun gives the login name')
    call expect(len_trim(full) > 0 .and. full /= 'NAMEERROR', 'ovgtun gives a full name')
    call ovgtun(one, other)
    call expect((len_trim(user) == 1 .and. one == user(1:1)) .or. &
                (len_trim(user) > 1 .and. one == ' '), 'ovgtun keeps a blank when cut')

    argv(1) = c_loc(arg0)
    argv(2) = c_loc(arg1)
    argv(3) = c_null_ptr
    call argsgi(2, argv)
    call nargq(n)
    call expect(n == 2, 'nargq gives the stored count')
    call argget(1, text, n)
    call expect(n == 5 .and. text == 'alpha', 'argget gives the argument, blank-padded')
    call argget(2, text, n)
    call expect(n == 0 .and. text == ' ', 'argget at the count gives nothing')
    call argget(-1, text, n)
    call expect(n == 0 .and. text == ' ', 'argget of a negative index gives nothing')
    call argget(huge(n), text, n)
    call expect(n == 0 .and. text == ' ', 'argget of a huge index gives nothing')
    call argget(0, one, n)
    call expect(n == 1 .and. one == 'p', 'argget cuts to the buffer')

    call timedp(t)
    call expect(t > 1.7e9_c_double, 'timedp gives seconds since 1970')
    call ovdate(asc)
    call expect(asc(25:25) == achar(10) .and. asc(26:26) == c_null_char .and. &
                asc(14:14) == ':', 'ovdate gives the asctime text')
    call ddate(dd)
    call expect(dd(3:3) == ' ' .and. dd(15:15) == '.' .and. dd(18:18) == '.' .and. &
                dd(4:6) /= ' ', 'ddate gives DD MON YYYY HH.MM.SS')
    call ovwait(1)

    call expect(ovchdir('.') == 0, 'ovchdir to the current folder')
    call expect(ovchdir('no-such-folder-for-ovra') == -1, 'ovchdir to a missing folder fails')

    call ovbreakhandler(c_funloc(on_break))
    call ovbrks(5)
    call expect(last_break == 5 .and. handler_calls == 1, 'ovbrks 5 tells the handler')
    call ovbrks(0)
    call expect(handler_calls == 1, 'ovbrks 0 calls nothing')
    call ovra_interrupt(2)
    call ovra_interrupt(2)
    call ovbrkn(count)
    call expect(count == 2 .and. last_break == 2 .and. handler_calls == 3, &
                'two interrupts count two breaks')
    call ovbreakchecker(c_funloc(check_break), c_loc(checker_calls))
    call ovbrkq(count)
    call expect(count == 3 .and. checker_calls == 1 .and. querying_seen == 0, &
                'ovbrkq asks the checker first')
    call expect(ov_break_query() == 4 .and. querying_seen == 1, &
                'ov_break_query marks the query')
    call ovbrkc()
    call ovbrkq(count)
    call expect(count == 4 .and. checker_calls == 2, 'ovbrkc removes the checker only')
    call ovbreakhandler(c_null_funptr)
    call ovbrks(0)

    do i = 1, 100
        r = ov_random()
        call expect(r >= 0.0_c_double .and. r <= 1.0_c_double, 'ov_random from 0 to 1')
    end do
    call expect(ov_sse2_support() == 1, 'x86-64 has SSE2')
    call expect(ovwinversion() == 2, 'ovWinVersion is 2')
    n = ovislocallogonnt()
    call expect(n == 0 .or. n == 1, 'ovIsLocalLogonNT answers 0 or 1')

    print '(a)', 'fortran_hostuser_client: all checks passed'

contains

    subroutine expect(ok, what)
        logical, intent(in) :: ok
        character(*), intent(in) :: what
        if (.not. ok) then
            print '(2a)', 'fortran_hostuser_client: FAILED: ', what
            error stop 1
        end if
    end subroutine
end program fortran_hostuser_client
