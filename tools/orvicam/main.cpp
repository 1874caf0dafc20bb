// orvicam: looks for cameras, reads and sets their features, and grabs images into files.

#include "Failure.h"
#include "Verbs.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <string>

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
        command->footer("Also --camera NAME, --virtual N, --json; more: orvicam --help");
        return command;
    };
    add("list", "list the attached cameras (the default)", List);
    add("info", "who the cameras are, and the versions in use", Info);

    CLI::App *get = add("get", "read features", Get);
    get->add_option("feature", options.features, "names, e.g. Width ExposureTime")
        ->required()
        ->option_text("FEATURE ...");
    get->add_flag("--bare", options.bare, "print values without names");

    CLI::App *set = add("set", "set features and execute commands, in the order given", Set);
    set->add_option("assignment", options.assignments, "what to set, or the name of a command")
        ->required()
        ->option_text("FEATURE=VALUE ...");

    CLI::App *grab = add("grab", "grab images into files", Grab);
    grab->add_option("-n,--count", options.count, "images of each camera (1)")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1'000'000'000}))
        ->option_text("N");
    grab->add_option("-o,--output", options.output,
                     "folder, or a pattern with {serial}, {index}, {name}, {block} and {n} (this folder)")
        ->option_text("WHERE");
    grab->add_option_function<std::string>(
            "-f,--format", [&options](const std::string &name) { options.format = FormatOfExtension(name); },
            "png, pgm, ppm or raw (the ending of WHERE, else png)")
        ->check(CLI::IsMember({"png", "pgm", "ppm", "raw"}))
        ->option_text("FORMAT");
    grab->add_option("-s,--set", options.assignments, "set before grabbing, in the order given")
        ->option_text("FEATURE=VALUE ...");
    grab->add_option("--timeout", options.timeout, "time to wait for each image (5000)")
        ->check(CLI::Range(1u, 3'600'000u))
        ->option_text("MS");
    grab->add_flag_callback(
        "--force", [&options] { options.ifExists = IfExists::Replace; }, "overwrite existing files");
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    void (*verb)(const Options &) = List;
    CLI::App app{"Cameras on the command line.", "orvicam"};
    app.footer(s_footer);
    app.fallthrough();
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "orvicam " ORVI_VERSION);
    app.add_option("-c,--camera", options.cameras, "which camera; may be given several times")
        ->allow_extra_args(false)
        ->option_text("NAME");
    app.add_option("--virtual", options.virtualCameras, "work with N virtual cameras, 0 to 64")
        ->check(CLI::Range(0u, 64u))
        ->option_text("N");
    app.add_flag("--json", options.json, "print JSON");
    AddVerbs(app, options, verb);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) // --help, --version
            return app.exit(error);
        std::cerr << "orvicam: " << error.what() << "; see orvicam --help\n";
        return static_cast<int>(ExitCode::Usage);
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
