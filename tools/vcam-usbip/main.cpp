// orvi-vcam-usbip: shows virtual cameras to every program of this machine, by way of the kernel.

#include "Attachment.h"
#include "Server.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <pthread.h>
#include <unistd.h>

using namespace Orvi;
using namespace Orvi::UsbIp;

namespace {

constexpr char s_footer[] = R"(Runs until Ctrl-C, which pulls the cameras out.

On your own machine:
  sudo modprobe vhci_hcd
  sudo orvi-vcam-usbip --attach

Over USB/IP, for another client such as a virtual machine or usbip(8):
  orvi-vcam-usbip --serve
  sudo usbip attach -r 127.0.0.1 -b 1-1

Exit codes:
  0    done
  1    failed for another reason
  2    the command line was not understood
  3    the kernel has no virtual USB controller
  4    not permitted

Environment: ORVI_VIRTUAL_CAMERAS is what --cameras and --config set.)";

enum class ExitCode : int { Success = 0, Failed = 1, Usage = 2, NoController = 3, NotPermitted = 4 };

struct Options {
    bool attach = false, serve = false;
    unsigned cameras = 0;
    std::string config;
    std::uint16_t port = 3240;
};

using Cameras = std::vector<std::shared_ptr<Vcam::VirtualCamera>>;

sigset_t EndSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

void AwaitEndSignal()
{
    const sigset_t signals = EndSignals();
    int number = 0;
    sigwait(&signals, &number);
}

Cameras MakeCameras(const Options &options)
{
    if (options.cameras != 0)
        setenv("ORVI_VIRTUAL_CAMERAS", std::to_string(options.cameras).c_str(), 1);
    else if (!options.config.empty())
        setenv("ORVI_VIRTUAL_CAMERAS", options.config.c_str(), 1);
    else
        setenv("ORVI_VIRTUAL_CAMERAS", "1", 0);
    Cameras cameras = Vcam::VirtualBench::Instance().Cameras();
    if (cameras.empty())
        throw std::runtime_error("there are no cameras in ORVI_VIRTUAL_CAMERAS=" +
                                 std::string(std::getenv("ORVI_VIRTUAL_CAMERAS")) + "; see --help");
    return cameras;
}

ExitCode Attach(const Cameras &cameras)
{
    const Vhci vhci;
    std::atomic<std::size_t> left = cameras.size();
    // The last camera that ends for good ends the program.
    const auto onEnd = [&left] {
        if (--left == 0)
            kill(getpid(), SIGTERM);
    };
    std::list<Attachment> attachments;
    for (const auto &camera : cameras)
        attachments.emplace_back(camera, 0x10000u + static_cast<unsigned>(attachments.size()) + 1, vhci, onEnd);
    AwaitEndSignal();
    const bool hasFailed = std::ranges::any_of(attachments, &Attachment::HasFailed);
    return hasFailed ? ExitCode::Failed : ExitCode::Success;
}

ExitCode Serve(const Cameras &cameras, std::uint16_t port)
{
    const Server server(cameras, port);
    for (unsigned i = 0; i < cameras.size(); ++i)
        Say(cameras[i]->Identity(),
            "offered as " + BusIdOf(i + 1) + " on 127.0.0.1 port " + std::to_string(server.Port()));
    AwaitEndSignal();
    return ExitCode::Success;
}

ExitCode Run(const Options &options)
{
    // Held back before any thread is made, so that all threads leave them to AwaitEndSignal().
    const sigset_t signals = EndSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    try {
        const Cameras cameras = MakeCameras(options);
        return options.attach ? Attach(cameras) : Serve(cameras, options.port);
    } catch (const NoController &failure) {
        Complain(failure.what());
        return ExitCode::NoController;
    } catch (const NotPermitted &failure) {
        Complain(failure.what());
        return ExitCode::NotPermitted;
    } catch (const std::exception &failure) {
        Complain(failure.what());
        return ExitCode::Failed;
    }
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    CLI::App app{"Plugs virtual USB3 Vision cameras into this machine's kernel.", "orvi-vcam-usbip"};
    app.footer(s_footer);
    app.set_version_flag("--version", "orvi-vcam-usbip " ORVI_VERSION);
    auto *attach = app.add_flag("--attach", options.attach, "plug the cameras into this machine's kernel (root only)");
    app.add_flag("--serve", options.serve, "offer them to USB/IP clients on 127.0.0.1")->excludes(attach);
    auto *cameras = app.add_option("--cameras", options.cameras, "how many cameras, 1 to 64 (1)")
                        ->check(CLI::Range(1u, 64u))
                        ->option_text("N");
    app.add_option("--config", options.config, "file that describes the cameras")
        ->check(CLI::ExistingFile)
        ->excludes(cameras)
        ->option_text("FILE");
    app.add_option("--port", options.port, "TCP port for --serve, 0 for any (3240)")->option_text("PORT");
    try {
        app.parse(argc, argv);
        if (!options.attach && !options.serve)
            throw CLI::RequiredError("--attach or --serve");
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) // --help, --version
            return app.exit(error);
        std::cerr << "orvi-vcam-usbip: " << error.what() << "; see orvi-vcam-usbip --help\n";
        return static_cast<int>(ExitCode::Usage);
    }
    return static_cast<int>(Run(options));
}
