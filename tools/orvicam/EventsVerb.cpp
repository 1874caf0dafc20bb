#include "Camera.h"
#include "EventChannel.h"
#include "Failure.h"
#include "Interrupt.h"
#include "Print.h"
#include "Session.h"
#include "Signal.h"
#include "Stream.h"
#include "Text.h"
#include "Verbs.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <deque>
#include <exception>
#include <functional>
#include <optional>
#include <thread>

namespace Orvi::Tool {
namespace {

constexpr char s_acquisitionEnd[] = "AcquisitionEnd";

/// Keeps a camera taking images, which nobody looks at.
class Discarder {
  public:
    /// The signal is set when images stop coming for another reason than Stop().
    Discarder(const Camera &camera, const Signal &signal) : stream_(camera, s_buffers), signal_(signal)
    {
        stream_.Start();
        thread_ = std::thread([this] { Run(); });
    }
    ~Discarder() { Join(); }
    Discarder(const Discarder &) = delete;
    Discarder &operator=(const Discarder &) = delete;

    void Stop()
    {
        Join();
        stream_.Stop();
    }

    /// Throws what ended the images, if anything did.
    void CheckRunning() const
    {
        if (failed_)
            std::rethrow_exception(failure_);
    }

  private:
    static constexpr std::uint64_t s_buffers = 8;

    void Run() noexcept
    {
        try {
            stream_.Run(std::chrono::milliseconds(SYS_WAIT_INFINITE),
                        [](const CAM_STREAM_REQUEST_INFO &info, std::span<const std::byte>) {
                            return info.uiStatus == CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE ? Stream::Answer::Enough
                                                                                         : Stream::Answer::More;
                        });
        } catch (...) {
            failure_ = std::current_exception();
            failed_ = true;
            signal_.Set();
        }
    }

    void Join()
    {
        if (!thread_.joinable())
            return;
        stream_.Interrupt();
        thread_.join();
    }

    Stream stream_;
    const Signal &signal_;
    std::exception_ptr failure_;
    std::atomic<bool> failed_ = false; ///< set behind failure_
    std::thread thread_;
};

class Printer {
  public:
    Printer(const Options &options, bool several) : options_(options), several_(several) {}

    void Print(const std::string &serial, const Event &event)
    {
        ++count_;
        const CAM_EVENT_REQUEST_INFO &info = event.info;
        if (options_.json) {
            const Json json = {{"serial", serial},
                               {"event", event.name},
                               {"eventId", Hex(info.usEventId, 4)},
                               {"timestampNs", info.ullTimestamp},
                               {"blockId", info.ullBlockId}};
            PrintLine(json.dump(-1, ' ', false, Json::error_handler_t::replace));
            return;
        }
        constexpr std::uint64_t nanoseconds = 1'000'000'000;
        std::printf("%s%s%6llu.%09llu  %-*s  %llu\n", several_ ? serial.c_str() : "", several_ ? " " : "",
                    static_cast<unsigned long long>(info.ullTimestamp / nanoseconds),
                    static_cast<unsigned long long>(info.ullTimestamp % nanoseconds), nameWidth_, event.name.c_str(),
                    static_cast<unsigned long long>(info.ullBlockId));
    }

    /// Column for the names of these events.
    void Reserve(const std::vector<std::string> &names)
    {
        for (const std::string &name : names)
            nameWidth_ = std::max(nameWidth_, static_cast<int>(name.size()));
    }

    /// Who reads a pipe wants each event when it comes.
    static void Flush() { std::fflush(stdout); }

    std::uint64_t Count() const { return count_; }
    bool HasEnough() const { return options_.eventCount && count_ >= *options_.eventCount; }

  private:
    const Options &options_;
    bool several_;
    int nameWidth_ = 0;
    std::uint64_t count_ = 0;
};

/// One camera, its events and, if wanted, its images.
class Source {
  public:
    Source(const CameraEntry &entry, const Options &options, const Signal &signal, Printer &printer)
        : signal_(signal), camera_(entry)
    {
        const std::vector<std::string> names = SelectEvents(camera_, options.events);
        printer.Reserve(names);
        sendsEnd_ = std::find(names.begin(), names.end(), s_acquisitionEnd) != names.end();
        events_.emplace(camera_, names, signal);
        for (const std::string &assignment : options.assignments)
            camera_.Apply(assignment);
    }

    void StartImages() { images_.emplace(camera_, signal_); }
    void StopImages()
    {
        if (!images_)
            return;
        images_->Stop();
        awaitsEnd_ = sendsEnd_;
    }
    /// Whether the end of acquisition has still to bring its event.
    bool AwaitsEnd() const { return awaitsEnd_; }

    /// Prints what has arrived, as far as that is wanted.
    void Drain(Printer &printer)
    {
        while (!printer.HasEnough()) {
            const std::optional<Event> event = events_->Next();
            if (!event)
                break;
            printer.Print(camera_.Entry().serial, *event);
            awaitsEnd_ = awaitsEnd_ && event->name != s_acquisitionEnd;
        }
        if (images_)
            images_->CheckRunning();
    }

  private:
    const Signal &signal_;
    Camera camera_;
    std::optional<EventChannel> events_;
    std::optional<Discarder> images_;
    bool sendsEnd_ = false;
    bool awaitsEnd_ = false;
};

void DrainAll(std::deque<Source> &sources, Printer &printer)
{
    for (Source &source : sources)
        source.Drain(printer);
    Printer::Flush();
}

/// Prints the events that the end of acquisition brings.
void Finish(std::deque<Source> &sources, const Signal &signal, Printer &printer)
{
    constexpr std::uint32_t patience = 5000; // ms
    for (Source &source : sources)
        source.StopImages();
    const auto isWaiting = [&] {
        return !printer.HasEnough() && std::any_of(sources.begin(), sources.end(), std::mem_fn(&Source::AwaitsEnd));
    };
    do
        DrainAll(sources, printer);
    while (isWaiting() && signal.Wait(patience));
}

std::string Events(std::uint64_t count) { return std::to_string(count) + (count == 1 ? " event" : " events"); }

} // namespace

void Events(const Options &options)
{
    const InterruptBlock block;
    const Session session(options.virtualCameras);
    const std::vector<CameraEntry> cameras = session.Select(options.cameras, Default::TheOnly);
    const Signal signal;
    Printer printer(options, cameras.size() > 1);
    std::deque<Source> sources;
    for (const CameraEntry &entry : cameras)
        sources.emplace_back(entry, options, signal, printer);
    const InterruptWatcher watcher([&] { signal.Set(); });
    if (options.stream)
        for (Source &source : sources)
            source.StartImages();

    const std::uint32_t timeout = options.eventTimeout.value_or(SYS_WAIT_INFINITE);
    for (DrainAll(sources, printer); !printer.HasEnough() && !watcher.Interrupted(); DrainAll(sources, printer))
        if (!signal.Wait(timeout))
            throw Failure(ExitCode::Images,
                          "no event within " + std::to_string(timeout) + " ms, after " + Events(printer.Count()));
    if (printer.HasEnough())
        return;
    Finish(sources, signal, printer);
    // Without a count, Ctrl-C is the regular end.
    if (options.eventCount && !printer.HasEnough())
        throw Failure(ExitCode::Interrupted, "interrupted");
}

} // namespace Orvi::Tool
