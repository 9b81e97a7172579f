! Builds an LP in a handle through the Fortran-style interfaces (module kor):
! the handle as TYPE(C_PTR), options set with CHARACTER strings, printed,
! freed, and a call after the free; then the same with the handle held in an
! integer(kind=8), and an SDPA file read with its sizes queried first.  The
! first argument is the directory of the SDPLIB copies.
program opt_fortran_probe
  use, intrinsic :: iso_c_binding, only: c_ptr, c_null_ptr, c_associated
  use, intrinsic :: iso_fortran_env, only: output_unit
  use kor
  implicit none
  type(c_ptr) :: handle
  integer(kind=8) :: ihandle, ifail, idlc, idgroup, unit, nvar, nblk, k
  real(kind=8) :: bl(3), bu(3), cvec(3), lbl(2), lbu(2), b(4)
  integer(kind=8) :: irowb(4), icolb(4), group(2)
  integer(kind=8), allocatable :: blksizea(:), nnza(:), irowa(:), icola(:)
  real(kind=8), allocatable :: c(:), a(:)
  integer(kind=8) :: maxnnz
  character(len=256) :: dir

  call get_command_argument(1, dir)
  handle = c_null_ptr
  ifail = 0
  call e04raf(handle, 3_8, ifail)
  call report('e04raf', ifail)
  bl = (/ 0.0d0, -1.0d20, 1.0d0 /)
  bu = (/ 1.0d20, 4.0d0, 1.0d0 /)
  ifail = 0
  call e04rhf(handle, 3_8, bl, bu, ifail)
  cvec = (/ 1.0d0, 2.0d0, 0.0d0 /)
  call e04ref(handle, 3_8, cvec, ifail)
  lbl = (/ 1.0d0, -1.0d30 /)
  lbu = (/ 1.0d0, 5.0d0 /)
  irowb = (/ 1, 1, 2, 2 /)
  icolb = (/ 1, 2, 2, 3 /)
  b = (/ 1.0d0, 1.0d0, 1.0d0, -1.0d0 /)
  idlc = 0
  call e04rjf(handle, 2_8, lbl, lbu, 4_8, irowb, icolb, b, idlc, ifail)
  write (output_unit, '(a,i0)') 'idlc = ', idlc
  group = (/ 2, 3 /)
  idgroup = 0
  call e04rbf(handle, 'quad    ', 2_8, group, idgroup, ifail)
  write (output_unit, '(a,i0)') 'idgroup = ', idgroup
  call e04zmf(handle, 'Print Level = 1', ifail)
  call report('e04zmf', ifail)
  flush (output_unit)
  call e04ryf(handle, 6_8, 'Overview; objective', ifail)
  call e04ryf(handle, 6_8, 'POTATO', ifail)
  call e04ryf(handle, 6_8, 'potato', ifail)
  call report('e04ryf', ifail)
  ! A refusal, printed (IFAIL = -1 on entry).
  ifail = -1
  call e04rbf(handle, 'CONE', 2_8, group, idgroup, ifail)
  call report('e04rbf', ifail)
  ifail = 0
  call e04rzf(handle, ifail)
  call report('e04rzf', ifail)
  if (.not. c_associated(handle)) write (output_unit, '(a)') 'handle is null'
  ifail = -1
  call e04ryf(handle, 6_8, 'OVERVIEW', ifail)
  call report('after free', ifail)

  ! The handle held in an integer(kind=8).
  ifail = 0
  call e04raf(ihandle, 2_8, ifail)
  call e04ryf(ihandle, 6_8, 'overview', ifail)
  call e04rzf(ihandle, ifail)
  write (output_unit, '(a,i0)') 'integer handle after free = ', ihandle

  ! An SDPA file: sizes from a query call (IFAIL = 1: quiet), then read.
  call x04acf(trim(dir) // '/truss1.dat-s', 0_8, unit, ifail)
  allocate (blksizea(1), c(1), nnza(1), irowa(1), icola(1), a(1))
  ifail = 1
  call e04rdf(unit, 0_8, 0_8, 0_8, nvar, nblk, blksizea, c, nnza, irowa, icola, a, ifail)
  call report('e04rdf query', ifail)
  call x04adf(unit, ifail)
  deallocate (blksizea, c, nnza, irowa, icola, a)
  maxnnz = 100
  allocate (blksizea(nblk), c(nvar), nnza(nvar + 1), irowa(maxnnz), icola(maxnnz), a(maxnnz))
  ifail = 0
  call x04acf(trim(dir) // '/truss1.dat-s', 0_8, unit, ifail)
  call e04rdf(unit, nvar, nblk, maxnnz, nvar, nblk, blksizea, c, nnza, irowa, icola, a, ifail)
  call report('e04rdf', ifail)
  write (output_unit, '(a,i0,a,i0,a,i0)') 'nvar = ', nvar, ', nblk = ', nblk, ', nnz = ', sum(nnza)
  write (output_unit, '(a,7(1x,i0))') 'blksizea =', (blksizea(k), k = 1, nblk)
  call x04adf(unit, ifail)
  deallocate (blksizea, c, nnza, irowa, icola, a)

contains
  subroutine report(what, ifail)
    character(len=*), intent(in) :: what
    integer(kind=8), intent(in) :: ifail
    write (output_unit, '(a,a,i0)') what, ': ifail = ', ifail
    flush (output_unit)
  end subroutine report
end program opt_fortran_probe
