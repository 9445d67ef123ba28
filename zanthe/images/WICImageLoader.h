// Still images: JPEG, PNG, TIFF, WebP, HEIF, BMP, the first frame of a GIF.
//
//     Zanthe::WICImageLoader loader(L"photo.jpg",
//                                   Zanthe::WICImageHelper::DEFAULT_MAX_DECODING_DIMENSION);
//     loader.Load(0.0, 0, 0);
//     loader.GetBitmap()->SavePNG("photo.png");
#pragma once

#include <boost/shared_ptr.hpp>

#include "platform/com/Result.h"
#include "platform/win32/CString.h"
#include "zanthe/core/Export.h"
#include "zanthe/images/IImageLoader.h"

namespace Zanthe {

class WICImageReader;

// The bitmap is premultiplied, turned the way that a JPEG file's EXIF orientation says, and scaled
// down with cubic interpolation where a side is above the maximum. One kind is not scaled: a file
// whose pixels are 32-bit premultiplied BGRA already (a TIFF file with associated alpha) comes at
// its full size, while GetWidth and GetHeight tell the capped one.
//
// The file stays open as long as the loader lives.
//
// Thread-safety: as IImageLoader.
class ZANTHE_API WICImageLoader : public IImageLoader {
public:
    // Opens the file and reads its size, without decoding it. maxDimension: the most pixels that a
    // side may have.
    //
    // Throws DSMediaDetException "Unable to create decoder" when there is no file at `path`, it is
    // of no known format, its header is damaged or promises more than 2^28 pixels (2^27 where the
    // whole picture has to be held while it is decoded), and std::runtime_error when the reader is
    // not open all the same:
    //   "Can't create WICImagerReader"              the file exists
    //   "WICImageLoader: Couldn't open filename"    it does not
    WICImageLoader(const CStringW& path, int maxDimension);
    ~WICImageLoader() override;

    // IImageLoader

    // The capped size, known from the start. Throws std::runtime_error
    // "WICImageLoader: Can't GetWidth if _WICImageReader is nullptr", and the same of GetHeight,
    // when there is no reader, which only a class derived from this one can bring about.
    int GetWidth() const override;
    int GetHeight() const override;

    // Decodes the picture; the sizes and the time play no part. A second call decodes anew. Throws
    // std::runtime_error "WICImageLoader: Couldn't load a bitmap" when no bitmap stands afterwards:
    // the file is damaged or has no picture.
    void Load(double time, int width, int height) override;

    bool IsVectorResizable() const override;     // false
    void Resize(int width, int height) override; // nothing happens
    boost::shared_ptr<Bitmap> GetBitmap() override;

    // For derived classes, which hosts do not call.
    virtual HRESULT LoadFrameAtIndex(int index);
    virtual HRESULT LoadFrameAtTime(double seconds);
    virtual HRESULT DecodeFrame(int index);

protected:
    // Without a reader, which is to be given with SetReader.
    struct WithoutReader {};

    WICImageLoader(const CStringW& path, int maxDimension, WithoutReader);

    // Opens the reader. Throws as the constructor.
    void OpenReader(boost::shared_ptr<WICImageReader> reader);

    void SetReader(boost::shared_ptr<WICImageReader> reader);

    const CStringW& GetPath() const { return m_path; }

    void SetBitmap(boost::shared_ptr<Bitmap> bitmap);

private:
    void GetSize(int& width, int& height) const;

    CStringW m_path;
    boost::shared_ptr<Bitmap> m_bitmap;
    int m_maxDimension;
    boost::shared_ptr<WICImageReader> m_reader;
};

} // namespace Zanthe
