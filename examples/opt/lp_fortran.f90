! The small LP of lp_c.c built in a problem handle from Fortran: the handle
! is a TYPE(C_PTR) (an integer(kind=8) serves as well), options are set with
! CHARACTER strings.
program lp_fortran
  use, intrinsic :: iso_c_binding, only: c_ptr, c_null_ptr, c_associated
  use kor
  implicit none
  type(c_ptr) :: handle
  integer(kind=8) :: ifail, idlc
  real(kind=8) :: bl(3), bu(3), c(3)

  handle = c_null_ptr
  ifail = 0
  call e04raf(handle, 3_8, ifail)
  bl = (/ 0.0d0, -1.0d20, 1.0d0 /)
  bu = (/ 1.0d20, 4.0d0, 1.0d0 /)
  call e04rhf(handle, 3_8, bl, bu, ifail)
  c = (/ 1.0d0, 2.0d0, 0.0d0 /)
  call e04ref(handle, 3_8, c, ifail)
  idlc = 0
  call e04rjf(handle, 1_8, (/ 1.0d0 /), (/ 1.0d0 /), 2_8, (/ 1_8, 1_8 /), (/ 1_8, 2_8 /), &
              (/ 1.0d0, 1.0d0 /), idlc, ifail)
  idlc = 0
  call e04rjf(handle, 1_8, (/ -1.0d20 /), (/ 5.0d0 /), 2_8, (/ 1_8, 1_8 /), (/ 2_8, 3_8 /), &
              (/ 1.0d0, -1.0d0 /), idlc, ifail)
  print '(a,i0,a)', 'the handle holds ', idlc, ' linear constraints'

  ! A refusal with its message lines (IFAIL = -1: print and return).
  ifail = -1
  call e04rhf(handle, 2_8, bl, bu, ifail)

  ifail = 0
  call e04zmf(handle, 'Print Level = 1', ifail)
  call e04ryf(handle, 6_8, 'overview; simple bounds; linear constraints detailed; objective', ifail)
  call e04rzf(handle, ifail)
  if (.not. c_associated(handle)) print '(a)', 'handle freed'
end program lp_fortran
