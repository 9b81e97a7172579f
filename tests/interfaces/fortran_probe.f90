! The Fortran-style interface, one call per kind of argument (fortran_test.cpp
! makes the same calls in C).  Each call writes "label w w ...", every w an
! integer or a real's bits as one, after any lines the library wrote for it
! (hence the flushes).  Argument "hard": one failure with IFAIL = 0.
module probe_functions
  implicit none
contains
  ! iuser(2)*x*x - ruser(1); counts calls in iuser(1), keeps x in ruser(2).
  function f(x, iuser, ruser)
    real(kind=8) :: f
    real(kind=8), intent(in) :: x
    integer(kind=8), intent(inout) :: iuser(*)
    real(kind=8), intent(inout) :: ruser(*)
    iuser(1) = iuser(1) + 1; ruser(2) = x
    f = real(iuser(2), 8) * x * x - ruser(1)
  end function f

  ! 1/(ruser(1) + x*x); counts calls and points, stops at call iuser(3).
  subroutine fv(x, nx, v, iflag, iuser, ruser)
    integer(kind=8), intent(in) :: nx
    real(kind=8), intent(in) :: x(nx)
    real(kind=8), intent(out) :: v(nx)
    integer(kind=8), intent(inout) :: iflag, iuser(*)
    real(kind=8), intent(inout) :: ruser(*)
    iuser(1:2) = iuser(1:2) + [1_8, nx]
    v = 1.0d0 / (ruser(1) + x * x)
    if (iuser(1) == iuser(3)) iflag = -1
  end subroutine fv

  subroutine put(label, words)
    character(len=*), intent(in) :: label
    integer(kind=8), intent(in) :: words(:)
    write (*, '(a,*(1x,i0))') label, words
    flush (6)
  end subroutine put
end module probe_functions

program fortran_probe
  use, intrinsic :: iso_c_binding, only: c_ptr, c_null_ptr, c_associated
  use kor
  use probe_functions
  implicit none
  integer(kind=8), parameter :: modes(3) = [-1_8, 1_8, 2_8]
  integer(kind=8) :: ifail, i, lstate, query, seed(3), state(1300), irank(5), iuser(3), iinfo(50), ind, ih
  real(kind=8) :: r(4), rv(5), x, y, c(kor_c05az_lc), ruser(2), rinfo(200), abserr
  character(len=200) :: mode, long, cvalue*12, short*3
  type(c_ptr) :: handle

  call get_command_argument(1, mode)
  ifail = 0
  if (mode == 'hard') x = s14abf(-3.5d0, ifail)
  if (mode == 'hard') stop 'returned'

  ! Functions without IFAIL; a success sets IFAIL to 0 whatever it held.
  ifail = 7; x = s14abf(2.5d0, ifail)
  call put('x02 s14abf', [transfer(x02ajf(), 0_8), x02bbf(), transfer(x, 0_8), ifail])
  ! A failure: IFAIL = -1 prints and returns, 1 and 2 return quietly.
  do i = 1, 3
    ifail = modes(i); x = s14abf(-3.5d0, ifail)
    call put('fail', [modes(i), transfer(x, 0_8), ifail])
  end do

  ! genid 1..6; seeds in, the state inout, uniforms out; a size query.
  seed = [1762543_8, 9876_8, 42_8]
  do i = 1, 6
    lstate = 0; query = 1
    call g05kff(i, 5_8, seed, 3_8, state, lstate, query)
    call g05kff(i, 5_8, seed, 3_8, state, lstate, ifail)
    call g05saf(3_8, state, r, ifail)
    call put('g05', [i, lstate, query, transfer(r(1:3), 0_8, 3), ifail])
  end do

  rv = [3.0d0, 1.0d0, 2.0d0, 1.0d0, 5.0d0]
  call m01daf(rv, 5_8, 'D', irank, ifail)
  call m01eaf(rv, 5_8, irank, ifail)
  call put('m01', [irank, transfer(rv, 0_8, 5), ifail])

  r = [(g01eaf('LuSc'(i:i), 1.5d0, ifail), i = 1, 4)]  ! either case: only Fortran passes letters
  call put('g01', [transfer(r, 0_8, 4), ifail])
  ifail = -1; x = g01eaf('X', 1.5d0, ifail)
  call put('g01 X', [transfer(x, 0_8), ifail])

  iuser = [0_8, 2_8, 0_8]; ruser = [6.0d0, 0.0d0]
  call c05ayf(0.0d0, 3.0d0, 1.0d-12, 0.0d0, f, x, iuser, ruser, ifail)
  call put('c05ayf', [transfer(x, 0_8), iuser(1:2), transfer(ruser, 0_8, 2), ifail])

  x = 0.0d0; y = 3.0d0; c = 0.0d0; ind = 1; i = 0
  do while (ind /= 0 .and. ifail == 0)
    call c05azf(x, y, x * x - 2.0d0, 1.0d-3, 1_8, c, ind, ifail)
    i = i + 1
  end do
  call put('c05azf', [transfer(x, 0_8), transfer(y, 0_8), i, ifail])

  do i = 0, 2, 2  ! to the end, then stopped by the second call
    iuser = [0_8, 0_8, i]; ruser(1) = 1.0d-4; ifail = 1
    call d01rjf(fv, -1.0d0, 1.0d0, 0.0d0, 1.0d-10, 50_8, x, abserr, rinfo, iinfo, iuser, ruser, ifail)
    call put('d01rjf', [transfer(x, 0_8), transfer(abserr, 0_8), iuser(1:2), iinfo(1), ifail])
  end do

  ! The handle as TYPE(C_PTR); options in of any length, a keyword out.
  handle = c_null_ptr; call e04raf(handle, 2_8, ifail)
  long = 'Infinite Bound Size'; long(150:) = '= 2.5e20'
  call e04zmf(handle, long, ifail)
  call e04zmf(handle, 'Task = Maximize', ifail)
  call e04znf(handle, 'Infinite Bound Size', i, x, cvalue, query, ifail)
  cvalue = repeat('#', 12); short = '###'
  call e04znf(handle, 'task', i, y, cvalue, query, ifail)
  call e04znf(handle, 'task', i, y, short, lstate, ifail)
  call put('e04znf [' // cvalue // '] [' // short // ']', [transfer(x, 0_8), query, lstate, ifail])
  long = 'Bogus Name = 1'; ifail = -1
  call e04zmf(handle, long, ifail)
  call put('e04zmf', [ifail])
  ifail = 0; call e04rzf(handle, ifail)
  call put('e04rzf', [merge(1_8, 0_8, c_associated(handle)), ifail])
  ih = 0; call e04raf(ih, 2_8, ifail)  ! the handle as integer(kind=8)
  call e04zmf(ih, 'Print Level = 4', ifail)
  call e04znf(ih, 'Print Level', i, x, cvalue, query, ifail)
  call e04rzf(ih, ifail)
  call put('integer handle', [i, query, ih, ifail])
end program fortran_probe
