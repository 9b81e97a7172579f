! The LP of lp_solve_c.c (Chvatal, Linear Programming, 1983, ch. 2) solved
! from Fortran by the simplex method, with a monitor that reads the
! iteration count from STATS and keeps the objectives in RUSER:
!     maximize 5 x1 + 4 x2 + 3 x3  subject to  2 x1 + 3 x2 + x3 <= 5,
!     4 x1 + x2 + 2 x3 <= 11,  3 x1 + 4 x2 + 2 x3 <= 8,  x >= 0.
module lp_monitor
  implicit none
contains
  subroutine monit(handle, rinfo, stats, inform, iuser, ruser)
    type(*), intent(in) :: handle
    real(kind=8), intent(in) :: rinfo(100), stats(100)
    integer(kind=8), intent(inout) :: inform
    integer(kind=8), intent(inout) :: iuser(*)
    real(kind=8), intent(inout) :: ruser(*)
    iuser(1) = iuser(1) + 1
    ruser(iuser(1)) = rinfo(1)
    print '(a,i2,a,f10.4)', '  monitor: iteration ', int(stats(1)), ', objective ', rinfo(1)
  end subroutine monit
end module lp_monitor

program lp_solve_fortran
  use, intrinsic :: iso_c_binding, only: c_ptr, c_null_ptr
  use kor
  use lp_monitor
  implicit none
  type(c_ptr) :: handle
  integer(kind=8) :: ifail, idlc, iuser(1)
  real(kind=8) :: x(3), u(6), rinfo(100), stats(100), ruser(50)

  handle = c_null_ptr
  ifail = 0
  call e04raf(handle, 3_8, ifail)
  call e04rhf(handle, 3_8, (/ 0d0, 0d0, 0d0 /), (/ 1d20, 1d20, 1d20 /), ifail)
  call e04ref(handle, 3_8, (/ 5d0, 4d0, 3d0 /), ifail)
  idlc = 0
  call e04rjf(handle, 3_8, (/ -1d20, -1d20, -1d20 /), (/ 5d0, 11d0, 8d0 /), 9_8, &
              (/ 1_8, 1_8, 1_8, 2_8, 2_8, 2_8, 3_8, 3_8, 3_8 /), &
              (/ 1_8, 2_8, 3_8, 1_8, 2_8, 3_8, 1_8, 2_8, 3_8 /), &
              (/ 2d0, 3d0, 1d0, 4d0, 1d0, 2d0, 3d0, 4d0, 2d0 /), idlc, ifail)
  call e04zmf(handle, 'Task = Maximize', ifail)
  call e04zmf(handle, 'Monitor Frequency = 1', ifail)
  call e04zmf(handle, 'Print Level = 0', ifail)

  iuser(1) = 0
  ifail = -1
  call e04mkf(handle, 3_8, x, 6_8, u, rinfo, stats, monit, iuser, ruser, ifail)
  if (ifail /= 0) stop 1
  print '(a,f10.6,a,3f10.6)', ' objective ', rinfo(1), ' at x =', x
  print '(a,3f10.6)', ' constraint multipliers', u(4:6)
  print '(a,i0,a)', ' the monitor was called ', iuser(1), ' times'

  ifail = 0
  call e04rzf(handle, ifail)
end program lp_solve_fortran
