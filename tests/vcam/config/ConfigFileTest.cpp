#include "vcam/config/ConfigFile.h"

#include "ConfigFiles.h"
#include "vcam/config/Check.h"

namespace Orvi::Vcam::Test {
namespace {

ConfigFile Parse(const std::string &text) { return ReadConfig(text, "/cameras", Disk::Untouched); }

std::vector<std::string> MessagesOf(const ConfigFile &file)
{
    std::vector<std::string> messages;
    for (const Mistake &mistake : file.mistakes) {
        messages.push_back(MistakeText("f", mistake));
    }
    return messages;
}

struct Row {
    const char *text;
    std::vector<std::string> messages;
};

constexpr char s_cameraKeys[] =
    "It takes count, vendor, model, family, device_version, manufacturer_info, serial, user_name, sensor_width, "
    "sensor_height, pixel_formats, frame_rate_limit, link_speed, speed_register, seed, xml, control_registers, image, "
    "register, fault";
constexpr char s_imageKeys[] =
    "It takes source, path, command, timeout_ms, order, width, height, pixel_format, offset, "
    "place, subject, block_id, defects";
constexpr char s_faultKeys[] =
    "It takes on, action, at, every, from, probability, times, address, value, mask, amount, "
    "target";

constexpr char s_below[] = "; what a camera has stands below its [[camera]]: keys, and the tables [camera.image], "
                           "[[camera.register]] and [[camera.fault]]";

std::string With(const char *start, const char *rest) { return std::string(start).append(rest); }

const Row s_rows[] = {
    // the file
    {"", {"f: there is no [[camera]]"}},
    {"[[camera]", {"f:1:10: no TOML: Error while parsing table header: encountered end-of-file"}},
    {"camera = 1", {"f:1:10: camera takes tables, each under its own [[camera]], not an integer"}},
    {"[camera]", {"f:1:1: camera takes tables, each under its own [[camera]], not a table"}},
    {"camera = [1]", {"f:1:10: camera takes tables, each under its own [[camera]], not something else in the array"}},
    {"[[camera]]\n[[camara]]",
     {With("f:2:3: there is no key 'camara' in the file; did you mean 'camera'? It takes seed, camera", s_below)}},
    {"[[camera]]\n[[fault]]\non = 'frame'",
     {With("f:2:3: there is no key 'fault' in the file. It takes seed, camera", s_below)}},
    {"camera = []", {"f: there is no [[camera]]"}},
    {"[[camera]]\n[camera.fault]\non = 'frame'",
     {"f:2:1: fault takes tables, each under its own [[camera.fault]], not a table"}},
    {"[[camera]]\nserial = A1",
     {"f:2:10: no TOML: Error while parsing value: could not determine value type; a text is written in quotes"}},
    {"seed = -1\n[[camera]]", {"f:1:8: seed takes 0 to 9223372036854775807, not -1"}},
    {"[[camera]]\ncount = 65", {"f:2:9: count takes 1 to 64, not 65"}},
    {"[[camera]]\ncount = 60\n[[camera]]\ncount = 5", {"f:3:1: there are more than 64 cameras"}},
    // names
    {"[[camera]]\nvendr = ''",
     {With("f:2:1: there is no key 'vendr' in [[camera]]; did you mean 'vendor'? ", s_cameraKeys)}},
    {"[[camera]]\nSerial-Number = ''", {With("f:2:1: there is no key 'Serial-Number' in [[camera]]. ", s_cameraKeys)}},
    {"[[camera]]\nlink-speed = ''",
     {With("f:2:1: there is no key 'link-speed' in [[camera]]; did you mean 'link_speed'? ", s_cameraKeys)}},
    {"[[camera]]\nvendor = 1", {"f:2:10: vendor takes a text, not an integer: write it in quotes"}},
    {"[[camera]]\nmodel = [\"a\"]", {"f:2:9: model takes a text, not an array: write it in quotes"}},
    {"[[camera]]\nfamily = 1979-05-27", {"f:2:10: family takes a text, not a time: write it in quotes"}},
    {"[[camera]]\nuser_name = '0123456789012345678901234567890123456789012345678901234567890123'",
     {"f:2:13: user_name takes 63 bytes at most, not 64"}},
    {"[[camera]]\nmodel = \"a\\tb\"", {"f:2:9: model takes no control characters"}},
    {"[[camera]]\nserial = 12345", {"f:2:10: serial takes a text, not an integer: write it in quotes"}},
    {"[[camera]]\nserial = ''", {"f:2:10: serial is empty: it is what the camera is known by"}},
    {"[[camera]]\nserial = 'A'\n[[camera]]\nserial = 'A'", {"f:4:10: serial A is taken by the camera at 2:10"}},
    {"[[camera]]\n[[camera]]\nserial = 'VC000001'", {"f:3:10: serial VC000001 is taken by the camera at 1:1"}},
    {"[[camera]]\ncount = 2\nserial = 'A'",
     {"f:3:10: serial must end in digits that can be counted up, as count is more than 1"}},
    // sensor, formats, rate, speed
    {"[[camera]]\nsensor_width = 60", {"f:2:16: sensor_width takes 64 to 16384, not 60"}},
    {"[[camera]]\nsensor_width = 66", {"f:2:16: sensor_width takes multiples of 4, not 66"}},
    {"[[camera]]\nsensor_height = 17", {"f:2:17: sensor_height takes multiples of 2, not 17"}},
    {"[[camera]]\nsensor_height = 20000", {"f:2:17: sensor_height takes 16 to 16384, not 20000"}},
    {"[[camera]]\nframe_rate_limit = 0.01", {"f:2:20: frame_rate_limit takes 0.1 to 1000, not 0.01"}},
    {"[[camera]]\nframe_rate_limit = nan", {"f:2:20: frame_rate_limit takes 0.1 to 1000, not nan"}},
    {"[[camera]]\nframe_rate_limit = '1'", {"f:2:20: frame_rate_limit takes a real number, not a text"}},
    {"[[camera]]\nlink_speed = 'supr'",
     {"f:2:14: link_speed does not know 'supr'; did you mean 'super'? It takes low, full, high, super, super+"}},
    {"[[camera]]\nspeed_register = '5Gb'",
     {"f:2:18: speed_register does not know '5Gb'. It takes low, full, high, super, super+"}},
    {"[[camera]]\npixel_formats = ['Mono8', 1, 'Mono8']",
     {"f:2:27: pixel_formats takes names, not an integer among them", "f:2:30: pixel_formats has 'Mono8' twice"}},
    {"[[camera]]\ncontrol_registers = 'no'", {"f:2:21: control_registers takes true or false, not a text"}},
    {"[[camera]]\nseed = 1.5", {"f:2:8: seed takes an integer, not a real number"}},
    {"[[camera]]\nxml = 1", {"f:2:7: xml takes a text, not an integer: write it in quotes"}},
    // image
    {"[[camera]]\nimage = 1", {"f:2:9: image takes a table, not an integer"}},
    {"[[camera]]\n[camera.image]\nsorce = ''",
     {With("f:3:1: there is no key 'sorce' in [camera.image]; did you mean 'source'? ", s_imageKeys)}},
    {"[[camera]]\n[camera.image]\nsource = 'folder'",
     {"f:3:10: source does not know 'folder'. It takes pattern, images, raw, command"}},
    {"[[camera]]\n[camera.image]\nsource = 'images'", {"f:2:1: path is missing: the source 'images' needs it"}},
    {"[[camera]]\n[camera.image]\nsource = 'raw'\npath = 'a'\nwidth = 4\nheight = 2",
     {"f:2:1: pixel_format is missing: the source 'raw' needs it"}},
    {"[[camera]]\n[camera.image]\npath = 'a'",
     {"f:3:8: path means nothing to the source 'pattern', only to images, raw"}},
    {"[[camera]]\n[camera.image]\nsource = 'command'\ncommand = 'x'\ntimeout_ms = 0",
     {"f:5:14: timeout_ms takes 1 to 60000, not 0"}},
    {"[[camera]]\n[camera.image]\nplace = 'centre'",
     {"f:3:9: place does not know 'centre'; did you mean 'center'? It takes tile, center"}},
    {"[[camera]]\n[camera.image]\norder = 'random'\nsubject = 1",
     {"f:4:11: subject takes true or false, not an integer"}},
    // registers
    {"[[camera]]\n[[camera.register]]\nadress = 0",
     {"f:2:1: address is missing in [[camera.register]]", "f:2:1: value is missing in [[camera.register]]",
      "f:3:1: there is no key 'adress' in [[camera.register]]; did you mean 'address'? It takes address, value"}},
    {"[[camera]]\n[[camera.register]]\naddress = 2\nvalue = 0x100000000",
     {"f:3:11: address takes multiples of 4, not 2", "f:4:9: value takes -2147483648 to 4294967295, not 4294967296"}},
    // faults
    {"[[camera]]\n[[camera.fault]]\naction = 'lose-frame'",
     {"f:2:1: on is missing in [[camera.fault]]; it takes frame, command, write, time"}},
    {"[[camera]]\n[[camera.fault]]\non = 'frames'\naction = 'lose-frame'",
     {"f:3:6: on does not know 'frames'; did you mean 'frame'? It takes frame, command, write, time"}},
    {"[[camera]]\n[[camera.fault]]\non = 'frame'\naction = 'lose-frame'\nevry = 3",
     {With("f:5:1: there is no key 'evry' in [[camera.fault]]; did you mean 'every'? ", s_faultKeys)}},
    {"[[camera]]\n[[camera.fault]]\non = 'frame'\naction = 'lose-frame'\nevery = 0",
     {"f:5:9: every takes 1 to 9223372036854775807, not 0"}},
    {"[[camera]]\n[[camera.fault]]\non = 'frame'\naction = 'lose-frame'\nprobability = 2",
     {"f:5:15: probability takes 0 to 1, not 2"}},
    {"[[camera]]\n[[camera.fault]]\non = 'time'\naction = 'unplug'",
     {"f:2:1: at is missing: a time needs 'at' or 'every', in ms"}},
    {"[[camera]]\n[[camera.fault]]\non = 'frame'\naction = 'lose-frame'\naddress = 4",
     {"f:5:11: address belongs to commands and writes alone"}},
    {"[[camera]]\n[[camera.fault]]\non = 'frame'\nat = 3\nevery = 5\nfrom = 1\naction = 'lose-frame'",
     {"f:5:9: every means nothing beside 'at', which is one number",
      "f:6:8: from means nothing beside 'at', which is one number"}},
    {"[[camera]]\n[[camera.fault]]\non = 'frame'\nvalue = 3\nmask = 5\naction = 'lose-frame'",
     {"f:4:9: value belongs to writes alone", "f:5:8: mask belongs to writes alone"}},
    {"[[camera]]\n[[camera.fault]]\non = 'frame'\namount = 3\naction = 'poke'",
     {"f:2:1: target is missing: poke needs the register's address"}},
    {"[[camera]]\n[[camera.fault]]\non = 'frame'\naction = 'lose-frame'\ntarget = 4",
     {"f:5:10: target belongs to poke alone"}},
};

TEST(ConfigFile, EveryMistakeIsToldWithItsPlaceAndWhatIsAllowed)
{
    for (const Row &row : s_rows) {
        EXPECT_EQ(MessagesOf(Parse(row.text)), row.messages) << row.text;
    }
}

TEST(ConfigFile, AllMistakesAreToldInTheOrderOfTheFile)
{
    const auto messages = MessagesOf(Parse("[[camera]]\nvendor = 1\nmodel = 2\n[[camera]]\nbad = 3\ncount = 0\n"));
    ASSERT_EQ(messages.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        constexpr const char *starts[] = {"f:2:10: vendor", "f:3:9: model", "f:5:1: there", "f:6:9: count"};
        EXPECT_TRUE(messages[i].starts_with(starts[i])) << messages[i];
    }
}

TEST(ConfigFile, UnknownNamesListWhatIsKnown)
{
    const auto formats = MessagesOf(Parse("[[camera]]\npixel_formats = ['Mono9']"));
    ASSERT_EQ(formats.size(), 1u);
    EXPECT_TRUE(formats[0].starts_with("f:2:18: pixel_formats does not know 'Mono9'; did you mean 'Mono8'? It takes "
                                       "Mono8, Mono10,"))
        << formats[0];
    const auto actions = MessagesOf(Parse("[[camera]]\n[[camera.fault]]\non = 'frame'\naction = 'lose_frame'"));
    ASSERT_EQ(actions.size(), 1u);
    EXPECT_TRUE(actions[0].starts_with("f:4:10: action does not know 'lose_frame'; did you mean 'lose-frame'? It takes "
                                       "lose-frame, truncate,"))
        << actions[0];
}

TEST(ConfigFile, ListsOfFormatsNameEachOnce)
{
    const auto messages = MessagesOf(Parse("[[camera]]\npixel_formats = []"));
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].find("RGB8"), messages[0].rfind("RGB8")) << messages[0];
}

TEST(ConfigFile, ACameraThatSaysNothingIsTheUsualOne)
{
    const ConfigFile file = Parse("[[camera]]\n[[camera]]");
    ASSERT_TRUE(file.mistakes.empty());
    ASSERT_EQ(file.cameras.size(), 2u);
    const CameraConfig usual;
    EXPECT_EQ(file.cameras[0].serial, "VC000001");
    EXPECT_EQ(file.cameras[1].serial, "VC000002");
    EXPECT_EQ(file.cameras[1].vendor, usual.vendor);
    EXPECT_EQ(file.cameras[1].sensorWidth, usual.sensorWidth);
    EXPECT_EQ(file.cameras[1].seed, 0u);
    EXPECT_TRUE(file.cameras[1].pixelFormats.empty());
    EXPECT_EQ(file.cameras[1].image.kind, ImageSource::Kind::Pattern);
    EXPECT_TRUE(file.cameras[1].image.subject && file.cameras[1].image.blockId && file.cameras[1].image.defects);
}

TEST(ConfigFile, SerialNumbersAndSeedsCountUp)
{
    const ConfigFile file = Parse("seed = 10\n[[camera]]\nserial = 'A9'\ncount = 3\n[[camera]]\nseed = 3\ncount = 2");
    ASSERT_EQ(MessagesOf(file), std::vector<std::string>());
    const std::pair<const char *, std::uint64_t> expected[] = {
        {"A9", 10}, {"A10", 11}, {"A11", 12}, {"VC000004", 3}, {"VC000005", 4}};
    ASSERT_EQ(file.cameras.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(file.cameras[i].serial, expected[i].first);
        EXPECT_EQ(file.cameras[i].seed, expected[i].second);
        EXPECT_EQ(file.cameras[i].faults.seed, expected[i].second);
    }
}

TEST(ConfigFile, FaultsKeepAllThatIsTold)
{
    const ConfigFile file = Parse(R"([[camera]]
[[camera.fault]]
on = "write"
action = "poke"
from = 2
every = 3
times = 4
probability = 0.5
address = 0x2070DC
value = 8
mask = 0xF
target = 0x230000
amount = 1000
[[camera.fault]]
on = "frame"
action = "trailer-status"
at = 5
amount = 0xA100
)");
    ASSERT_EQ(MessagesOf(file), std::vector<std::string>());
    ASSERT_EQ(file.cameras.at(0).faults.rules.size(), 2u);
    FaultRule poke{.moment = FaultMoment::Write, .every = 3, .from = 2, .probability = 0.5, .times = 4};
    poke.address = 0x2070DC;
    poke.value = 8;
    poke.mask = 0xF;
    poke.action = FaultAction::Poke;
    poke.amount = 1000;
    poke.target = 0x230000;
    EXPECT_EQ(file.cameras[0].faults.rules[0], poke);
    FaultRule trailer{.at = 5};
    trailer.action = FaultAction::TrailerStatus;
    trailer.amount = 0xA100;
    EXPECT_EQ(file.cameras[0].faults.rules[1], trailer);
}

TEST(ConfigFile, AFileThatCannotBeReadIsTold)
{
    const ConfigFile missing = LoadConfigFile("/no/such/file.toml");
    EXPECT_TRUE(missing.isUnreadable);
    EXPECT_EQ(MessagesOf(missing), std::vector<std::string>{"f: cannot be read: No such file or directory"});
    EXPECT_EQ(MessagesOf(LoadConfigFile("/")), std::vector<std::string>{"f: cannot be read: it is a folder"});
}

using ConfigFileOnDisk = FilesTest;

TEST_F(ConfigFileOnDisk, WhatItNamesIsLookedAt)
{
    Write("no.xml", "<a>\n <b>\n</a>");
    Write("other.xml", "<html/>");
    Write("text.png", "no image");
    Write("short.raw", "1234567");
    Write("empty/readme.txt", "");
    const std::string at = Folder().string() + '/';
    const std::string image = "[[camera]]\n[camera.image]\nsource = 'images'\npath = ";
    const std::string raw =
        "[[camera]]\n[camera.image]\nsource = 'raw'\nwidth = 2\nheight = 2\npixel_format = 'Mono16'\npath = ";
    const std::pair<std::string, std::string> rows[] = {
        {"[[camera]]\nxml = 'x.xml'",
         "f:2:7: xml names " + at + "x.xml, which cannot be read: No such file or directory"},
        {"[[camera]]\nxml = 'no.xml'", "f:2:7: xml names no XML: " + at + "no.xml:3:3: Start-end tags mismatch"},
        {"[[camera]]\nxml = 'other.xml'", "f:2:7: xml names no GenICam description: " + at + "other.xml holds <html>"},
        {image + "'gone'", "f:4:8: path names " + at + "gone, which does not exist"},
        {image + "'empty'",
         "f:4:8: path names the folder " + at + "empty, which holds no .png, .tif, .tiff, .pgm, .ppm or .pnm"},
        {image + "'text.png'",
         "f:4:8: path names " + at + "text.png, which cannot be read, or is neither PNG nor TIFF nor PNM"},
        {raw + "'gone.raw'", "f:7:8: path names " + at + "gone.raw, which cannot be read: No such file or directory"},
        {raw + "'short.raw'", "f:7:8: path names " + at + "short.raw of 7 bytes; the image needs 8"},
    };
    for (const auto &[text, message] : rows) {
        EXPECT_EQ(MessagesOf(LoadConfigFile(Write("cameras.toml", text))), std::vector<std::string>{message});
    }
}

TEST_F(ConfigFileOnDisk, ACheckDecodesImagesToTheirEnds)
{
    Write("cut.pgm", "P5 4 4 255\n12345678");
    const std::string path = Write("cameras.toml", "[[camera]]\n[camera.image]\nsource = 'images'\npath = 'cut.pgm'");
    EXPECT_TRUE(LoadConfigFile(path).mistakes.empty());
    EXPECT_EQ(MessagesOf(LoadConfigFile(path, Disk::ReadAll)),
              std::vector<std::string>{"f:4:8: path names " + (Folder() / "cut.pgm").string() +
                                       ", which is a broken PNM: it ends too early"});
}

TEST_F(ConfigFileOnDisk, ACheckLoadsTheNodesOfADescription)
{
    Write("nodes.xml", "<RegisterDescription xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n"
                       "<Integer Name=\"Width\"><pValue>Gone</pValue></Integer>\n</RegisterDescription>");
    const std::string path = Write("cameras.toml", "[[camera]]\nxml = 'nodes.xml'");
    EXPECT_TRUE(LoadConfigFile(path).mistakes.empty());
    const auto messages = MessagesOf(LoadConfigFile(path, Disk::ReadAll));
    ASSERT_EQ(messages.size(), 1u);
    const std::string start = "f:2:7: xml names " + (Folder() / "nodes.xml").string() + ", which cannot be used: ";
    EXPECT_TRUE(messages[0].starts_with(start)) << messages[0];
    for (const char *part : {"Width", "Gone"}) {
        EXPECT_NE(messages[0].find(part), std::string::npos) << messages[0];
    }
}

TEST_F(ConfigFileOnDisk, ACheckTellsWhatCamerasWillBe)
{
    Write("other.xml", "<RegisterDescription VendorName=\"Lathe\" ModelName=\"X1\"><Category Name=\"Root\"/>"
                       "</RegisterDescription>");
    const CheckedFile file = CheckConfigFile(Write("cameras.toml", "[[camera]]\nxml = 'other.xml'\n[[camera]]\n"
                                                                   "pixel_formats = ['Mono8', 'RGB8']"));
    ASSERT_EQ(file.cameras.size(), 2u);
    EXPECT_EQ(file.cameras[0].vendor + ' ' + file.cameras[0].model, "Lathe X1");
    EXPECT_EQ(file.cameras[0].pixelFormats, "its description's");
    EXPECT_EQ(file.cameras[0].description, "another model's");
    EXPECT_EQ(file.cameras[1].model, "Virtual Camera");
    EXPECT_EQ(file.cameras[1].pixelFormats, "Mono8, RGB8");
    EXPECT_EQ(file.cameras[1].description, "its own");
}

TEST_F(ConfigFileOnDisk, TheSampleIsRightAndShowsEveryKey)
{
    const std::string sample = ReadTextOf(ORVI_SAMPLE);
    EXPECT_EQ(MessagesOf(ReadConfig(sample, Folder(), Disk::ReadAll)), std::vector<std::string>());

    // With the keys that need files of one's own.
    Write("images/a.pgm", "P5 1 1 255\n1");
    Write("frames.raw", std::string(640 * 480, 'x'));
    Write("other-camera.xml", "<RegisterDescription><Category Name=\"Root\"/></RegisterDescription>");
    std::string whole;
    for (const std::string &line : LinesOf(sample)) {
        const bool isKey = line.size() > 1 && line[0] == '#' && line[1] != ' ';
        whole += (isKey ? line.substr(1) : line) + '\n';
    }
    const ConfigFile file = ReadConfig(whole, Folder(), Disk::ReadAll);
    EXPECT_EQ(MessagesOf(file), std::vector<std::string>());
    EXPECT_GT(file.cameras.size(), Parse(sample).cameras.size());
    for (const char *keys : {s_cameraKeys, s_imageKeys, s_faultKeys}) {
        std::istringstream names(std::string(keys).substr(std::string("It takes ").size()));
        for (std::string name; std::getline(names >> std::ws, name, ',');) {
            const bool isShown = whole.find("\n" + name + " = ") != std::string::npos ||
                                 whole.find("camera." + name + "]") != std::string::npos;
            EXPECT_TRUE(isShown) << name;
        }
    }
}

} // namespace
} // namespace Orvi::Vcam::Test
