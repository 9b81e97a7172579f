! Exercises c05ayf and c05azf through the Fortran interface.  The first
! argument selects the IFAIL given on entry: "quiet" (1), "two" (2), "noisy"
! (-1), or one hard-failure case (IFAIL = 0): "hard_ay", "hard_az".  Each case
! writes its label, lets the library write whatever it writes, then writes
! the IFAIL returned; successful searches also write the bits of x and the
! number of function values, so that a test can compare them with the C
! interface.  Every line is flushed at once so the library's lines, which
! reach standard output by another path, stay in order.
module c05_probe_functions
  implicit none
  integer(kind=8), parameter :: shifted_square = 1, pole = 2, just_above_1 = 3
contains
  ! The test functions, chosen by iuser(2) with the parameter ruser(1);
  ! iuser(1) counts the calls.
  function f(x, iuser, ruser)
    real(kind=8) :: f
    real(kind=8), intent(in) :: x
    integer(kind=8), intent(inout) :: iuser(*)
    real(kind=8), intent(inout) :: ruser(*)
    iuser(1) = iuser(1) + 1
    select case (iuser(2))
    case (shifted_square)
      f = x**2 - ruser(1)
    case (pole)
      f = 1.0d0 / (x - ruser(1))
    case default
      ! Zero strictly between 1 and the next double: no tolerance below an
      ! ulp can be met.
      f = (x - 1.0d0) - 2.0d0**(-60)
    end select
  end function f
end module c05_probe_functions

program c05_fortran_probe
  use, intrinsic :: iso_fortran_env, only: output_unit
  use, intrinsic :: ieee_arithmetic, only: ieee_value, ieee_positive_inf, ieee_quiet_nan
  use kor
  use c05_probe_functions
  implicit none
  character(len=16) :: mode
  integer(kind=8) :: ifail, entry_ifail
  real(kind=8) :: inf, nan

  inf = ieee_value(inf, ieee_positive_inf)
  nan = ieee_value(nan, ieee_quiet_nan)
  call get_command_argument(1, mode)
  select case (trim(mode))
  case ('quiet')
    entry_ifail = 1
  case ('two')
    entry_ifail = 2
  case ('noisy')
    entry_ifail = -1
  case ('hard_ay')
    entry_ifail = 0
    call label('c05ayf hard')
    call direct(shifted_square, 2.0d0, 0.0d0, 2.0d0, -1.0d0)
    call label('returned')
    stop
  case ('hard_az')
    call label('c05azf hard')
    call rcomm(just_above_1, 0.0d0, 0.5d0, 1.5d0, 1.0d-30, 1_8, 1_8, 0_8)
    call label('returned')
    stop
  case default
    stop 2
  end select

  call label('c05ayf success')
  call direct(shifted_square, 3.0d0, 0.0d0, 3.0d0, 1.0d-10)
  call label('c05ayf eps')
  call direct(shifted_square, 2.0d0, 0.0d0, 2.0d0, -1.0d0)
  call label('c05ayf a=b')
  call direct(shifted_square, 2.0d0, 1.0d0, 1.0d0, 1.0d-6)
  call label('c05ayf infinite b')
  call direct(shifted_square, 2.0d0, 0.0d0, inf, 1.0d-6)
  call label('c05ayf same sign')
  call direct(shifted_square, -1.0d0, 0.0d0, 1.0d0, 1.0d-6)
  call label('c05ayf eps too small')
  call direct(just_above_1, 0.0d0, 0.5d0, 1.5d0, 1.0d-300)
  call label('c05ayf pole')
  call direct(pole, 0.5d0, 0.0d0, 1.0d0, 1.0d-6)

  call label('c05azf success')
  call rcomm(shifted_square, 3.0d0, 0.0d0, 3.0d0, 1.0d-10, 0_8, 1_8, entry_ifail)
  call label('c05azf ind 0')
  call rcomm(shifted_square, 3.0d0, 0.0d0, 3.0d0, 1.0d-10, 0_8, 0_8, entry_ifail)
  call label('c05azf ind 4 fresh')
  call rcomm(shifted_square, 3.0d0, 0.0d0, 3.0d0, 1.0d-10, 0_8, 4_8, entry_ifail)
  call label('c05azf tolx')
  call rcomm(shifted_square, 3.0d0, 0.0d0, 3.0d0, 0.0d0, 0_8, 1_8, entry_ifail)
  call label('c05azf ir')
  call rcomm(shifted_square, 3.0d0, 0.0d0, 3.0d0, 1.0d-10, -1_8, 1_8, entry_ifail)
  call label('c05azf NaN x')
  call rcomm(shifted_square, 3.0d0, nan, 1.0d0, 1.0d-10, 0_8, 1_8, entry_ifail)
  call label('c05azf same sign')
  call rcomm(shifted_square, -1.0d0, 0.0d0, 1.0d0, 1.0d-10, 0_8, 1_8, entry_ifail)
  call label('c05azf pole')
  call rcomm(pole, 0.5d0, 0.0d0, 1.0d0, 1.0d-6, 1_8, 1_8, entry_ifail)
  call label('c05azf accuracy')
  call rcomm(just_above_1, 0.0d0, 0.5d0, 1.5d0, 1.0d-30, 1_8, 1_8, entry_ifail)

contains

  subroutine label(text)
    character(len=*), intent(in) :: text
    write (output_unit, '(a)') text
    flush (output_unit)
  end subroutine label

  subroutine result(x, calls)
    real(kind=8), intent(in) :: x
    integer(kind=8), intent(in) :: calls
    write (output_unit, '("ifail = ",i0)') ifail
    if (ifail == 0) write (output_unit, '("x bits = ",i0,", calls = ",i0)') transfer(x, 0_8), calls
    flush (output_unit)
  end subroutine result

  ! One call of c05ayf with eta = 0.
  subroutine direct(kind, parameter, a, b, eps)
    integer(kind=8), intent(in) :: kind
    real(kind=8), intent(in) :: parameter, a, b, eps
    real(kind=8) :: x, ruser(1)
    integer(kind=8) :: iuser(2)
    iuser = [0_8, kind]
    ruser(1) = parameter
    ifail = entry_ifail
    x = -7.0d0
    call c05ayf(a, b, eps, 0.0d0, f, x, iuser, ruser, ifail)
    call result(x, iuser(1))
  end subroutine direct

  ! A whole reverse-communication search, answering each request with f(x).
  subroutine rcomm(kind, parameter, x0, y0, tolx, ir, start, how)
    integer(kind=8), intent(in) :: kind, ir, start, how
    real(kind=8), intent(in) :: parameter, x0, y0, tolx
    real(kind=8) :: x, y, fx, c(kor_c05az_lc), ruser(1)
    integer(kind=8) :: ind, iuser(2), n
    iuser = [0_8, kind]
    ruser(1) = parameter
    x = x0
    y = y0
    fx = 0.0d0
    c = 0.0d0
    ind = start
    do n = 1, 100000
      ifail = how
      call c05azf(x, y, fx, tolx, ir, c, ind, ifail)
      if (ind == 0 .or. (ifail /= 0 .and. ifail /= 1 .and. ifail /= 4 .and. ifail /= 5)) exit
      fx = f(x, iuser, ruser)
    end do
    call result(x, iuser(1))
  end subroutine rcomm

end program c05_fortran_probe
