// The macros of <sys/wait.h>: they take the address of the status, which has to be a variable.
#pragma once

#define __WAIT_STATUS(status) (*(int*)&(status))
#define __WEXITSTATUS(status) (__WAIT_STATUS(status) >> 8 & 0xff)
#define __WTERMSIG(status) (__WAIT_STATUS(status) & 0x7f)
#define __WSTOPSIG(status) (__WAIT_STATUS(status) >> 8)
#define __WIFEXITED(status) (__WTERMSIG(status) == 0)
#define __WIFSTOPPED(status) (__WTERMSIG(status) == 0x7f)
#define __WIFSIGNALED(status) (!__WIFSTOPPED(status) && !__WIFEXITED(status))
#define __WCOREFLAG 0x80
#define __WCOREDUMP(status) (__WAIT_STATUS(status) & __WCOREFLAG)
