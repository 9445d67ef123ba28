#include "tools/zanthe/ImageCommand.h"

#include <memory>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/JsonLine.h"
#include "tools/zanthe/OutputFile.h"
#include "tools/zanthe/PictureFile.h"
#include "zanthe/detection/DSMediaDetException.h"
#include "zanthe/images/PdfImageLoader.h"
#include "zanthe/images/WICImageLoader.h"
#include "zanthe/images/WidePath.h"

namespace Program {

namespace {

std::unique_ptr<Zanthe::IImageLoader> OpenPdf(const ImageRequest& request) {
    if (!request.size) {
        throw CommandError(request.file, "a PDF page has no size in pixels: give one with --size");
    }
    try {
        return std::make_unique<Zanthe::PdfImageLoader>(request.file, 0);
    } catch (const std::runtime_error&) {
        throw CommandError(request.file, "is no PDF document that can be opened");
    }
}

std::unique_ptr<Zanthe::IImageLoader> OpenStill(const ImageRequest& request) {
    if (request.size) {
        throw CommandError(request.file, "a picture has its own size: use --max to bound it");
    }
    try {
        return std::make_unique<Zanthe::WICImageLoader>(Zanthe::WidePath(request.file),
                                                        request.maxDimension);
    } catch (const DSMediaDetException&) {
        throw CommandError(request.file,
                           "is no picture that can be read (JPEG, PNG, TIFF, WebP, HEIF, BMP, "
                           "GIF), or has too many pixels");
    }
}

void Load(Zanthe::IImageLoader& loader, const ImageRequest& request) {
    const PictureSize size = request.size.value_or(PictureSize{});
    try {
        loader.Load(0.0, size.width, size.height);
    } catch (const std::runtime_error&) {
        throw CommandError(request.file, "is damaged: its picture cannot be decoded");
    }
}

void Report(const ImageRequest& request, bool isPdf, const Zanthe::Bitmap& bitmap,
            std::ostream& out) {
    if (request.json) {
        const Json result{
            {"command", "image"},
            {"file", request.file},
            {"kind", isPdf ? "pdf" : "still"},
            {"width", bitmap.GetWidth()},
            {"height", bitmap.GetHeight()},
            {"output", request.output},
        };
        PrintJsonLine(result, out);
        return;
    }
    out << OneLine(request.output) << ": " << bitmap.GetWidth() << 'x' << bitmap.GetHeight()
        << '\n';
}

} // namespace

void RunImage(const ImageRequest& request, std::ostream& out) {
    RequireReadableFile(request.file);
    RequireOtherFile(request.file, request.output);
    const bool isPdf = Zanthe::LooksLikePdf(request.file);
    const std::unique_ptr<Zanthe::IImageLoader> loader =
        isPdf ? OpenPdf(request) : OpenStill(request);
    OutputFile output(request.output);
    Load(*loader, request);
    ThrowIfInterrupted();
    const boost::shared_ptr<Zanthe::Bitmap> bitmap = loader->GetBitmap();
    SavePng(*bitmap, output.TemporaryPath(), request.output);
    output.Commit();
    Report(request, isPdf, *bitmap, ReportStream(request.output, out));
}

} // namespace Program
