/* libkor: numerical and statistical routines.  The one header a C or C++
   program includes; link with -lkor. */
#ifndef KOR_H
#define KOR_H

#include "kor/types.h"
#include "kor/codes.h"
#include "kor/routines.h"

#endif
