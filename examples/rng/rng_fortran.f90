! Random numbers from Fortran: a state kept between calls continues its
! stream, and leap-frog splits it into three interleaved streams that
! together give back the same values.
program rng_fortran
  use kor
  implicit none
  integer(kind=8) :: seed(1), lstate, ifail, k
  integer(kind=8), allocatable :: state(:), part(:)
  real(kind=8) :: x(9), y(3)

  seed(1) = 1762543
  lstate = 0
  ifail = 1
  allocate (state(1))
  call g05kff(6_8, 1_8, seed, 1_8, state, lstate, ifail)   ! size query: ifail = -1
  write (*, '(a, i0, a, i0)') 'MRG32k3a state length ', lstate, ', query ifail ', ifail
  deallocate (state)
  allocate (state(lstate), part(lstate))
  ifail = 0
  call g05kff(6_8, 1_8, seed, 1_8, state, lstate, ifail)

  part = state
  ifail = 0
  call g05saf(4_8, state, x(1:4), ifail)
  call g05saf(5_8, state, x(5:9), ifail)      ! the same state goes on
  write (*, '(a)') 'nine uniforms, drawn as 4 + 5:'
  write (*, '(3f14.10)') x

  write (*, '(a)') 'the same values from three leap-frog streams:'
  do k = 1, 3
    state = part
    ifail = 0
    call g05khf(3_8, k, state, ifail)
    call g05saf(3_8, state, y, ifail)
    write (*, '(a, i0, a, 3f14.10)') '  stream ', k, ':', y
  end do
  deallocate (state, part)
end program rng_fortran
