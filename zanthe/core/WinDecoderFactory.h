// The factory of this platform: three kinds of files, told apart by path and, for ".mov", content.
//
// Files that a VideoDecoder of the library's own takes come wrapped as readers; of the rest, those
// that Media Foundation takes go there and all others to DirectShow.
#pragma once

#include <memory>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/core/DecoderFactory.h"
#include "zanthe/core/routes/IDecoderRoutes.h"

namespace Zanthe {

// Thread-safety: safe from any thread; nothing changes behind the constructor.
class WinDecoderFactory final : public DecoderFactory {
public:
    // As DecoderFactory::Create says.
    WinDecoderFactory(DecoderOutputFormat format, IMFDXGIDeviceManager* deviceManager,
                      bool useMediaFoundation);

    // The same over other backends. REQUIRES: routes.
    WinDecoderFactory(DecoderOutputFormat format, IMFDXGIDeviceManager* deviceManager,
                      bool useMediaFoundation, std::unique_ptr<const IDecoderRoutes> routes);

    ~WinDecoderFactory() override;

    // DecoderFactory
    VideoSampleReader* CreateVideoSampleReader(const std::string& path, int streamIndex,
                                               bool deferInitialization) override;

    // As the factory was made.
    DecoderOutputFormat OutputFormat() const { return m_outputFormat; }

    bool UsesMediaFoundation() const { return m_useMediaFoundation; }

    // Whether a VideoDecoder is tried for the file. It can be true where CreateVideoDecoder throws:
    // for the members of a ".brec" recording.
    bool IsHandledByVideoDecoder(const std::string& path, int streamIndex) const;

    // Never null. Throws std::runtime_error:
    //   "DecoderFactory::CreateVideoDecoder: Can't create decoder for a filename that has no
    //   extension. FileName = " and the path      nowhere in it a "."
    //   "DecoderFactory::CreateVideoDecoder: Couldn't find a decoder to match extension = " and the
    //   text behind the last "."
    // What the decoder's own creation throws passes through.
    std::unique_ptr<VideoDecoder> CreateVideoDecoder(const std::string& path,
                                                     int streamIndex) const;

private:
    struct Releaser {
        void operator()(IMFDXGIDeviceManager* deviceManager) const;
    };

    boost::shared_ptr<IDSChainManager> m_chainManager; // shared by all DirectShow readers
    DecoderOutputFormat m_outputFormat;
    std::unique_ptr<IMFDXGIDeviceManager, Releaser> m_deviceManager; // one reference; may be null
    bool m_useMediaFoundation;
    std::unique_ptr<const IDecoderRoutes> m_routes;
};

} // namespace Zanthe
