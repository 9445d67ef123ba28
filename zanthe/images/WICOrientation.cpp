#include "zanthe/images/WICOrientation.h"

#include "platform/com/PropVariant.h"

namespace Zanthe {

namespace {

constexpr const wchar_t* OrientationOfJpeg = L"/app1/ifd/{ushort=274}";

} // namespace

WICBitmapTransformOptions TransformOfOrientation(unsigned int orientation) {
    const auto options = [](int bits) { return static_cast<WICBitmapTransformOptions>(bits); };
    switch (orientation) {
    case 2:
        return WICBitmapTransformFlipHorizontal;
    case 3:
        return WICBitmapTransformRotate180;
    case 4:
        return options(WICBitmapTransformFlipHorizontal | WICBitmapTransformRotate180);
    case 5:
        return options(WICBitmapTransformFlipHorizontal | WICBitmapTransformRotate270);
    case 6:
        return WICBitmapTransformRotate90;
    case 7:
        return options(WICBitmapTransformFlipHorizontal | WICBitmapTransformRotate90);
    case 8:
        return WICBitmapTransformRotate270;
    default:
        return WICBitmapTransformRotate0;
    }
}

com::ComPtr<IWICBitmapSource> OrientedSource(IWICImagingFactory& factory,
                                             IWICBitmapFrameDecode& frame,
                                             IWICBitmapSource* source) {
    com::ComPtr<IWICBitmapSource> asItIs(source);
    com::ComPtr<IWICMetadataQueryReader> reader;
    PROPVARIANT value;
    PropVariantInit(&value);
    if (FAILED(frame.GetMetadataQueryReader(reader.Put())) ||
        FAILED(reader->GetMetadataByName(OrientationOfJpeg, &value))) {
        return asItIs;
    }
    const unsigned int orientation = value.uiVal;
    PropVariantClear(&value);
    com::ComPtr<IWICBitmapFlipRotator> rotator;
    if (FAILED(factory.CreateBitmapFlipRotator(rotator.Put())) ||
        FAILED(rotator->Initialize(source, TransformOfOrientation(orientation)))) {
        return asItIs;
    }
    return com::ComPtr<IWICBitmapSource>(rotator.Get());
}

} // namespace Zanthe
