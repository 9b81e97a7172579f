! Builds a handle, sets and reads options with CHARACTER strings (literals
! and blank-padded variables), reads an option file, frees the handle, and
! prints what comes back; options_fortran_test compares the output exactly.
! Argument 1: the path of an option file.  Lines printed here are flushed
! before the next library call, which writes to standard output itself.
program options_fortran_probe
  use kor
  use iso_c_binding, only: c_ptr, c_null_ptr
  use iso_fortran_env, only: output_unit
  implicit none
  type(c_ptr) :: handle
  integer(kind=8) :: ifail, ivalue, optype, unit
  real(kind=8) :: rvalue
  character(len=40) :: optstr
  character(len=30) :: cvalue
  character(len=400) :: path

  call get_command_argument(1, path)
  handle = c_null_ptr
  ifail = 0
  call e04raf(handle, 3_8, ifail)

  ! A blank-padded variable, literals in any case, a short key.
  optstr = 'Print Level = 4'
  ifail = 0
  call e04zmf(handle, optstr, ifail)
  call e04zmf(handle, 'infinite bound size = 1.0d+21', ifail)
  call e04zmf(handle, 'TASK = maximize', ifail)
  call e04zmf(handle, 'prnopt = n', ifail)

  ifail = 0
  call e04znf(handle, 'PRNLEV', ivalue, rvalue, cvalue, optype, ifail)
  write (output_unit, '(a,i0,a,i0,a,i0)') 'print level ', ivalue, ' optype ', optype, ' ifail ', ifail
  call e04znf(handle, 'Infinite Bound Size', ivalue, rvalue, cvalue, optype, ifail)
  write (output_unit, '(a,es24.16,a,i0)') 'bigbnd ', rvalue, ' optype ', optype
  call e04znf(handle, 'task', ivalue, rvalue, cvalue, optype, ifail)
  write (output_unit, '(a,a,a,i0)') 'task [', cvalue, '] optype ', optype
  call e04znf(handle, 'Print Options', ivalue, rvalue, cvalue, optype, ifail)
  write (output_unit, '(a,a,a)') 'print options [', trim(cvalue), ']'
  flush (output_unit)

  ! Noisy failures: the message lines come on the error unit (6).
  ifail = -1
  call e04zmf(handle, 'Print Lev = 1', ifail)
  write (output_unit, '(a,i0)') 'unknown ifail ', ifail
  flush (output_unit)
  optstr = 'Print Level = 6'
  ifail = -1
  call e04zmf(handle, optstr, ifail)
  write (output_unit, '(a,i0)') 'bound ifail ', ifail
  flush (output_unit)
  ifail = 1
  call e04zmf(handle, 'RCONST = 1', ifail)
  write (output_unit, '(a,i0)') 'quiet ifail ', ifail
  flush (output_unit)

  ! An option file: the block applies up to its failing line.
  ifail = 0
  call x04acf(trim(path), 0_8, unit, ifail)
  ifail = -1
  call e04zpf(handle, unit, ifail)
  write (output_unit, '(a,i0)') 'file ifail ', ifail
  flush (output_unit)
  ifail = 0
  call x04adf(unit, ifail)
  call e04znf(handle, 'Time Limit', ivalue, rvalue, cvalue, optype, ifail)
  write (output_unit, '(a,es24.16)') 'time limit ', rvalue
  call e04znf(handle, 'Print Level', ivalue, rvalue, cvalue, optype, ifail)
  write (output_unit, '(a,i0)') 'print level ', ivalue
  flush (output_unit)

  ! "Defaults" writes its record on the advisory unit (6).
  ifail = 0
  call e04zmf(handle, 'defaults', ifail)
  call e04znf(handle, 'Print Level', ivalue, rvalue, cvalue, optype, ifail)
  write (output_unit, '(a,i0)') 'after defaults ', ivalue
  flush (output_unit)

  ifail = 0
  call e04rzf(handle, ifail)
  ifail = -1
  call e04zmf(handle, 'Print Level = 1', ifail)
  write (output_unit, '(a,i0)') 'freed ifail ', ifail
end program options_fortran_probe
