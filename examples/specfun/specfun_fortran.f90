! Gamma functions and the normal distribution from Fortran: a table of
! values, normal deviates for each tail (the tail is a CHARACTER(1)), and a
! reported failure under IFAIL = -1.
program specfun_fortran
  use kor
  implicit none
  integer(kind=8) :: ifail, k
  real(kind=8) :: x, p, z
  character(len=1), parameter :: tails(4) = ['L', 'U', 'C', 'S']

  write (*, '(a)') '     x            Gamma(x)              ln Gamma(x)'
  do k = 1, 6
    x = 0.75d0 * k
    ifail = 0
    write (*, '(f8.3, 2x, es22.15, 2x, es22.15)') x, s14aaf(x, ifail), s14abf(x, ifail)
  end do

  write (*, '(/a)') 'Deviates for p = 0.025:'
  p = 0.025d0
  do k = 1, 4
    ifail = 0
    z = g01faf(tails(k), p, ifail)
    ifail = 0
    write (*, '(3a, f16.12, a, f10.6)') '  tail ', tails(k), ': z = ', z, &
      '   probability back: ', g01eaf(tails(k), z, ifail)
  end do

  write (*, '(/a)') 'ln Gamma(0) with IFAIL = -1:'
  ifail = -1
  x = s14abf(0.0d0, ifail)
  write (*, '(a, es24.16, a, i2)') 'value returned ', x, ', IFAIL = ', ifail
end program specfun_fortran
