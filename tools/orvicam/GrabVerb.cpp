#include "Camera.h"
#include "Failure.h"
#include "Interrupt.h"
#include "OutputName.h"
#include "Print.h"
#include "Session.h"
#include "Stream.h"
#include "Verbs.h"

#include <boost/timer/progress_display.hpp>

#include <deque>
#include <exception>
#include <iostream>
#include <mutex>
#include <optional>
#include <unistd.h>

namespace Orvi::Tool {
namespace {

/// A bar on standard error while that is a terminal; the cameras' threads share it.
class Progress {
  public:
    explicit Progress(std::uint64_t total)
    {
        if (isatty(STDERR_FILENO) != 0)
            bar_.emplace(static_cast<unsigned long>(total), std::cerr, "", "", "");
    }
    void Step()
    {
        const std::lock_guard lock(mutex_);
        if (bar_)
            ++*bar_;
    }

  private:
    std::mutex mutex_;
    std::optional<boost::timer::progress_display> bar_;
};

/// One camera's share of the work, on a thread of its own while images come.
class Grabber {
  public:
    Grabber(const CameraEntry &entry, const Options &options) : options_(options), camera_(entry)
    {
        for (const std::string &assignment : options.assignments)
            camera_.Apply(assignment);
        stream_.emplace(camera_, options.count);
    }

    void Start() { stream_->Start(); }
    void Interrupt() { stream_->Interrupt(); }

    void Run(const OutputName &output, Progress &progress) noexcept
    {
        try {
            const auto end = stream_->Run(std::chrono::milliseconds(options_.timeout),
                                          [&](const CAM_STREAM_REQUEST_INFO &info, std::span<const std::byte> data) {
                                              return Take(info, data, output, progress);
                                          });
            if (end == Stream::End::Timeout)
                throw NoImage();
        } catch (...) {
            failure_ = std::current_exception();
        }
    }

    void Stop() noexcept
    {
        try {
            if (!failure_)
                stream_->Stop();
        } catch (...) {
            failure_ = std::current_exception();
        }
    }

    std::exception_ptr FailureOf() const { return failure_; }

    void PrintSummary() const
    {
        std::string line =
            Serial() + ": " + std::to_string(files_.size()) + (files_.size() == 1 ? " image" : " images");
        if (files_.size() > 1) {
            char rate[32];
            std::snprintf(rate, sizeof rate, ", %.1f fps", FramesPerSecond());
            line += rate;
        }
        line += ", " + std::to_string(lost_) + " lost";
        if (incomplete_ > 0)
            line += ", " + std::to_string(incomplete_) + " incomplete and not written";
        if (!files_.empty())
            line += ": " + files_.front() + (files_.size() > 1 ? " to " + files_.back() : "");
        PrintLine(line);
    }

    Json Summary() const
    {
        return {{"serial", Serial()},        {"images", files_.size()},  {"lost", lost_},
                {"incomplete", incomplete_}, {"fps", FramesPerSecond()}, {"files", files_}};
    }

  private:
    Stream::Answer Take(const CAM_STREAM_REQUEST_INFO &info, std::span<const std::byte> data, const OutputName &output,
                        Progress &progress)
    {
        if (info.uiStatus == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE)
            throw Failure(ExitCode::Camera, Serial() + " was unplugged after " + SoFar());
        // What was lost before the first image is not missing between the images.
        if (!files_.empty())
            lost_ += info.uiLostBlocks;
        if (info.uiStatus != CAM_API_STS_SUCCESS) {
            ++incomplete_;
            return Stream::Answer::More;
        }
        const Frame frame{camera_.Entry(), info, data};
        const std::filesystem::path path = output.For(frame, files_.size() + 1);
        WriteImage(frame, output.Format(), path, options_.ifExists);
        if (files_.empty())
            firstTime_ = info.ullHostTimestamp;
        lastTime_ = info.ullHostTimestamp;
        files_.push_back(path.string());
        progress.Step();
        return files_.size() == options_.count ? Stream::Answer::Enough : Stream::Answer::More;
    }

    Failure NoImage() const
    {
        std::string trigger;
        try {
            if (camera_.Find("TriggerMode").Text() == "On")
                trigger = "; TriggerMode is On, so the camera waits for a trigger";
        } catch (const Failure &) {
            // A camera without triggers.
        }
        return {ExitCode::Images,
                Serial() + ": no image within " + std::to_string(options_.timeout) + " ms, after " + SoFar() + trigger};
    }

    std::string SoFar() const { return std::to_string(files_.size()) + " of " + std::to_string(options_.count); }
    const std::string &Serial() const { return camera_.Entry().serial; }

    double FramesPerSecond() const
    {
        return lastTime_ > firstTime_
                   ? static_cast<double>(files_.size() - 1) * 1e9 / static_cast<double>(lastTime_ - firstTime_)
                   : 0;
    }

    const Options &options_;
    Camera camera_;
    std::optional<Stream> stream_;
    std::exception_ptr failure_;
    std::vector<std::string> files_;
    std::uint64_t lost_ = 0, incomplete_ = 0;
    std::uint64_t firstTime_ = 0, lastTime_ = 0;
};

/// Prints every camera's failure and throws the first.
void ReportFailures(const std::deque<Grabber> &grabbers)
{
    std::exception_ptr first;
    for (const Grabber &grabber : grabbers) {
        if (!grabber.FailureOf())
            continue;
        try {
            if (first)
                std::rethrow_exception(grabber.FailureOf());
            first = grabber.FailureOf();
        } catch (const std::exception &failure) {
            std::cerr << "orvicam: " << failure.what() << '\n';
        }
    }
    if (first)
        std::rethrow_exception(first);
}

} // namespace

void Grab(const Options &options)
{
    const InterruptBlock block;
    const Session session(options.virtualCameras);
    const std::vector<CameraEntry> cameras = session.Select(options.cameras, Default::TheOnly);
    const OutputName output(options.output, options.format, cameras.size(), options.count);

    std::deque<Grabber> grabbers;
    for (const CameraEntry &entry : cameras)
        grabbers.emplace_back(entry, options);
    const InterruptWatcher watcher([&] {
        for (Grabber &grabber : grabbers)
            grabber.Interrupt();
    });
    Progress progress(options.count * cameras.size());
    for (Grabber &grabber : grabbers)
        grabber.Start();
    {
        std::vector<std::jthread> threads;
        for (Grabber &grabber : grabbers)
            threads.emplace_back([&] { grabber.Run(output, progress); });
    }
    for (Grabber &grabber : grabbers)
        grabber.Stop();

    Json summary = Json::array();
    for (const Grabber &grabber : grabbers) {
        summary.push_back(grabber.Summary());
        if (!options.json)
            grabber.PrintSummary();
    }
    if (options.json)
        PrintLine(Dump(summary));
    ReportFailures(grabbers);
    if (watcher.Interrupted())
        throw Failure(ExitCode::Interrupted, "interrupted");
}

} // namespace Orvi::Tool
