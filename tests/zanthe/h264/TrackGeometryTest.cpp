#include "zanthe/h264/TrackGeometry.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/zanthe/h264/HeadersAlone.h"

namespace Zanthe {
namespace {

TEST(TrackGeometry, IsLookedUpOnce) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.mp4", HeadersAlone(64, 48, boxes::Clockwise90));
    EXPECT_EQ(TrackGeometryOf(path).width, 64);
    folder.Write("a.mp4", HeadersAlone(320, 240));
    EXPECT_EQ(TrackGeometryOf(path).width, 64);
    EXPECT_EQ(TrackGeometryOf(path).height, 48);
    EXPECT_EQ(RotationFromOrientation(TrackGeometryOf(path)), 90);
    EXPECT_EQ(TrackGeometryOf(folder.Write("b.mp4", HeadersAlone(320, 240))).width, 320);
}

} // namespace
} // namespace Zanthe
