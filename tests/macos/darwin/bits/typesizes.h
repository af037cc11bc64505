// The types of files, places and times as macOS has them: some are narrower, so that sums of them need a cast.
#include_next <bits/typesizes.h>

#undef __DEV_T_TYPE
#undef __INO_T_TYPE
#undef __INO64_T_TYPE
#undef __MODE_T_TYPE
#undef __NLINK_T_TYPE
#undef __OFF_T_TYPE
#undef __OFF64_T_TYPE
#undef __BLKCNT_T_TYPE
#undef __BLKCNT64_T_TYPE
#undef __BLKSIZE_T_TYPE
#undef __FSBLKCNT_T_TYPE
#undef __FSBLKCNT64_T_TYPE
#undef __FSFILCNT_T_TYPE
#undef __FSFILCNT64_T_TYPE
#undef __RLIM_T_TYPE
#undef __RLIM64_T_TYPE
#undef __CLOCK_T_TYPE
#undef __SUSECONDS_T_TYPE

#define __DEV_T_TYPE int
#define __INO_T_TYPE unsigned long long
#define __INO64_T_TYPE unsigned long long
#define __MODE_T_TYPE unsigned short
#define __NLINK_T_TYPE unsigned short
#define __OFF_T_TYPE long long
#define __OFF64_T_TYPE long long
#define __BLKCNT_T_TYPE long long
#define __BLKCNT64_T_TYPE long long
#define __BLKSIZE_T_TYPE int
#define __FSBLKCNT_T_TYPE unsigned int
#define __FSBLKCNT64_T_TYPE unsigned int
#define __FSFILCNT_T_TYPE unsigned int
#define __FSFILCNT64_T_TYPE unsigned int
#define __RLIM_T_TYPE unsigned long long
#define __RLIM64_T_TYPE unsigned long long
#define __CLOCK_T_TYPE unsigned long
#define __SUSECONDS_T_TYPE int
