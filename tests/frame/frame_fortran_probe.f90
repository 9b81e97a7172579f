! The output units from a gfortran program, where they meet gfortran's own
! I/O: records interleave with the program's own writes in program order
! (the library flushes gfortran's buffer for units 6 and 0 first), CHARACTER
! arguments carry their trailing blanks in the hidden length, and a record
! read is blank-padded.  Argument 1: a path for a scratch file.
program frame_fortran_probe
  use kor
  implicit none
  integer(kind=8) :: unit, ifail
  character(len=400) :: path
  character(len=40) :: rec

  call get_command_argument(1, path)
  write (*, '(a)') 'before'
  call x04baf(6_8, 'from the library      ')
  write (*, '(a)') 'between'
  call x04baf(6_8, '    ')
  call x04baf(-1_8, 'never shown')

  ifail = 0
  call x04acf(trim(path)//'     ', 1_8, unit, ifail)
  call x04baf(unit, 'written by fortran   ')
  call x04adf(unit, ifail)
  call x04acf(trim(path), 0_8, unit, ifail)
  rec = repeat('#', len(rec))
  call x04bbf(unit, rec, ifail)
  write (*, '(a,a,a,i0)') 'read [', rec, '] ifail ', ifail
  ifail = 1
  call x04bbf(unit, rec, ifail)
  write (*, '(a,i0)') 'end of file ifail ', ifail
end program frame_fortran_probe
