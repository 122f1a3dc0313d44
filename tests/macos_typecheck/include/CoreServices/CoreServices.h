#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/FSEvents.h>
