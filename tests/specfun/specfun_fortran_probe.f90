! Calls the special functions' Fortran-style entries as a gfortran program
! does and prints each result as "label <bits in hex> ifail=<n>"; the test
! compares the output, the library's message lines included, line by line.
! The library writes to standard output through its own buffers, so every
! line printed here is flushed before the next library call.
! Argument 1: "soft" (the default) or "hard", which ends in a hard failure.
program specfun_fortran_probe
  use kor
  use iso_fortran_env, only: output_unit
  implicit none
  integer(kind=8) :: ifail
  real(kind=8) :: v
  character(len=8) :: mode

  call get_command_argument(1, mode)
  if (mode == 'hard') then
    ifail = 0
    v = s14abf(0.0_8, ifail)
    call show('unreachable', v, ifail)
    stop
  end if

  ifail = 0
  v = s14abf(0.5_8, ifail)
  call show('s14abf(0.5)', v, ifail)
  ifail = -1
  v = s14abf(-3.5_8, ifail)
  call show('s14abf(-3.5)', v, ifail)
  ifail = 1
  v = s14abf(2.56e305_8, ifail)
  call show('s14abf(2.56e305)', v, ifail)

  ifail = 0
  v = s14aaf(5.0_8, ifail)
  call show('s14aaf(5.0)', v, ifail)
  ifail = 1
  v = s14aaf(-3.0_8, ifail)
  call show('s14aaf(-3.0)', v, ifail)
  ifail = -1
  v = s14aaf(170.5_8, ifail)
  call show('s14aaf(170.5)', v, ifail)

  ! The s15 routines set ifail to 0 whatever it held.
  ifail = 7
  v = s15abf(0.0_8, ifail)
  call show('s15abf(0.0)', v, ifail)
  ifail = -1
  v = s15acf(0.0_8, ifail)
  call show('s15acf(0.0)', v, ifail)
  ifail = 1
  v = s15adf(0.3_8, ifail)
  call show('s15adf(0.3)', v, ifail)
  ifail = 0
  v = s15aef(0.3_8, ifail)
  call show('s15aef(0.3)', v, ifail)

  ifail = 0
  v = g01eaf('L', 1.5_8, ifail)
  call show('g01eaf(L)', v, ifail)
  ifail = 0
  v = g01eaf('u', 1.5_8, ifail)
  call show('g01eaf(u)', v, ifail)
  ifail = 0
  v = g01eaf('S', 1.5_8, ifail)
  call show('g01eaf(S)', v, ifail)
  ifail = 0
  v = g01eaf('c', 1.5_8, ifail)
  call show('g01eaf(c)', v, ifail)
  ifail = -1
  v = g01eaf('q', 1.5_8, ifail)
  call show('g01eaf(q)', v, ifail)

  ifail = 0
  v = g01faf('S', 0.05_8, ifail)
  call show('g01faf(S,0.05)', v, ifail)
  ifail = -1
  v = g01faf('L', 0.0_8, ifail)
  call show('g01faf(L,0.0)', v, ifail)
  ifail = -1
  v = g01faf('l', 1.0_8, ifail)
  call show('g01faf(l,1.0)', v, ifail)
  ifail = 1
  v = g01faf('x', 0.0_8, ifail)
  call show('g01faf(x,0.0)', v, ifail)

contains

  subroutine show(label, value, code)
    character(len=*), intent(in) :: label
    real(kind=8), intent(in) :: value
    integer(kind=8), intent(in) :: code
    write (output_unit, '(a,1x,z16.16,1x,a,i0)') label, transfer(value, 0_8), 'ifail=', code
    flush (output_unit)
  end subroutine show

end program specfun_fortran_probe
