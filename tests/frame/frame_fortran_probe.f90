! Calls the frame's Fortran-style entries as a gfortran program does and
! prints what comes back; the frame tests compare the output line by line.
! Argument 1: a path for a scratch file.  The library writes to standard
! output through its own buffers, so every line printed here is flushed
! before the next library call.
program frame_fortran_probe
  use kor
  use iso_fortran_env, only: output_unit
  implicit none
  integer(kind=8) :: nerr, nadv, unit, ifail, iflag, value
  character(len=400) :: path
  character(len=40) :: rec

  call get_command_argument(1, path)

  write (output_unit, '(a,z16.16)') 'x02ajf ', transfer(x02ajf(), 0_8)
  write (output_unit, '(a,i0)') 'x02bbf ', x02bbf()
  write (output_unit, '(a,i0)') 'x02bjf ', x02bjf()

  iflag = 0
  nerr = -5
  call x04aaf(iflag, nerr)
  write (output_unit, '(a,i0)') 'x04aaf get ', nerr
  iflag = 1
  value = 7
  call x04aaf(iflag, value)
  iflag = 0
  call x04aaf(iflag, nerr)
  write (output_unit, '(a,i0)') 'x04aaf after set ', nerr
  iflag = 1
  value = 6
  call x04aaf(iflag, value)
  iflag = 0
  call x04abf(iflag, nadv)
  write (output_unit, '(a,i0)') 'x04abf get ', nadv
  flush (output_unit)

  ! The hidden length carries the trailing blanks; the record drops them.
  call x04baf(6_8, 'from fortran      ')
  call x04baf(6_8, '    ')
  call x04baf(-1_8, 'never shown')

  ifail = 0
  call x04acf(trim(path)//'     ', 1_8, unit, ifail)
  write (output_unit, '(a,i0,a,i0)') 'open unit ', unit, ' ifail ', ifail
  call x04baf(unit, 'written by fortran   ')
  ifail = 0
  call x04adf(unit, ifail)
  write (output_unit, '(a,i0)') 'close ifail ', ifail

  ifail = 0
  call x04acf(trim(path), 0_8, unit, ifail)
  ifail = 0
  rec = repeat('#', len(rec))
  call x04bbf(unit, rec, ifail)
  write (output_unit, '(a,a,a,i0)') 'read [', rec, '] ifail ', ifail
  ifail = 1
  call x04bbf(unit, rec, ifail)
  write (output_unit, '(a,i0)') 'end of file ifail ', ifail
  ifail = 0
  call x04adf(unit, ifail)

  ifail = 1
  call x04acf(trim(path), 5_8, unit, ifail)
  write (output_unit, '(a,i0)') 'bad mode ifail ', ifail
  ifail = 1
  call x04adf(99_8, ifail)
  write (output_unit, '(a,i0)') 'close 99 ifail ', ifail
  flush (output_unit)

  ifail = -1
  call x06aaf(0_8, ifail)
  write (output_unit, '(a,i0)') 'x06aaf ifail ', ifail
  flush (output_unit)

  iflag = 1
  value = -1
  call x04aaf(iflag, value)
  ifail = -1
  call x06aaf(-3_8, ifail)
  write (output_unit, '(a,i0)') 'silenced ifail ', ifail
  value = 6
  call x04aaf(iflag, value)
  ifail = -1
  call x06aaf(4_8, ifail)
  write (output_unit, '(a,i0)') 'x06aaf(4) ifail ', ifail
end program frame_fortran_probe
