#include "tools/zanthe/SheetCommand.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/DisplayPicture.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/OpenAudio.h"
#include "tools/zanthe/OutputFile.h"
#include "tools/zanthe/PictureFile.h"
#include "tools/zanthe/PictureStart.h"
#include "tools/zanthe/Progress.h"
#include "tools/zanthe/SheetLayout.h"
#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/VideoJson.h"
#include "tools/zanthe/VideoTimeline.h"
#include "tools/zanthe/Waveform.h"
#include "zanthe/analysis/FileClassification.h"

namespace Program {

namespace {

constexpr Colour Ground{0.11, 0.11, 0.12};
constexpr Colour Empty{0.18, 0.18, 0.20};
constexpr Colour Bright{0.93, 0.93, 0.93};
constexpr Colour Dim{0.68, 0.68, 0.70};
constexpr Colour Wave{0.45, 0.68, 0.92};
constexpr int StripHeight = 64;     // pixels
constexpr double TitleLetters = 16; // pixels
constexpr double CaptionLetters = 13;

struct SheetPicture {
    std::int64_t asked = 0; // 100 ns
    std::optional<std::int64_t> start = {};
    bool shown = false; // there was one
};

std::string TitleOf(const SheetRequest& request, const VideoFacts& facts, std::int64_t duration) {
    const Size shown = DisplaySize(facts);
    const std::string name = std::filesystem::path(request.file).filename().string();
    return OneLine(name) + "   " + std::to_string(shown.width) + " x " +
           std::to_string(shown.height) + "   " + ClockText(duration);
}

// A file's name may hold bytes that are no UTF-8, at which cairo would refuse all further work.
std::string Drawable(const std::string& text) {
    const std::string quoted = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
    return Json::parse(quoted).get<std::string>();
}

SheetPicture DrawCell(Canvas& canvas, IVideo& video, const SheetCell& cell, std::int64_t time) {
    SheetPicture shown{.asked = time};
    if (const std::optional<Picture> picture = video.At(TimeOfUnits(time))) {
        canvas.DrawPicture(*AsShown(LockedPixels(*picture->sample), video.Facts()), cell.picture);
        shown.start = StartOf(video, *picture, time);
        shown.shown = true;
    } else {
        canvas.FillArea(cell.picture, Empty);
    }
    canvas.DrawText(ClockText(shown.start.value_or(time)), cell.caption, Canvas::Align::Left,
                    CaptionLetters, Dim);
    return shown;
}

// As the caption says it.
std::string TimeTextOf(const SheetPicture& picture) {
    return ClockText(picture.start.value_or(picture.asked));
}

// How many cells show something, and from when to when.
std::string CountText(const std::vector<SheetPicture>& pictures) {
    const auto isShown = [](const SheetPicture& picture) { return picture.shown; };
    const auto shown = std::count_if(pictures.begin(), pictures.end(), isShown);
    std::string text = std::to_string(shown);
    if (shown < static_cast<std::ptrdiff_t>(pictures.size())) {
        text += " of " + std::to_string(pictures.size());
    }
    text += text == "1" ? " picture" : " pictures";
    if (shown == 0) {
        return text;
    }
    const auto first = std::find_if(pictures.begin(), pictures.end(), isShown);
    const auto last = std::find_if(pictures.rbegin(), pictures.rend(), isShown);
    return text + (shown == 1 ? " at " : " from ") + TimeTextOf(*first) +
           (shown == 1 ? "" : " to " + TimeTextOf(*last));
}

Json JsonOf(const SheetPicture& picture) {
    return {{"asked_100ns", picture.asked},
            {"time_100ns", JsonOrNull(picture.start)},
            {"shown", picture.shown}};
}

// Where everything stands, and how the sound looks; no swings where there is none.
struct Plan {
    SheetLayout layout;
    std::vector<Swing> swings;
};

Plan MakePlan(Size picture, std::int64_t duration, Zanthe::IAudioReader* sound,
              const SheetRequest& request, Progress& progress) {
    Plan plan{.layout = LayOutSheet(picture, request.columns, request.rows), .swings = {}};
    if (sound != nullptr) {
        const int columns = plan.layout.strip.width;
        plan.swings = MeasureWaveform(*sound, SheetSoundRate, duration, columns, [&](int column) {
            ThrowIfInterrupted();
            progress.Show("sound " + std::to_string(100 * column / columns) + " %");
        });
    }
    if (!plan.swings.empty()) {
        plan.layout = LayOutSheet(picture, request.columns, request.rows, StripHeight);
    }
    return plan;
}

void DrawStrip(Canvas& canvas, const Plan& plan) {
    if (!plan.swings.empty()) {
        canvas.FillArea(plan.layout.strip, Empty);
        DrawWaveform(canvas, plan.layout.strip, plan.swings, Wave);
    }
}

void Print(const SheetRequest& request, const VideoFacts& facts, const Plan& plan,
           const std::vector<SheetPicture>& pictures, std::ostream& out) {
    const SheetLayout& layout = plan.layout;
    if (!request.json) {
        out << OneLine(request.output) << ": " << layout.sheet.width << " x " << layout.sheet.height
            << ", " << CountText(pictures) << (plan.swings.empty() ? "" : ", with sound") << '\n';
        return;
    }
    Json cells = Json::array();
    for (const SheetPicture& picture : pictures) {
        cells.push_back(JsonOf(picture));
    }
    PrintJsonLine({{"command", "sheet"},
                   {"file", request.file},
                   {"video", JsonOf(facts)},
                   {"columns", request.columns},
                   {"rows", request.rows},
                   {"width", layout.sheet.width},
                   {"height", layout.sheet.height},
                   {"pictures", std::move(cells)},
                   {"sound", !plan.swings.empty()},
                   {"output", request.output}},
                  out);
}

// Each picture once where there are no more of them than cells, the rest of which stay empty.
std::vector<std::int64_t> TimesOfCells(IVideo& video, std::int64_t duration, std::size_t cells) {
    std::vector<std::int64_t> times = StartsOfFew(video, duration, cells);
    return times.empty() ? SheetTimes(duration, cells) : times;
}

std::int64_t DurationOf(IVideo& video) {
    const auto told = video.Facts().duration;
    if (told && *told > 0) {
        return *told;
    }
    return FindEnd(video, [](std::int64_t) { ThrowIfInterrupted(); });
}

} // namespace

void WriteSheet(IVideo& video, Zanthe::IAudioReader* sound, const SheetRequest& request,
                std::ostream& out) {
    const VideoFacts& facts = video.Facts();
    const std::int64_t duration = DurationOf(video);
    if (duration <= 0 || facts.width <= 0 || facts.height <= 0) {
        throw CommandError(request.file, facts.ifNone.empty() ? "holds no pictures" : facts.ifNone);
    }
    OutputFile output(request.output);
    StandardProgress progress;
    const Plan plan = MakePlan(DisplaySize(facts), duration, sound, request, progress);
    const SheetLayout& layout = plan.layout;
    Canvas canvas(layout.sheet, Ground);
    canvas.DrawText(Drawable(TitleOf(request, facts, duration)), layout.title, Canvas::Align::Left,
                    TitleLetters, Bright);
    std::vector<SheetPicture> pictures;
    const std::vector<std::int64_t> times = TimesOfCells(video, duration, layout.cells.size());
    for (std::size_t i = 0; i < times.size(); ++i) {
        ThrowIfInterrupted();
        progress.Show("picture " + std::to_string(i + 1) + " of " + std::to_string(times.size()));
        pictures.push_back(DrawCell(canvas, video, layout.cells[i], times[i]));
    }
    progress.Wipe();
    DrawStrip(canvas, plan);
    SavePng(*canvas.ToBitmap(), output.TemporaryPath(), request.output);
    ThrowIfInterrupted();
    output.Commit();
    Print(request, facts, plan, pictures, ReportStream(request.output, out));
}

SheetRequest Suited(IVideo& video, const SheetRequest& request) {
    SheetRequest suited = request;
    const auto cells =
        static_cast<std::size_t>(request.columns) * static_cast<std::size_t>(request.rows);
    const auto pictures = static_cast<int>(StartsOfFew(video, DurationOf(video), cells).size());
    if (pictures > 0) {
        suited.columns = std::min(request.columns, pictures);
        suited.rows = (pictures + suited.columns - 1) / suited.columns;
    }
    return suited;
}

namespace {

// Null where the file has none, or none that can be read: a sheet does without.
boost::shared_ptr<Zanthe::IAudioReader> SoundOf(const std::string& file) {
    try {
        return OpenAudio(file, {.rate = SheetSoundRate}).reader;
    } catch (const CommandError&) {
        return nullptr;
    }
}

} // namespace

void RunSheet(const SheetRequest& request, std::ostream& out) {
    const std::unique_ptr<IVideo> video = OpenVideo(request.file, request.choice);
    PrintRemarks(request.file, video->Facts());
    RequireOtherFile(Zanthe::ContainerPathOf(request.file), request.output);
    const auto sound = SoundOf(request.file);
    WriteSheet(*video, sound.get(), Suited(*video, request), out);
    RemarkName(request.output);
}

} // namespace Program
