#ifndef VELTO_MACOS_ERRNO_H
#define VELTO_MACOS_ERRNO_H

#include_next <errno.h>

#ifndef ENOATTR
#define ENOATTR 93
#endif

#endif
