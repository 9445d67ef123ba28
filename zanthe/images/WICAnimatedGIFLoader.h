// The frames of an animated GIF, put together.
//
//     Zanthe::WICAnimatedGIFLoader loader(L"spinner.gif");
//     boost::shared_ptr<Zanthe::Bitmap> picture = loader.GetFrameAtTime(1.5);
#pragma once

#include <boost/shared_ptr.hpp>

#include "platform/com/ComPtr.h"
#include "platform/wic/GdiplusColor.h"
#include "zanthe/core/Export.h"
#include "zanthe/images/WICImageLoader.h"

struct ID2D1Bitmap;
struct ID2D1BitmapRenderTarget;
struct ID2D1Factory;
struct ID2D1RenderTarget;
struct IWICBitmap;
struct IWICBitmapSource;

namespace Zanthe {

class WICAnimatedGIFReader;

// Pictures are of the size of the file's logical screen, premultiplied; what no frame has painted
// is transparent. They are composited on demand: the next frame costs one frame, another one those
// since the nearest that the picture can be rebuilt from (see docs/pictures.md), at worst since the
// first.
//
// An index below the first frame means the first, one past the last the last; a time past the end
// means the last frame, for ever: nothing loops.
//
// Thread-safety: as IImageLoader.
class ZANTHE_API WICAnimatedGIFLoader : public WICImageLoader {
public:
    // Opens the file and reads through it once, without decoding. A logical screen that no surface
    // can be made of (above 32767 pixels a side or 2^25 in all) leaves the loader not initialized.
    //
    // Throws DSMediaDetException "Unable to create decoder" when there is no file at `path` or it
    // is of no known format, and std::runtime_error "Can't create WICAnimatedGIFReader".
    explicit WICAnimatedGIFLoader(const CStringW& path);
    ~WICAnimatedGIFLoader() override;

    // Whether there are surfaces to draw on. A logical screen without an area needs none.
    bool IsInitialized() const { return m_initialized; }

    // The picture at a time, in seconds from the start, as a bitmap of its own. When it cannot be
    // composited, the bitmap of the call before, or an empty pointer.
    boost::shared_ptr<Bitmap> GetFrameAtTime(double seconds);

    // The same of a frame by its index, on a screen that is cleared first, while compositing goes
    // on from the frame at hand where it can: asking for one frame twice shows an empty picture the
    // second time, and hosts know it so.
    boost::shared_ptr<Bitmap> GetFrameAtIndex(int index);

    // The picture at a time into `buffer`, at least GetWidth() * GetHeight() * 4 bytes:
    // premultiplied blue, green, red, alpha, the top row first, without gaps. A logical screen
    // larger than the capped size is scaled down to it.
    //
    // Throws std::runtime_error:
    //   "WICAnimatedGIFLoader: Error compositing frame"     a frame is damaged, has no area, or
    //                                                       goes back to what was not kept
    //   "WICAnimatedGIFLoader: Error PreRendering frame"    the picture cannot be handed over
    void GetFrameAtTimeIntoBuffer(double seconds, unsigned char* buffer);

    // The file's background colour with an alpha of 0.
    Gdiplus::Color GetGdiplusBackgroundColor();

    // WICImageLoader
    HRESULT LoadFrameAtIndex(int index) override;
    HRESULT LoadFrameAtTime(double seconds) override;

private:
    HRESULT CreateSurfaces();
    int Clamped(int index) const;
    int FirstToDraw(int index) const;
    HRESULT CompositeUpTo(int index);
    HRESULT Dispose(int index);
    HRESULT ClearFrame(int index);
    HRESULT RestoreSaved();
    HRESULT StartAgain();
    HRESULT DrawFrame(int index);
    HRESULT DecodeRaw(int index);
    HRESULT SaveComposite();
    HRESULT ClearComposite();
    HRESULT PreRender();
    template <typename Sink>
    HRESULT HandOver(const Sink& sink);
    HRESULT ShowAsBitmap();

    boost::shared_ptr<WICAnimatedGIFReader> m_reader;
    com::ComPtr<IWICBitmap> m_target;
    com::ComPtr<ID2D1Factory> m_factory;
    com::ComPtr<ID2D1RenderTarget> m_targetRenderer;
    com::ComPtr<ID2D1BitmapRenderTarget> m_composite;
    com::ComPtr<ID2D1Bitmap> m_raw;   // of the frame drawn last
    com::ComPtr<ID2D1Bitmap> m_saved; // what the composite was before a frame that is undone
    int m_currentFrame = -1;          // that the composite shows
    bool m_initialized = false;
};

} // namespace Zanthe
