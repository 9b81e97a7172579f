! Exercises d01rjf, d01rkf, m01daf and m01eaf through the Fortran interface.
! The first argument selects the IFAIL given on entry: "quiet" (1), "noisy"
! (-1), or "hard" (0, one failing case).  Each case writes its label, lets
! the library write whatever it writes, then writes the IFAIL returned and,
! on success, what was computed (reals as their bits) so that a test can
! compare it with the C interface.  The integrand's kind and parameter
! travel in IUSER(2) and RUSER(1); IUSER(1) counts the calls and IUSER(3),
! when positive, is the call that sets iflag = -1.
module quad_probe_functions
  implicit none
  integer(kind=8), parameter :: xlog = 1, power = 2, interior = 3, expo = 4
contains
  subroutine f(x, nx, fv, iflag, iuser, ruser)
    integer(kind=8), intent(in) :: nx
    real(kind=8), intent(in) :: x(nx)
    real(kind=8), intent(out) :: fv(nx)
    integer(kind=8), intent(inout) :: iflag
    integer(kind=8), intent(inout) :: iuser(*)
    real(kind=8), intent(inout) :: ruser(*)
    integer(kind=8) :: i
    iuser(1) = iuser(1) + 1
    do i = 1, nx
      select case (iuser(2))
      case (xlog)
        fv(i) = -(x(i)**ruser(1)) * log(x(i))
      case (power)
        fv(i) = x(i)**ruser(1)
      case (interior)
        fv(i) = abs(x(i) - 1.0d0 / 3.0d0)**ruser(1)
      case default
        fv(i) = exp(ruser(1) * x(i))
      end select
    end do
    if (iuser(1) == iuser(3)) iflag = -1
  end subroutine f
end module quad_probe_functions

program quad_fortran_probe
  use, intrinsic :: iso_fortran_env, only: output_unit
  use kor
  use quad_probe_functions
  implicit none
  character(len=16) :: mode
  integer(kind=8) :: ifail, entry_ifail, irank(4)
  real(kind=8) :: rv(4)

  call get_command_argument(1, mode)
  select case (trim(mode))
  case ('quiet')
    entry_ifail = 1
  case ('noisy')
    entry_ifail = -1
  case ('hard')
    entry_ifail = 0
    call label('d01rjf hard')
    call rj(xlog, -0.5d0, 0.0d0, 1.0d0, 0.0d0, 1.0d-10, 0_8, 0_8)
    call label('returned')
    stop
  case default
    stop 2
  end select

  call label('d01rjf success')
  call rj(xlog, -0.5d0, 0.0d0, 1.0d0, 0.0d0, 1.0d-10, 50_8, 0_8)
  call label('d01rjf maxsub')
  call rj(xlog, -0.5d0, 0.0d0, 1.0d0, 0.0d0, 1.0d-10, 0_8, 0_8)
  call label('d01rjf stop')
  call rj(xlog, -0.5d0, 0.0d0, 1.0d0, 0.0d0, 1.0d-10, 50_8, 4_8)
  call label('d01rjf limit')
  call rj(xlog, -0.5d0, 0.0d0, 1.0d0, 0.0d0, 1.0d-10, 3_8, 0_8)
  call label('d01rjf round-off')
  call rj(expo, 1.0d0, 0.0d0, 1.0d0, 1.0d-300, 0.0d0, 50_8, 0_8)
  call label('d01rjf bad')
  call rj(interior, -1.0d0, 0.0d0, 1.0d0, 0.0d0, 1.0d-10, 200_8, 0_8)
  call label('d01rjf extrapolation')
  call rj(power, -0.9d0, 0.0d0, 1.0d0, 1.0d-300, 0.0d0, 200_8, 0_8)
  call label('d01rjf divergent')
  call rj(power, -1.5d0, 0.0d0, 1.0d0, 0.0d0, 1.0d-10, 200_8, 0_8)
  call label('d01rkf success')
  call rk(xlog, 0.5d0, 2_8, 0.0d0, 1.0d-10, 100_8)
  call label('d01rkf key')
  call rk(xlog, 0.5d0, 7_8, 0.0d0, 1.0d-10, 100_8)

  rv = [3.0d0, 1.0d0, 2.0d0, 1.0d0]
  call label('m01daf success')
  ifail = entry_ifail
  call m01daf(rv, 4_8, 'D', irank, ifail)
  call ranks()
  call label('m01daf n')
  ifail = entry_ifail
  call m01daf(rv, 0_8, 'A', irank, ifail)
  call ranks()
  call label('m01daf order')
  ifail = entry_ifail
  call m01daf(rv, 4_8, 'X', irank, ifail)
  call ranks()
  call label('m01eaf success')
  irank = [1_8, 3_8, 2_8, 4_8]
  ifail = entry_ifail
  call m01eaf(rv, 4_8, irank, ifail)
  write (output_unit, '("ifail = ",i0)') ifail
  if (ifail == 0) write (output_unit, '("rv = ",4(f4.1))') rv
  call label('m01eaf perm')
  irank = [1_8, 1_8, 2_8, 3_8]
  ifail = entry_ifail
  call m01eaf(rv, 4_8, irank, ifail)
  write (output_unit, '("ifail = ",i0)') ifail
  flush (output_unit)

contains

  subroutine label(text)
    character(len=*), intent(in) :: text
    write (output_unit, '(a)') text
    flush (output_unit)
  end subroutine label

  subroutine ranks()
    write (output_unit, '("ifail = ",i0)') ifail
    if (ifail == 0) write (output_unit, '("ranks = ",4(1x,i0))') irank
    flush (output_unit)
  end subroutine ranks

  subroutine report(result, abserr, iuser, iinfo)
    real(kind=8), intent(in) :: result, abserr
    integer(kind=8), intent(in) :: iuser(3), iinfo(*)
    write (output_unit, '("ifail = ",i0)') ifail
    if (ifail == 0) write (output_unit, '("result bits = ",i0,", abserr bits = ",i0,'// &
                          '", calls = ",i0,", nsub = ",i0)') &
        transfer(result, 0_8), transfer(abserr, 0_8), iuser(1), iinfo(1)
    flush (output_unit)
  end subroutine report

  subroutine rj(kind, p, a, b, epsabs, epsrel, maxsub, stop_at)
    integer(kind=8), intent(in) :: kind, maxsub, stop_at
    real(kind=8), intent(in) :: p, a, b, epsabs, epsrel
    real(kind=8) :: result, abserr, rinfo(800), ruser(1)
    integer(kind=8) :: iinfo(200), iuser(3)
    iuser = [0_8, kind, stop_at]
    ruser(1) = p
    ifail = entry_ifail
    call d01rjf(f, a, b, epsabs, epsrel, maxsub, result, abserr, rinfo, iinfo, iuser, ruser, ifail)
    call report(result, abserr, iuser, iinfo)
  end subroutine rj

  subroutine rk(kind, p, key, epsabs, epsrel, maxsub)
    integer(kind=8), intent(in) :: kind, key, maxsub
    real(kind=8), intent(in) :: p, epsabs, epsrel
    real(kind=8) :: result, abserr, rinfo(800), ruser(1)
    integer(kind=8) :: iinfo(200), iuser(3)
    iuser = [0_8, kind, 0_8]
    ruser(1) = p
    ifail = entry_ifail
    call d01rkf(f, 0.0d0, 1.0d0, key, epsabs, epsrel, maxsub, result, abserr, rinfo, iinfo, &
                iuser, ruser, ifail)
    call report(result, abserr, iuser, iinfo)
  end subroutine rk

end program quad_fortran_probe
