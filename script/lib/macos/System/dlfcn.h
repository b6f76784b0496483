// dlsym(3): the next library's function of a name.
#pragma once

#include_next <dlfcn.h>

#define RTLD_NEXT ((void*)-1)
