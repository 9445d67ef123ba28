// A picture in memory: 4 bytes a pixel, rows top to bottom without padding.
//
//     Zanthe::Bitmap picture(640, 360, false);
//     decode(picture.GetBits(), picture.GetStride());
//     picture.SavePNG("frame.png");
//
// A pixel's bytes in memory are blue, green, red, alpha.
#pragma once

#include <memory>
#include <string>

#include "zanthe/core/ColorSpace.h"
#include "zanthe/core/Export.h"

namespace Zanthe {

// The memory is one of three kinds, fixed by the constructor:
//
//     constructed with     memory                          SwapRGBA_BGRA, ZeroOutBits work on
//     sizes only           allocated here, freed here      the whole picture
//     a unique_ptr         taken over, freed here          part of it: see there
//     a plain pointer      the caller's, never freed here  part of it: see there
//
// Thread-safety: none; one bitmap serves one thread at a time.
class ZANTHE_API Bitmap {
public:
    // Allocates width * height * 4 bytes, which are not cleared. The pixels of a bitmap with
    // preMultipliedAlpha hold colours that are already multiplied by their alpha.
    //
    // Throws std::bad_alloc when there is no memory, and its kind std::bad_array_new_length when a
    // size is negative or the bytes are more than an int can count (2 GiB): sizes come from files.
    Bitmap(int width, int height, bool preMultipliedAlpha);

    // Takes over `bits`, at least width * height * 4 bytes, or null.
    Bitmap(int width, int height, bool preMultipliedAlpha, std::unique_ptr<unsigned char[]> bits);

    // Borrows `bits`, at least width * height * 4 bytes, or null; they must outlive the bitmap.
    Bitmap(int width, int height, bool preMultipliedAlpha, unsigned char* bits);

    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
    ~Bitmap();

    // Pixels.
    int GetWidth() const;
    int GetHeight() const;

    // Bytes from one row to the next, width * 4 for every kind of memory; 0 for a handed-in buffer
    // whose width is so large that an int cannot tell.
    int GetStride() const;

    bool GetPreMultipliedAlpha() const;

    // The first byte of the top row, valid as long as the bitmap (or the lender's buffer); null
    // after ReleaseBits, or when null was handed in.
    unsigned char* GetBits() const;

    // Hands the memory to the caller and leaves the bitmap without; null when there is none or it
    // is borrowed, in which case the bitmap keeps it.
    std::unique_ptr<unsigned char[]> ReleaseBits();

    // Always null.
    CGColorSpace* ColorSpace() const;

    // Does nothing: a picture's colours are as they are, and a host's colour space is its own
    // affair.
    void SetColorSpace(CGColorSpace* colorSpace);

    // Exchanges bytes 0 and 2 of each pixel in place, red and blue. Without bits nothing happens.
    //
    // Of a bitmap with a handed-in buffer only the first row changes, and changes once for every
    // row: it ends exchanged when the height is odd and as it was when it is even. Hosts rely on
    // that; convert such a buffer before it is handed in.
    void SwapRGBA_BGRA();

    // Fills with zero and answers whether anything was filled: false without bits or pixels.
    //
    // Of a bitmap with a handed-in buffer the first width * height bytes are filled, a quarter of
    // it; that, too, is relied on.
    bool ZeroOutBits();

    // Writes the picture as a PNG file with alpha to `filePath` (UTF-8), replacing a file there.
    // Premultiplied colours are divided by their alpha again, as PNG wants them. A failure leaves
    // what was at `filePath` as it was.
    //
    // Throws std::runtime_error:
    //   "Couldn't find png encoder"
    //   "Couldn't save PNG to filePath = " and the path   it cannot be written there, or the
    //                                                      bitmap has no bits or no pixels
    void SavePNG(const std::string& filePath) const;

private:
    int m_width;        // pixels
    int m_height;       // pixels
    int m_storedStride; // bytes; 0 with a handed-in buffer, which is what makes the two operations
                        // above see only part of it
    bool m_preMultipliedAlpha;
    std::unique_ptr<unsigned char[]> m_ownedBits;
    unsigned char* m_borrowedBits = nullptr;
    CGColorSpace* m_colorSpace = nullptr;
};

} // namespace Zanthe
