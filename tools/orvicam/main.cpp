// orvicam: looks for cameras, reads and sets their features, grabs images into files and shows events.

#include "Failure.h"
#include "Verbs.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <fstream>
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
  7    images or events did not come, or images cannot be written in the wanted format
  8    a file exists already, or cannot be read or written
  130  interrupted with Ctrl-C

Environment: ORVICAMSDK names the SDK folder (default: the folder above this program's, then /opt/OrviCamSDK),
ORVI_VIRTUAL_CAMERAS=N asks for N virtual cameras, ORVI_VIRTUAL_CAMERAS=FILE for those of a description file, as
--virtual does.)";

using Verb = void (*)(const Options &);

/// Adds a verb to the command line that makes it the chosen one.
class Adder {
  public:
    Adder(CLI::App &app, Verb &chosen) : app_(app), chosen_(chosen) {}
    CLI::App *operator()(const char *name, const char *what, Verb run) const
    {
        CLI::App *command = app_.add_subcommand(name, what);
        command->callback([&chosen = chosen_, run] { chosen = run; });
        command->footer("Also --camera NAME, --virtual N, --json; more: orvicam --help");
        return command;
    }

  private:
    CLI::App &app_;
    Verb &chosen_;
};

void AddForce(CLI::App &command, Options &options)
{
    command.add_flag_callback(
        "--force", [&options] { options.ifExists = IfExists::Replace; }, "overwrite existing files");
}

void AddFeatureVerbs(const Adder &add, Options &options)
{
    add("list", "list the attached cameras (the default)", List);
    add("info", "who the cameras are, and the versions in use", Info);

    CLI::App *doctor = add("doctor", "check this machine: permissions, USB, library; and say what to do", Doctor);
    doctor->add_option("--root", options.root)->group(""); // for tests: not shown

    CLI::App *get = add("get", "read features", Get);
    get->add_option("feature", options.features, "names, e.g. Width ExposureTime")
        ->required()
        ->option_text("FEATURE ...");
    get->add_flag("--bare", options.bare, "print values without names");

    CLI::App *set = add("set", "set features and execute commands, in the order given", Set);
    set->add_option("assignment", options.assignments, "what to set, or the name of a command")
        ->required()
        ->option_text("FEATURE=VALUE ...");

    CLI::App *features = add("features", "all features as a tree, with value, unit, limits and access", Features);
    features->add_flag("--all", options.all, "also those for gurus and those that are not meant to be seen");

    CLI::App *values = add("values", "all values that can be read, as lines that set takes", Values);
    values->add_flag("--writable", options.writable, "only what can be set now");

    CLI::App *describe = add("describe", "all that is known of features", Describe);
    describe->add_option("feature", options.features, "names, e.g. ExposureTime PixelFormat")
        ->required()
        ->option_text("FEATURE ...");

    CLI::App *save = add("save", "save the settings of a camera to a file", Save);
    save->add_option("file", options.file, "the file to write")->required()->option_text("FILE");
    AddForce(*save, options);

    CLI::App *load = add("load", "load settings that save has saved", Load);
    load->add_option("file", options.file, "the file to read")->required()->option_text("FILE");
    load->add_flag("--dpc", options.defectivePixels, "also load the table of defective pixels");
}

void AddImageVerbs(const Adder &add, Options &options)
{
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
    AddForce(*grab, options);

    CLI::App *events = add("events", "show events as they arrive, until Ctrl-C", Events);
    events->add_option("event", options.events, "names, e.g. ExposureEnd, or globs like '*'")
        ->required()
        ->option_text("EVENT ...");
    events->add_option("-n,--count", options.eventCount, "end after so many events")
        ->check(CLI::PositiveNumber)
        ->option_text("N");
    events->add_option("-s,--set", options.assignments, "set before images are taken, in the order given")
        ->option_text("FEATURE=VALUE ...");
    events->add_option("--timeout", options.eventTimeout, "time to wait for each event (no limit)")
        ->check(CLI::Range(1u, 3'600'000u))
        ->option_text("MS");
    events->add_flag_callback(
        "--no-stream", [&options] { options.stream = false; }, "take no images meanwhile");
}

void AddVcamVerbs(CLI::App &app, Verb &chosen, Options &options)
{
    CLI::App *vcam = app.add_subcommand("vcam", "virtual cameras");
    vcam->require_subcommand(1);
    CLI::App *check = vcam->add_subcommand("check", "what is wrong with a description file of virtual cameras");
    check->callback([&chosen] { chosen = VcamCheck; });
    check->add_option("file", options.file, "the file, as ORVI_VIRTUAL_CAMERAS names it")
        ->required()
        ->option_text("FILE");
    check->footer("Exit codes: 0 nothing is wrong, 1 mistakes, 8 the file cannot be read. Also --json");
}

/// Of --virtual: what is wrong with the value, else "".
std::string CheckVirtual(const std::string &value)
{
    unsigned count = 0;
    const bool isNumber = value.find_first_not_of("0123456789") == std::string::npos;
    if (isNumber && CLI::detail::lexical_cast(value, count) && count <= 64)
        return "";
    if (!isNumber && std::ifstream(value).good())
        return "";
    return value + " is neither a number of virtual cameras from 0 to 64 nor a file that can be read";
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    Verb verb = List;
    CLI::App app{"Cameras on the command line.", "orvicam"};
    app.footer(s_footer);
    app.fallthrough();
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", "orvicam " ORVI_VERSION);
    app.add_option("-c,--camera", options.cameras, "which camera; may be given several times")
        ->allow_extra_args(false)
        ->option_text("NAME");
    app.add_option("--virtual", options.virtualCameras, "work with N virtual cameras, 0 to 64, or those of a file")
        ->check(CLI::Validator(CheckVirtual, ""))
        ->option_text("N|FILE");
    app.add_flag("--json", options.json, "print JSON");
    AddFeatureVerbs(Adder(app, verb), options);
    AddImageVerbs(Adder(app, verb), options);
    AddVcamVerbs(app, verb, options);
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
