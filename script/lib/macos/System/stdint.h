// The numbers written with the types of bits/stdint-intn.h and bits/stdint-uintn.h.
#pragma once

#include_next <stdint.h>

#undef INT64_C
#undef UINT64_C
#undef __INT64_C
#undef __UINT64_C
#define INT64_C(number) number##LL
#define UINT64_C(number) number##ULL
#define __INT64_C(number) number##LL
#define __UINT64_C(number) number##ULL
