! Adaptive quadrature from Fortran: the integral of x^a log(1/x) over
! [0, 1], singular at 0, with d01rjf.  The exponent a travels in RUSER(1)
! and IUSER(1) counts the calls; the integrand fills all values of a
! subinterval in one call.  The subdivision is printed from RINFO, then a
! call with too few subintervals is made under IFAIL = -1, which prints
! the routine's warning and returns.
module xlog_integrand
  implicit none
contains
  subroutine xlog(x, nx, fv, iflag, iuser, ruser)
    integer(kind=8), intent(in) :: nx
    real(kind=8), intent(in) :: x(nx)
    real(kind=8), intent(out) :: fv(nx)
    integer(kind=8), intent(inout) :: iflag
    integer(kind=8), intent(inout) :: iuser(*)
    real(kind=8), intent(inout) :: ruser(*)
    iuser(1) = iuser(1) + 1
    fv = -(x**ruser(1)) * log(x)
  end subroutine xlog
end module xlog_integrand

program quad_fortran
  use kor
  use xlog_integrand
  implicit none
  integer(kind=8), parameter :: maxsub = 100
  real(kind=8) :: rinfo(4 * maxsub), result, abserr, ruser(1)
  integer(kind=8) :: iinfo(maxsub), iuser(1), ifail, n, i

  ruser(1) = -0.5d0
  iuser(1) = 0
  ifail = 0
  call d01rjf(xlog, 0.0d0, 1.0d0, 0.0d0, 1.0d-10, maxsub, result, abserr, rinfo, iinfo, &
              iuser, ruser, ifail)
  n = iinfo(1)
  write (*, '(a)') 'd01rjf: integral of x^-0.5 log(1/x) over [0, 1]'
  write (*, '(a, f17.15, a, es9.2)') '  result = ', result, ' (exact 4), abserr = ', abserr
  write (*, '(2x, i0, a, i0, a)') iuser(1), ' calls of f, ', n, ' subintervals'
  write (*, '(a)') '       lower          upper          error        contribution'
  do i = 1, n
    write (*, '(4(2x, es13.6))') rinfo(i), rinfo(n + i), rinfo(2 * n + i), rinfo(3 * n + i)
  end do

  write (*, '(/a)') 'With maxsub = 4 and IFAIL = -1:'
  ifail = -1
  call d01rjf(xlog, 0.0d0, 1.0d0, 0.0d0, 1.0d-10, 4_8, result, abserr, rinfo, iinfo, &
              iuser, ruser, ifail)
  write (*, '(a, i0, a, f9.6)') 'IFAIL on return = ', ifail, ', result = ', result
end program quad_fortran
