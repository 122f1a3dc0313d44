#pragma once

#include <CoreFoundation/CFBase.h>

typedef const struct CF_BRIDGED_TYPE(id) __CFUUID *CFUUIDRef;

__BEGIN_DECLS

CF_IMPLICIT_BRIDGING_ENABLED

CFTypeID CFUUIDGetTypeID(void);
CFStringRef CFUUIDCreateString(CFAllocatorRef alloc, CFUUIDRef uuid);

CF_IMPLICIT_BRIDGING_DISABLED

__END_DECLS
