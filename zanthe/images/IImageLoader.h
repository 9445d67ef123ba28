// A still image as a bitmap.
//
//     boost::shared_ptr<Zanthe::IImageLoader> loader = ...;
//     loader->Load(0.0, width, height);
//     boost::shared_ptr<Zanthe::Bitmap> picture = loader->GetBitmap();
#pragma once

#include <boost/shared_ptr.hpp>

#include "zanthe/core/Bitmap.h"
#include "zanthe/core/Export.h"

namespace Zanthe {

// Hosts call through the order of these operations: it is settled, and new ones go to the end.
//
// Thread-safety: none; one loader serves one thread at a time. Different loaders are independent.
class ZANTHE_API IImageLoader {
public:
    IImageLoader() = default;
    IImageLoader(const IImageLoader&) = delete;
    IImageLoader& operator=(const IImageLoader&) = delete;
    virtual ~IImageLoader();

    // The size of the picture, in pixels. Whether they can answer before the first Load, each
    // loader says.
    virtual int GetWidth() const = 0;
    virtual int GetHeight() const = 0;

    // Makes the bitmap. `time` is in seconds and matters to moving pictures alone; `width` and
    // `height`, in pixels, to loaders that can be drawn at any size.
    //
    // Throws std::runtime_error when there is no picture to be had; which texts, each loader says.
    virtual void Load(double time, int width, int height) = 0;

    // Whether the picture has no pixels of its own and is drawn at whatever size is asked for.
    virtual bool IsVectorResizable() const = 0;

    // Draws it at another size, where it is resizable so; otherwise nothing happens.
    virtual void Resize(int width, int height) = 0;

    // What the last Load made, premultiplied; empty before the first. Shared: a later Load makes
    // another bitmap and leaves this one alone.
    virtual boost::shared_ptr<Bitmap> GetBitmap() = 0;
};

} // namespace Zanthe
