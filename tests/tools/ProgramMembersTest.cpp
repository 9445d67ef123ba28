#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/support/CompoundFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ProgramRun.h"

namespace {

class ProgramMembers : public testing::Test {
protected:
    ProgramMembers() {
        WriteCompoundFile(path, {{"Screen_Stream.avi", std::string(5'000, 'x')},
                                 {"Audio.wav", "12345"},
                                 {"more/inner", "x"}});
    }

    TemporaryFolder folder;
    std::string path = folder / "a.orirec";
};

TEST_F(ProgramMembers, OfACompoundFileAreListed) {
    for (const std::string& file : {path, path + "!Screen_Stream.avi"}) {
        const ProgramEnd end = RunProgram({"classify", file});
        EXPECT_EQ(end.status, 0);
        EXPECT_THAT(end.out, testing::HasSubstr("\n  member          Audio.wav (5 bytes)\n"
                                                "  member          Screen_Stream.avi (5000 bytes)\n"
                                                "  member          more (a storage)\n"));
    }
}

TEST_F(ProgramMembers, AreListedAsJson) {
    const auto json = nlohmann::json::parse(RunProgram({"classify", path, "--json"}).out);
    EXPECT_EQ(json["members"],
              nlohmann::json::parse(R"([{"name": "Audio.wav", "storage": false, "size": 5},
                  {"name": "Screen_Stream.avi", "storage": false, "size": 5000},
                  {"name": "more", "storage": true, "size": 0}])"));
}

TEST_F(ProgramMembers, TheScreenStreamIsPointedOut) {
    const std::string remark =
        "remark            it is a legacy recording: its pictures are read by the name " + path +
        "!Screen_Stream.avi\n";
    EXPECT_THAT(RunProgram({"classify", path}).out, testing::HasSubstr(remark));
    const auto json = nlohmann::json::parse(RunProgram({"classify", path, "--json"}).out);
    EXPECT_EQ(json["remarks"].back(),
              "it is a legacy recording: its pictures are read by the name " + path +
                  "!Screen_Stream.avi");
    EXPECT_THAT(RunProgram({"classify", path + "!Screen_Stream.avi"}).out,
                testing::Not(testing::HasSubstr("legacy recording:")));
}

TEST_F(ProgramMembers, AMemberThatNoRecordingHasIsNoFile) {
    const ProgramEnd end = RunProgram({"classify", path + "!Nothing.avi"});
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.err, "zanthe: " + path +
                           "!Nothing.avi: no such file, and no member that recordings have\n");
}

TEST_F(ProgramMembers, OfAnyOtherFileAreNone) {
    const std::string text = folder.Write("text.mp4", "text");
    EXPECT_EQ(RunProgram({"classify", text}).out.find("  member "), std::string::npos);
    const auto json = nlohmann::json::parse(RunProgram({"classify", text, "--json"}).out);
    EXPECT_EQ(json["members"], nlohmann::json::array());
}

} // namespace
