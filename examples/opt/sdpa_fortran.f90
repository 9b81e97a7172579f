! Reads an SDPLIB problem in sparse SDPA format from Fortran (argument 1;
! by default truss1 from the test data): two size queries, then the read;
! the problem is then defined in a handle and printed.
program sdpa_fortran
  use kor
  implicit none
  character(len=512) :: path
  integer(kind=8) :: handle, unit, ifail, nvar, nblk, idblk, maxnnz
  integer(kind=8) :: iquery(1)
  real(kind=8) :: rquery(1)
  integer(kind=8), allocatable :: blksizea(:), nnza(:), irowa(:), icola(:)
  real(kind=8), allocatable :: cvec(:), a(:)

  path = '../../tests/data/opt/truss1.dat-s'
  if (command_argument_count() > 0) call get_command_argument(1, path)
  ! First nvar and nblk, then (with maxnnz = 0) the entries of each matrix,
  ! whose sum is the length the entries need; IFAIL = 1 keeps both quiet.
  ifail = 0
  call x04acf(trim(path), 0_8, unit, ifail)
  ifail = 1
  call e04rdf(unit, 0_8, 0_8, 0_8, nvar, nblk, iquery, rquery, iquery, iquery, iquery, rquery, ifail)
  call x04adf(unit, ifail)
  allocate (blksizea(nblk), cvec(nvar), nnza(nvar + 1))
  call x04acf(trim(path), 0_8, unit, ifail)
  ifail = 1
  call e04rdf(unit, nvar, nblk, 0_8, nvar, nblk, blksizea, cvec, nnza, iquery, iquery, rquery, ifail)
  call x04adf(unit, ifail)
  maxnnz = sum(nnza)
  allocate (irowa(maxnnz), icola(maxnnz), a(maxnnz))
  ifail = 0
  call x04acf(trim(path), 0_8, unit, ifail)
  call e04rdf(unit, nvar, nblk, maxnnz, nvar, nblk, blksizea, cvec, nnza, irowa, icola, a, ifail)
  call x04adf(unit, ifail)
  print '(a,i0,a,i0,a,i0,a)', 'read ', nvar, ' variables, ', nblk, ' blocks, ', sum(nnza), ' entries'

  call e04raf(handle, nvar, ifail)
  call e04ref(handle, nvar, cvec, ifail)
  idblk = 0
  call e04rnf(handle, nvar, sum(blksizea), nnza, sum(nnza), irowa, icola, a, nblk, blksizea, idblk, ifail)
  call e04ryf(handle, 6_8, 'Overview, Matrix Constraints Detailed', ifail)
  call e04rzf(handle, ifail)
end program sdpa_fortran
