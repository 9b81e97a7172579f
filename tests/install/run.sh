#!/usr/bin/env bash
# Installs the build into a scratch prefix and builds consumers against it
# the ways a user would: pkg-config, plain gfortran -lkor, use kor, and
# find_package(kor).
set -euo pipefail
build=$1
scratch=$2
here=$(cd "$(dirname "$0")" && pwd)
prefix=$scratch/prefix
rm -rf "$scratch"
mkdir -p "$scratch"

cmake --install "$build" --prefix "$prefix" > "$scratch/install.log"
for f in lib/libkor.so include/kor.h include/kor/types.h include/kor/codes.h include/kor/c05.h \
         include/kor.f90 include/kor.mod lib/pkgconfig/kor.pc lib/cmake/kor/korConfig.cmake; do
  [ -e "$prefix/$f" ] || { echo "missing from the install: $f"; exit 1; }
done
soname=$(objdump -p "$prefix/lib/libkor.so" | awk '/SONAME/ {print $2}')
[ "$soname" = "libkor.so.0" ] || { echo "unexpected SONAME $soname"; exit 1; }

export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
cd "$scratch"
cc -std=c11 -Wall -Wextra -pedantic -Werror "$here/consumer.c" $(pkg-config --cflags --libs kor) -lm -o c_consumer
./c_consumer
c++ -std=c++17 -Wall -Wextra -pedantic -Werror -x c++ "$here/consumer.c" $(pkg-config --cflags --libs kor) -o cxx_consumer
./cxx_consumer
# Static links, as the pkg-config file tells them: the archive, then what it needs.
cc -std=c11 -static "$here/consumer.c" $(pkg-config --cflags kor) $(pkg-config --static --libs kor) -o c_static
./c_static
gfortran -static "$here/consumer_external.f90" $(pkg-config --static --libs kor) -o f_static
./f_static
for program in c_static f_static; do
  if objdump -p $program | grep -q NEEDED; then echo "$program is not linked statically"; exit 1; fi
done
gfortran "$here/consumer_external.f90" -L"$prefix/lib" -Wl,-rpath,"$prefix/lib" -lkor -o f_external
./f_external
gfortran -I"$prefix/include" "$here/consumer_module.f90" -L"$prefix/lib" -Wl,-rpath,"$prefix/lib" -lkor -o f_module
./f_module
cmake -S "$here/cmake_consumer" -B cmake_build -DCMAKE_PREFIX_PATH="$prefix" > cmake.log
cmake --build cmake_build > cmake_build.log
./cmake_build/cmake_consumer
./cmake_build/cmake_consumer_static

# The README's examples, built with the README's own command lines.
readme=$here/../../README.md
block() {  # the first code block of language $1
  awk -v lang="$1" 'inside && /^```/ { exit } inside { print } $0 == "```" lang { inside = 1 }' "$readme"
}
mkdir -p readme
(cd readme
 block c > prog.c
 block fortran > prog.f90
 grep -E '^(cc|gfortran) ' "$readme" | while read -r command; do
   rm -f a.out
   eval "$command" || { echo "README command failed: $command"; exit 1; }
   ./a.out > /dev/null || { echo "README program failed: $command"; exit 1; }
 done)

# Exactly the routines' entry points are exported, nothing of the frame.
nm -D --defined-only "$prefix/lib/libkor.so" | awk '{print $3}' | sort > exported.txt
sort "$build/generated/exports.txt" "$here/../../frame/exports.txt" > expected.txt
if ! diff expected.txt exported.txt > exports.diff; then
  echo "exported symbols differ from the routine list:"; cat exports.diff; exit 1
fi
echo "install consumers: all passed"
