// Accessibility, Quartz events and displays, and the Core Foundation beneath them, under the platform's own names.
#pragma once

#if defined(OSTREL_SYSTEM_FRAMEWORKS)
#include <ApplicationServices/ApplicationServices.h>
#else
#include "platform/portable/ApplicationServices.h"  // IWYU pragma: export
#endif
