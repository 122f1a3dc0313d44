#pragma once

// The window is written for GTK 4.8 and WebKitGTK 2.40, the oldest that it is built with; newer
// ones call some of their functions deprecated and keep them.
#define GDK_VERSION_MIN_REQUIRED GDK_VERSION_4_8

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include "platform/linux/glib_pointers.h"
