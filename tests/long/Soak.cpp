// Thousands of starts and stops, then minutes of streaming with random faults, on a virtual camera in this process.
// Nothing may hang, each queued buffer comes back, lost images are counted as the camera counts them. A seed repeats a
// run as far as threads allow.
//
// Usage: soak [--rounds N] [--minutes N] [--seed N]; exit code 0 when all was well, 1 when not, 2 for a wrong usage,
// 3 when something hung.

#include "tests/long/SoakCamera.h"
#include "tests/long/SoakFaults.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

#include <unistd.h>

namespace {

using namespace Orvi::Soak;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds s_hangAfter{120}, s_tellEvery{30};

/// What is being done, for messages.
struct State {
    std::uint64_t seed = 0, rounds = 0, images = 0, failed = 0, lost = 0, unplugs = 0, compared = 0;
    std::atomic<const char *> doing = "setting up";
    Faults faults;
};
State g_state;

/// Ends the process when nothing has moved for long.
void Watch()
{
    unsigned long long last = 0;
    for (auto since = Clock::now();;) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        if (const auto now = g_progress.load(); now != last) {
            last = now;
            since = Clock::now();
        } else if (Clock::now() - since > s_hangAfter) {
            std::fprintf(stderr, "FAILED: nothing has moved for %lld s while %s, round %llu, seed %llu\n",
                         static_cast<long long>(s_hangAfter.count()), g_state.doing.load(),
                         static_cast<unsigned long long>(g_state.rounds),
                         static_cast<unsigned long long>(g_state.seed));
            _exit(3);
        }
    }
}

void Tell(bool always)
{
    static auto s_told = Clock::now();
    if (always || Clock::now() - s_told > s_tellEvery) {
        s_told = Clock::now();
        std::printf("%s: %llu rounds, %llu images, %llu incomplete, %llu lost, %llu times unplugged\n",
                    g_state.doing.load(), static_cast<unsigned long long>(g_state.rounds),
                    static_cast<unsigned long long>(g_state.images), static_cast<unsigned long long>(g_state.failed),
                    static_cast<unsigned long long>(g_state.lost), static_cast<unsigned long long>(g_state.unplugs));
        std::fflush(stdout);
    }
}

void CheckGood(const Stream &stream, const Image &image)
{
    Check(image.info.uiStatus == 0, "an image of a faultless camera has failed");
    Check(image.info.ullValidPayloadSize == stream.PayloadSize(), "an image of a faultless camera is not whole");
    Check(stream.IsTrue(image), "a picture is not that of its block");
}

void StartAndStop(std::uint64_t rounds)
{
    g_state.doing = "starting and stopping";
    std::unique_ptr<Camera> camera;
    std::unique_ptr<Stream> stream;
    for (g_state.rounds = 0; g_state.rounds < rounds; ++g_state.rounds) {
        if (g_state.rounds % 1000 == 0) {
            stream.reset();
            camera.reset();
            camera = std::make_unique<Camera>();
        }
        if (g_state.rounds % 100 == 0) {
            stream.reset();
            stream = std::make_unique<Stream>(*camera);
        }
        stream->QueueAll();
        Check(Strm_Start(stream->Handle(), CAM_ACQ_MODE_CONTINUOUS), "Strm_Start");
        CheckGood(*stream, stream->Next());
        Check(Strm_Stop(stream->Handle()), "Strm_Stop");
        stream->TakeAllBack();
        Check(stream->LostCount() == 0, "a faultless camera loses images");
        ++g_state.images;
        Tell(false);
    }
    Tell(true);
}

/// One stream with its faults, on a camera that is there.
class Round {
  public:
    Round(const Camera &camera, Random &random) : camera_(camera), random_(random), stream_(camera) {}

    void Run()
    {
        const uint32_t droppedBefore = camera_.Dropped();
        const bool isSlow = Below(random_, 4) == 0;
        const bool isEarly = Below(random_, 2) == 0; // start and stop among the faulty commands
        camera_.SetRate(isSlow ? 500 : 0);
        stream_.QueueAll();
        if (isEarly) {
            Arm();
        }
        CAM_API_STATUS status = Strm_Start(stream_.Handle(), CAM_ACQ_MODE_CONTINUOUS);
        Check(status == 0 || isEarly, "a stream cannot be started");
        if (status == 0) {
            if (!isEarly) {
                Arm();
            }
            TakeImages(50 + Below(random_, 300), isSlow);
        }
        if (!isGone_ && !EndFaults()) {
            isGone_ = true;
        }
        if (!isGone_ && status != 0) {
            // A command that was refused or lost: the next try works, on the same buffers.
            Check(Strm_Start(stream_.Handle(), CAM_ACQ_MODE_CONTINUOUS), "Strm_Start after a failed one");
        }
        if (isGone_) {
            ++g_state.unplugs;
            while (stream_.Queued() != 0) {
                Take(false); // all come back by themselves
            }
            return;
        }
        // Slower than the camera or not: at the end all is in step, and nothing is queued any more.
        camera_.SetRate(0);
        TakeGoodOnes();
        while (stream_.Queued() != 0) {
            Take(false);
        }
        CheckLost(droppedBefore);
        Check(Strm_Stop(stream_.Handle()), "Strm_Stop");
        stream_.TakeAllBack();
    }

  private:
    void Arm()
    {
        for (const auto &rule : g_state.faults.rules) {
            camera_.Arm(rule);
        }
    }

    void TakeImages(std::uint64_t images, bool isSlow)
    {
        for (std::uint64_t i = 0; i < images && !isGone_; ++i) {
            Take(true);
            if (Below(random_, 20) == 0) {
                const CAM_API_STATUS status = camera_.TryRead(0x1E8);
                Check(status == 0 || g_state.faults.disturbsControl || g_state.faults.unplugs,
                      "a register cannot be read");
            }
            if (isSlow && Below(random_, 50) == 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(Below(random_, 30)));
            }
        }
    }

    /// False when the camera is gone.
    bool EndFaults()
    {
        if (!g_state.faults.unplugs) {
            camera_.Disarm();
            return true;
        }
        try {
            camera_.Disarm();
            return true;
        } catch (const Failure &) {
            return false;
        }
    }

    Image Take(bool queuesAgain)
    {
        const Image image = stream_.Next();
        const auto &info = image.info;
        if (info.uiStatus == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE) {
            Check(g_state.faults.unplugs, "a removal that never was");
            isGone_ = true;
            return image;
        }
        ++(info.uiStatus == 0 ? g_state.images : g_state.failed);
        told_ += info.uiLostBlocks;
        if (info.uiStatus == 0 && info.ullValidPayloadSize == stream_.PayloadSize() && !g_state.faults.shiftsIds) {
            Check(stream_.IsTrue(image), "a picture is not that of its block");
        }
        if (info.ullDeviceTimestamp != 0) { // the leader has told which block it is
            first_ = std::min(first_, info.ullBlockId);
            last_ = std::max(last_, info.ullBlockId);
            ++seen_;
        }
        if (queuesAgain && stream_.Queue(image.buffer) != CAM_API_STS_SUCCESS) {
            Check(g_state.faults.unplugs, "a camera is gone that nobody has unplugged");
            isGone_ = true;
        }
        return image;
    }

    void TakeGoodOnes()
    {
        // What the faults have begun may take a while to come to its end.
        for (unsigned good = 0, taken = 0; good < 2 * Stream::buffers; ++taken) {
            Check(taken < 1000, "the stream does not come into step again");
            const Image image = Take(true);
            const bool isWhole = image.info.ullValidPayloadSize == stream_.PayloadSize();
            good = image.info.uiStatus == 0 && image.info.uiLostBlocks == 0 && isWhole ? good + 1 : 0;
        }
    }

    void CheckLost(uint32_t droppedBefore)
    {
        const std::uint64_t lost = stream_.LostCount();
        g_state.lost += lost;
        Check(lost == told_, "the lost count is not the sum of what the images tell");
        if (!g_state.faults.shiftsIds) {
            Check(lost == last_ - first_ + 1 - seen_, "the lost count is not the gaps between block ids");
        }
        if (!g_state.faults.shiftsIds && !g_state.faults.losesStep && first_ == 0) {
            Check(lost == camera_.Dropped() - droppedBefore, "the lost count is not the camera's own");
            ++g_state.compared;
        }
    }

    const Camera &camera_;
    Random &random_;
    Stream stream_;
    bool isGone_ = false;
    std::uint64_t told_ = 0, seen_ = 0, first_ = UINT64_MAX, last_ = 0;
};

void StreamWithFaults(double minutes)
{
    g_state.doing = "streaming with faults";
    g_state.rounds = 0;
    const auto end = Clock::now() + std::chrono::duration<double>(60 * minutes);
    std::unique_ptr<Camera> camera;
    while (Clock::now() < end) {
        // Each round has a seed of its own: the same faults, whatever the rounds before it have drawn.
        Random random(g_state.seed + g_state.rounds);
        g_state.faults = DrawFaults(random);
        if (camera == nullptr || g_state.rounds % 50 == 0) {
            camera.reset();
            camera = std::make_unique<Camera>();
        }
        const std::uint64_t unplugs = g_state.unplugs;
        Round(*camera, random).Run();
        if (unplugs != g_state.unplugs || g_state.faults.unplugs) {
            camera.reset();
        }
        ++g_state.rounds;
        Tell(false);
    }
    Tell(true);
}

struct Options {
    std::uint64_t rounds = 10000;
    double minutes = 30;
    std::uint64_t seed = std::random_device()();
};

bool Parse(int argc, char **argv, Options &options)
{
    for (int i = 1; i < argc; i += 2) {
        if (i + 1 == argc) {
            return false;
        }
        char *end = nullptr;
        if (std::strcmp(argv[i], "--rounds") == 0) {
            options.rounds = std::strtoull(argv[i + 1], &end, 10);
        } else if (std::strcmp(argv[i], "--minutes") == 0) {
            options.minutes = std::strtod(argv[i + 1], &end);
        } else if (std::strcmp(argv[i], "--seed") == 0) {
            options.seed = std::strtoull(argv[i + 1], &end, 10);
        }
        if (end == nullptr || end == argv[i + 1] || *end != '\0') {
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (!Parse(argc, argv, options)) {
        std::fputs("Usage: soak [--rounds N] [--minutes N] [--seed N]\n", stderr);
        return 2;
    }
    g_state.seed = options.seed;
    std::printf("soak: %llu starts and stops, %g minutes with faults, seed %llu\n",
                static_cast<unsigned long long>(options.rounds), options.minutes,
                static_cast<unsigned long long>(options.seed));
    std::fflush(stdout);
    setenv("ORVICAMSDK", ORVI_TEST_SDK, 1);
    setenv("ORVI_VIRTUAL_CAMERAS", "1", 1);
    setenv("ORVI_TRANSPORT", "virtual", 1);
    std::thread(Watch).detach();
    try {
        Check(Sys_Initialize(SYS_INIT_U3V), "Sys_Initialize");
        StartAndStop(options.rounds);
        StreamWithFaults(options.minutes);
        g_state.doing = "ending";
        Check(Sys_Terminate(), "Sys_Terminate");
    } catch (const Failure &failure) {
        std::fprintf(stderr, "FAILED: %s, while %s, round %llu, seed %llu (--seed %llu begins with it)\nfaults: %s\n",
                     failure.what(), g_state.doing.load(), static_cast<unsigned long long>(g_state.rounds),
                     static_cast<unsigned long long>(g_state.seed),
                     static_cast<unsigned long long>(g_state.seed + g_state.rounds), g_state.faults.Text().c_str());
        std::fflush(nullptr);
        _exit(1);
    }
    std::printf("soak: all well; the lost count was compared with the camera's own %llu times\n",
                static_cast<unsigned long long>(g_state.compared));
    return 0;
}
