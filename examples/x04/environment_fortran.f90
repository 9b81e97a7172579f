! The library's environment from Fortran: machine constants, and the error
! message unit redirected to a file connected by x04acf (kor_file_open), so
! that a failure message lands in the file instead of on the screen.
program environment_fortran
  use kor
  implicit none
  integer(kind=8) :: unit, nerr, ifail, saved
  character(len=80) :: line

  write (*, '(a, es24.17)') 'machine precision ', x02ajf()
  write (*, '(a, es24.17)') 'largest finite    ', x02alf()
  write (*, '(a, i0)') 'digits            ', x02bjf()

  ifail = 0
  call x04acf('environment_fortran.txt', 1_8, unit, ifail)
  call x04aaf(0_8, saved)
  nerr = unit
  call x04aaf(1_8, nerr)
  ifail = -1
  call x06aaf(0_8, ifail)           ! a bad thread count: its message goes to the file
  call x04aaf(1_8, saved)
  ifail = 0
  call x04adf(unit, ifail)

  write (*, '(a)') 'the error message unit held:'
  ifail = 0
  call x04acf('environment_fortran.txt', 0_8, unit, ifail)
  do
    ifail = 1
    call x04bbf(unit, line, ifail)
    if (ifail /= 0) exit
    write (*, '(2a)') '  | ', trim(line)
  end do
  ifail = 0
  call x04adf(unit, ifail)
end program environment_fortran
