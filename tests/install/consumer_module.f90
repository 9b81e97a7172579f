! A Fortran caller that checks its calls against the interfaces of module kor.
module consumer_functions
  implicit none
contains
  real(kind=8) function f(x, iuser, ruser)
    real(kind=8), intent(in) :: x
    integer(kind=8), intent(inout) :: iuser(*)
    real(kind=8), intent(inout) :: ruser(*)
    iuser(1) = iuser(1) + 1
    f = x * x - ruser(1)
  end function f
end module consumer_functions

program consumer_module
  use kor
  use consumer_functions
  implicit none
  real(kind=8) :: x, y, fx, c(kor_c05az_lc), ruser(1)
  integer(kind=8) :: iuser(1), ifail, ind
  ruser(1) = 3.0d0
  iuser(1) = 0
  ifail = 1
  call c05ayf(1.0d0, 2.0d0, 1.0d-12, 0.0d0, f, x, iuser, ruser, ifail)
  if (ifail /= 0 .or. abs(x - sqrt(3.0d0)) > 1.0d-11) error stop 1
  x = 1.0d0
  y = 2.0d0
  ind = 1
  fx = 0.0d0
  ifail = 1
  do
    call c05azf(x, y, fx, 1.0d-12, 1_8, c, ind, ifail)
    if (ind == 0) exit
    fx = x * x - 3.0d0
  end do
  if (ifail /= 0 .or. abs(x - sqrt(3.0d0)) > 1.0d-11) error stop 2
  print '(a, f17.15)', 'consumer_module: x = ', x
end program consumer_module
