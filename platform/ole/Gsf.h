// libgsf's headers. GLib's macros for truth would take the names of the platform's constants.
#pragma once

#include <gsf/gsf.h>

#include <gsf/gsf-infile-impl.h>
#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-input-stdio.h>

#undef TRUE
#undef FALSE

#include "platform/win32/Types.h"
