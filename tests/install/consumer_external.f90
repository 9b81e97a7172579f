! A Fortran caller that declares the routine external, as the interface
! contract allows, and links with -lkor only.
program consumer_external
  implicit none
  external :: c05ayf
  real(kind=8), external :: x02ajf
  real(kind=8) :: x, ruser(1)
  integer(kind=8) :: iuser(1), ifail
  real(kind=8), external :: f
  ruser(1) = 2.0d0
  iuser(1) = 0
  ifail = 1
  call c05ayf(1.0d0, 2.0d0, 1.0d-12, 0.0d0, f, x, iuser, ruser, ifail)
  if (ifail /= 0 .or. abs(x - sqrt(2.0d0)) > 1.0d-11) error stop 1
  if (x02ajf() /= 2.0d0**(-53)) error stop 2
  print '(a, f17.15)', 'consumer_external: x = ', x
end program consumer_external

real(kind=8) function f(x, iuser, ruser)
  implicit none
  real(kind=8), intent(in) :: x
  integer(kind=8), intent(inout) :: iuser(*)
  real(kind=8), intent(inout) :: ruser(*)
  iuser(1) = iuser(1) + 1
  f = x * x - ruser(1)
end function f
