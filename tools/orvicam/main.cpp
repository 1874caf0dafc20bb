// orvicam: looks for cameras, reads and sets their features, and grabs images into files.

#include "Failure.h"
#include "Verbs.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <map>

using namespace Orvi::Tool;

namespace {

constexpr char s_footer[] = R"(Cameras are named by serial number, user-defined name, index or a glob ('VC*').

Exit codes:
  0    done
  1    failed for another reason
  2    the command line was not understood
  3    no transport library
  4    no such camera, or several where one must be named
  5    no such feature, or the feature refused
  6    the camera failed, was unplugged or is in use
  7    images did not come, or cannot be written in the wanted format
  8    a file exists already or cannot be written
  130  interrupted with Ctrl-C

Environment: ORVICAMSDK names the SDK folder (default: the folder above this program's, then /opt/OrviCamSDK),
ORVI_VIRTUAL_CAMERAS=N asks for N virtual cameras as --virtual N does.)";

void AddVerbs(CLI::App &app, Options &options, void (*&verb)(const Options &))
{
    const auto add = [&](const char *name, const char *what, void (*run)(const Options &)) {
        CLI::App *command = app.add_subcommand(name, what);
        command->callback([&verb, run] { verb = run; });
        return command;
    };
    add("list", "list the attached cameras (the default)", List);
    add("info", "who the cameras are, and the versions in use", Info);

    CLI::App *get = add("get", "read features", Get);
    get->add_option("feature", options.features, "names, e.g. Width ExposureTime")->required();
    get->add_flag("--bare", options.bare, "print values without names");

    CLI::App *set = add("set", "set features and execute commands, in the order given", Set);
    set->add_option("assignment", options.assignments, "Name=value, or the name of a command")->required();

    CLI::App *grab = add("grab", "grab images into files", Grab);
    grab->add_option("-n,--count", options.count, "images of each camera")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1'000'000'000}))
        ->capture_default_str();
    grab->add_option("-o,--output", options.output,
                     "folder, or a pattern with {serial}, {index}, {name}, {block} and {n}")
        ->capture_default_str();
    const std::map<std::string, FileFormat> formats = {
        {"png", FileFormat::Png}, {"pgm", FileFormat::Pgm}, {"ppm", FileFormat::Ppm}, {"raw", FileFormat::Raw}};
    grab->add_option("-f,--format", options.format, "png, pgm, ppm or raw (default: the pattern's ending, else png)")
        ->transform(CLI::CheckedTransformer(formats))
        ->option_text("FORMAT");
    grab->add_option("-s,--set", options.assignments, "Name=value ... set before grabbing, in the order given");
    grab->add_option("--timeout", options.timeout, "ms to wait for each image")
        ->check(CLI::Range(1u, 3'600'000u))
        ->capture_default_str();
    grab->add_flag_callback(
        "--force", [&options] { options.ifExists = IfExists::Replace; }, "overwrite existing files");
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    void (*verb)(const Options &) = List;
    CLI::App app{"Cameras on the command line."};
    app.footer(s_footer);
    app.fallthrough();
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "orvicam " ORVI_VERSION);
    app.add_option("-c,--camera", options.cameras, "which cameras; may be given several times")
        ->allow_extra_args(false);
    app.add_option("--virtual", options.virtualCameras, "work with this many virtual cameras")
        ->check(CLI::Range(0u, 64u));
    app.add_flag("--json", options.json, "print JSON");
    AddVerbs(app, options, verb);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : static_cast<int>(ExitCode::Usage);
    }
    try {
        verb(options);
        return static_cast<int>(ExitCode::Success);
    } catch (const Failure &failure) {
        std::cerr << "orvicam: " << failure.what() << '\n';
        return static_cast<int>(failure.Code());
    } catch (const std::exception &failure) {
        std::cerr << "orvicam: " << failure.what() << '\n';
        return static_cast<int>(ExitCode::Failed);
    }
}
