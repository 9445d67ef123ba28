// Owners of libvips' objects, and how the library is started.
#pragma once

#include <memory>

// First: GLib has macros of the names of its constants.
#include "platform/win32/Types.h"

#include <vips/vips.h>

namespace wic {

struct DropVipsObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};

using VipsImagePtr = std::unique_ptr<VipsImage, DropVipsObject>;
using VipsSourcePtr = std::unique_ptr<VipsSource, DropVipsObject>;

// Starts libvips, once for the process, and keeps its loaders that are not hardened against
// hostile files shut from then on, and its cache of operations empty. False where it cannot be
// started.
//
// Thread-safety: safe from any thread.
bool StartVips();

} // namespace wic
