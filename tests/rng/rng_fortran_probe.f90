! Draws from a state kept between calls, from Fortran: MRG32k3a seeded with
! one seed, uniforms in pieces of 3 and 7, a leap-frog stream, normals, and
! a corrupted state under IFAIL = -1.  Values are written so that they read
! back as the same doubles.
program rng_fortran_probe
  use kor
  implicit none
  integer(kind=8) :: seed(1), lstate, ifail, i
  integer(kind=8), allocatable :: state(:), saved(:)
  real(kind=8) :: x(10), z(4)

  seed(1) = 1762543
  allocate (state(1))
  lstate = 0
  ifail = 1
  call g05kff(6_8, 1_8, seed, 1_8, state, lstate, ifail)
  write (*, '(a, i0, a, i0)') 'query ', lstate, ' ifail ', ifail
  deallocate (state)
  allocate (state(lstate), saved(lstate))
  ifail = 0
  call g05kff(6_8, 1_8, seed, 1_8, state, lstate, ifail)
  saved = state

  ifail = 0
  call g05saf(3_8, state, x(1:3), ifail)
  call g05saf(7_8, state, x(4:10), ifail)
  do i = 1, 10
    write (*, '(a, es25.17)') 'u ', x(i)
  end do

  state = saved
  ifail = 0
  call g05khf(4_8, 2_8, state, ifail)
  call g05saf(2_8, state, x(1:2), ifail)
  write (*, '(a, 2es25.17)') 'leap ', x(1:2)

  state = saved
  ifail = 0
  call g05skf(4_8, 1.5d0, 4.0d0, state, z, ifail)
  do i = 1, 4
    write (*, '(a, es25.17)') 'z ', z(i)
  end do

  state(2) = state(2) + 1
  ifail = -1
  call g05saf(1_8, state, x, ifail)
  write (*, '(a, i0)') 'corrupt ifail ', ifail
  deallocate (state, saved)
end program rng_fortran_probe
