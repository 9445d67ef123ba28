#include "platform/av/OpenInput.h"

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace av {
namespace {

int Open(const std::string& path) {
    FormatContextPtr context(avformat_alloc_context());
    const int result = OpenInput(context, path);
    EXPECT_EQ(context == nullptr, result < 0);
    return result;
}

class OpenInputFiles : public testing::Test {
protected:
    OpenInputFiles() { m_folder.Write("other.mp3", m_song); }

    const std::string m_song = ReadWholeFile(MadeMedia("tone-44100-stereo-cbr128.mp3"));
    const TemporaryFolder m_folder;
};

TEST_F(OpenInputFiles, OpensWhatIsNamed) {
    EXPECT_EQ(Open(m_folder / "other.mp3"), 0);
}

TEST_F(OpenInputFiles, NameIsNoAddressAndNoPattern) {
    for (const char* name : {"http:a.mp3", "concat:a|b.mp3", "a%03d.mp3", "a:b: 100%.mp3"}) {
        EXPECT_EQ(Open(m_folder.Write(name, m_song)), 0) << name;
    }
}

TEST_F(OpenInputFiles, RefusesWhatIsNoRegularFile) {
    const std::string fifo = m_folder / "fifo.mp3";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& path :
         {fifo, m_folder.Path().string(), std::string("/dev/zero"), m_folder / "missing.mp3"}) {
        EXPECT_LT(Open(path), 0) << path;
    }
}

// Each would serve other.mp3, or what is behind an address, as its own sound.
TEST_F(OpenInputFiles, ReadsNoOtherFileThatThisOneRefersTo) {
    const std::string other = m_folder / "other.mp3";
    const std::string playlist = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\n";
    for (const std::string& text :
         {std::string("ffconcat version 1.0\nfile 'other.mp3'\n"),
          "ffconcat version 1.0\nfile '" + other + "'\n", playlist + "other.mp3\n#EXT-X-ENDLIST\n",
          playlist + std::string("file:").append(other) + "\n#EXT-X-ENDLIST\n",
          playlist + "http://127.0.0.1:9/a.mp3\n#EXT-X-ENDLIST\n",
          // Without an end: it may grow, and would be waited on.
          playlist + "other.mp3\n", playlist + "list.mp3\n", playlist + "none.mp3\n"}) {
        FormatContextPtr context(avformat_alloc_context());
        const bool opened = OpenInput(context, m_folder.Write("list.mp3", text)) >= 0;
        const bool served = opened && avformat_find_stream_info(context.get(), nullptr) >= 0 &&
                            context->nb_streams > 0;
        EXPECT_FALSE(served) << text;
    }
}

} // namespace
} // namespace av
