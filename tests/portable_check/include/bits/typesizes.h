#pragma once
// The C library's own header, with the types that are narrower or of another sign on a Mac made so.
// Only for compiling without making an object: nothing built with it could run.
#include_next <bits/typesizes.h>

#undef __MODE_T_TYPE
#define __MODE_T_TYPE __U16_TYPE
#undef __NLINK_T_TYPE
#define __NLINK_T_TYPE __U16_TYPE
#undef __SYSCALL_NLINK_TYPE
#define __SYSCALL_NLINK_TYPE __U16_TYPE
#undef __DEV_T_TYPE
#define __DEV_T_TYPE __S32_TYPE
#undef __BLKSIZE_T_TYPE
#define __BLKSIZE_T_TYPE __S32_TYPE
#undef __SUSECONDS_T_TYPE
#define __SUSECONDS_T_TYPE __S32_TYPE
#undef __SUSECONDS64_T_TYPE
#define __SUSECONDS64_T_TYPE __S32_TYPE
