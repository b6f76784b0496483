// Numbers of a fixed width: the widest is long long here, and no other name for long.
#pragma once

typedef signed char int8_t;
typedef short int16_t;
typedef int int32_t;
typedef long long int64_t;
