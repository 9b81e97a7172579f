! Zeros of functions from Fortran: Kepler's equation M = E - e sin E with
! c05ayf (e and M passed in RUSER, the call count kept in IUSER), then the
! same by reverse communication with c05azf, then a failed call under
! IFAIL = -1, which prints the routine's message and returns.
module kepler_equation
  implicit none
contains
  ! E - e sin E - M with e = ruser(1), M = ruser(2); counts its calls in iuser(1).
  real(kind=8) function kepler(ea, iuser, ruser)
    real(kind=8), intent(in) :: ea
    integer(kind=8), intent(inout) :: iuser(*)
    real(kind=8), intent(inout) :: ruser(*)
    iuser(1) = iuser(1) + 1
    kepler = ea - ruser(1) * sin(ea) - ruser(2)
  end function kepler
end module kepler_equation

program zero_fortran
  use kor
  use kepler_equation
  implicit none
  real(kind=8), parameter :: pi = 3.14159265358979323846d0
  real(kind=8) :: ruser(2), e, x, y, fx, c(kor_c05az_lc)
  integer(kind=8) :: iuser(1), ifail, ind, k

  ruser(1) = 0.6d0
  write (*, '(a, f4.1)') 'Kepler''s equation, e = ', ruser(1)
  write (*, '(a)') '     M             E          calls'
  do k = 1, 5
    ruser(2) = k * pi / 6.0d0
    iuser(1) = 0
    ifail = 0
    call c05ayf(0.0d0, pi, 1.0d-13, 0.0d0, kepler, e, iuser, ruser, ifail)
    write (*, '(2x, f10.6, 2x, f16.13, 2x, i4)') ruser(2), e, iuser(1)
  end do

  write (*, '(/a)') 'The same for M = pi/2 by reverse communication:'
  x = 0.0d0
  y = pi
  ind = 1
  fx = 0.0d0
  ifail = 0
  do
    call c05azf(x, y, fx, 1.0d-13, 1_8, c, ind, ifail)
    if (ind == 0) exit
    fx = x - ruser(1) * sin(x) - pi / 2.0d0
  end do
  write (*, '(2x, a, f16.13)') 'E = ', x

  write (*, '(/a)') 'A bracket without a sign change, with IFAIL = -1:'
  ifail = -1
  ruser(2) = 0.5d0
  call c05ayf(2.0d0, 3.0d0, 1.0d-13, 0.0d0, kepler, e, iuser, ruser, ifail)
  write (*, '(a, i2)') 'IFAIL on return = ', ifail
end program zero_fortran
