// Pictures of one's own in front of the sensor: what the camera makes of them.

#include "../HostSide.h"
#include "ConfigFiles.h"
#include "ImageWriters.h"
#include "vcam/Complaint.h"
#include "vcam/config/ConfigFile.h"
#include "vcam/image/ImageReader.h"

namespace Orvi::Vcam::Test {
namespace {

constexpr std::uint32_t s_width = 64, s_height = 16;
constexpr std::uint32_t s_mono8 = 0x01080001, s_mono12 = 0x01100005, s_rgb8 = 0x02180014, s_bayerRg8 = 0x01080009;

/// A camera of a description file and its images, one after the other.
class Source {
  public:
    explicit Source(const CameraConfig &config) : camera_(VirtualCamera::Create(config))
    {
        control_.Write(Reg::Unthrottled, 1);
    }
    Control &Registers() { return control_; }
    void Begin()
    {
        stream_.Configure(stream_.SimpleCut());
        stream_.Enable();
        stream_.Start();
    }
    std::vector<std::byte> Next()
    {
        stream_.Post();
        return stream_.Take().image;
    }
    std::vector<std::byte> Only() { return Stream::One(*camera_, control_).image; }

  private:
    std::shared_ptr<VirtualCamera> camera_;
    Control control_{*camera_};
    Stream stream_{*camera_, control_};
};

class ImageSourceTest : public FilesTest {
  protected:
    /// A sensor of 64 x 16 with the keys of [camera.image].
    CameraConfig Config(const std::string &keys, const std::string &more = "")
    {
        const std::string text =
            "[[camera]]\nsensor_width = 64\nsensor_height = 16\n" + more + "\n[camera.image]\n" + keys;
        const ConfigFile file = LoadConfigFile(Write("cameras.toml", text));
        EXPECT_TRUE(file.mistakes.empty()) << MistakeText("file", file.mistakes.at(0));
        return file.cameras.at(0);
    }
    std::string At(const std::string &name) const { return Folder() / name; }
    void MakeFolder() const { std::filesystem::create_directories(Folder() / "images"); }
};

std::vector<std::byte> BytesOf(const Samples &samples)
{
    std::vector<std::byte> bytes;
    for (const std::uint16_t value : samples.values) {
        bytes.push_back(static_cast<std::byte>(samples.bits == 16 ? value >> 8 : value));
    }
    return bytes;
}

TEST_F(ImageSourceTest, ImagesOfAFolderComeInTheOrderOfTheirNamesBitExact)
{
    MakeFolder();
    std::vector<Samples> images;
    for (std::uint32_t i = 0; i < 4; ++i) {
        images.push_back(MakeSamples(s_width, s_height, 1, i == 3 ? 16 : 8, i));
    }
    WriteTiff(At("images/c.TIF"), images[2]);
    WritePng(At("images/b.png"), images[1]);
    WritePng(At("images/d.png"), images[3]);
    Write("images/a.pgm", BinaryPnm(images[0]));
    Write("images/b.txt", "no image");
    Source source(Config("source = 'images'\npath = 'images'"));
    source.Begin();
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(source.Next(), BytesOf(images[i % 4])) << i;
    }
}

TEST_F(ImageSourceTest, ColoursComeBitExactAndAsBayerAndMono)
{
    const Samples samples = MakeSamples(s_width, s_height, 3, 8);
    WritePng(At("a.png"), samples);
    Source source(Config("source = 'images'\npath = 'a.png'"));
    source.Registers().Write(Reg::PixelFormat, s_rgb8);
    EXPECT_EQ(source.Only(), BytesOf(samples));
    source.Registers().Write(Reg::PixelFormat, s_bayerRg8);
    const std::vector<std::byte> bayer = source.Only();
    source.Registers().Write(Reg::PixelFormat, s_mono8);
    const std::vector<std::byte> mono = source.Only();
    for (std::uint32_t y = 0; y < s_height; ++y) {
        for (std::uint32_t x = 0; x < s_width; ++x) {
            const std::size_t at = std::size_t{y} * s_width + x;
            const std::uint16_t *pixel = &samples.values[3 * at];
            const std::uint32_t colour = x % 2 == 0 && y % 2 == 0 ? 0 : x % 2 == 1 && y % 2 == 1 ? 2 : 1;
            ASSERT_EQ(std::to_integer<int>(bayer[at]), pixel[colour]);
            ASSERT_NEAR(std::to_integer<int>(mono[at]), (pixel[0] + 2 * pixel[1] + pixel[2]) / 4, 1);
        }
    }
}

TEST_F(ImageSourceTest, SixteenBitsComeBitExact)
{
    constexpr std::uint32_t mono16 = 0x01100007;
    const Samples samples = MakeSamples(s_width, s_height, 1, 16);
    std::string raw;
    for (const std::uint16_t value : samples.values) {
        raw.append(1, static_cast<char>(value & 0xFF)).append(1, static_cast<char>(value >> 8));
    }
    WritePng(At("a.png"), samples);
    WriteTiff(At("a.tif"), samples);
    Write("a.pgm", BinaryPnm(samples));
    Write("a.raw", raw);
    for (const std::string source :
         {"source = 'images'\npath = 'a.png'", "source = 'images'\npath = 'a.tif'", "source = 'images'\npath = 'a.pgm'",
          "source = 'raw'\npath = 'a.raw'\nwidth = 64\nheight = 16\n"
          "pixel_format = 'Mono16'"}) {
        Source camera(Config(source));
        for (const auto &[format, bits] : {std::pair(mono16, 16), std::pair(s_mono12, 12)}) {
            camera.Registers().Write(Reg::PixelFormat, format);
            const std::vector<std::byte> image = camera.Only();
            for (std::size_t i = 0; i < samples.values.size(); ++i) {
                ASSERT_EQ(LoadLe<std::uint16_t>(&image[2 * i]), samples.values[i] >> (16 - bits)) << source;
            }
        }
    }
}

TEST_F(ImageSourceTest, GainActsOnAllSixteenBits)
{
    const std::string text = "P2 4 1 65535 1 1000 32767 40000";
    Write("a.pgm", text);
    Source source(Config("source = 'images'\npath = 'a.pgm'"));
    source.Registers().Write(Reg::PixelFormat, 0x01100007);
    source.Registers().Write(Block::ExposureTime + 0x1C, 20000); // twice the light
    const std::vector<std::byte> image = source.Only();
    constexpr std::uint16_t wanted[] = {2, 2000, 65534, 65535};
    for (std::size_t i = 0; i < std::size(wanted); ++i) {
        EXPECT_EQ(LoadLe<std::uint16_t>(&image[2 * i]), wanted[i]);
    }
}

TEST_F(ImageSourceTest, EverySettingActsAsTheReferenceTells)
{
    const Samples samples = MakeSamples(s_width, s_height, 3, 8);
    Write("a.ppm", BinaryPnm(samples));
    const std::string text = BinaryPnm(samples);
    Source source(Config("source = 'images'\npath = 'a.ppm'"));
    Control &control = source.Registers();
    constexpr std::uint32_t value = 0x1C;
    control.Write(Block::BinningX + value, 2);
    control.Write(Block::ReverseX + 0x10, 1);
    control.Write(ImageSizeWord::Width, 24);
    control.Write(ImageSizeWord::OffsetX, 4);
    control.Write(ImageSizeWord::Height, 10);
    control.Write(ImageSizeWord::OffsetY, 2);
    control.Write(Block::ExposureTime + value, 7000);
    control.Write(Block::Gain + value, 120);
    control.Write(Block::BlackLevel + value, 30);
    control.Write(Block::Sharpness + value, 3);
    control.Write(Block::Gamma + value, 80);
    PictureSettings settings{.sensorWidth = s_width, .sensorHeight = s_height};
    settings.width = 24;
    settings.height = 10;
    settings.offsetX = 4;
    settings.offsetY = 2;
    settings.binningX = 2;
    settings.reverseX = true;
    settings.exposure = 7000;
    settings.gain = 120;
    settings.blackLevel = 30;
    settings.sharpness = 3;
    settings.gamma = 80;
    settings.showsSubject = settings.showsBlockId = settings.showsDefects = false;
    settings.image = std::make_shared<const SceneImage>(DecodeImage(std::as_bytes(std::span(text))));
    for (const PixelFormat &format : s_pixelFormats) {
        control.Write(Reg::PixelFormat, format.code);
        settings.pixelFormat = format.code;
        std::vector<std::byte> expected(settings.ImageBytes());
        RenderReference(settings, 0, expected);
        EXPECT_EQ(source.Only(), expected) << format.name;
    }
}

TEST_F(ImageSourceTest, ImagesOfAnotherSizeAreTiledOrCentred)
{
    const Samples small = MakeSamples(20, 6, 1, 8), large = MakeSamples(80, 20, 1, 8, 1);
    Write("small.pgm", BinaryPnm(small));
    Write("large.pgm", BinaryPnm(large));
    const auto expect = [](const std::vector<std::byte> &image, auto &&pixel) {
        for (std::int32_t y = 0; y < 16; ++y) {
            for (std::int32_t x = 0; x < 64; ++x) {
                ASSERT_EQ(std::to_integer<int>(image[static_cast<std::size_t>(64 * y + x)]), pixel(x, y))
                    << x << ' ' << y;
            }
        }
    };
    const auto at = [](const Samples &samples, std::int32_t x, std::int32_t y) -> int {
        const bool isInside = x >= 0 && y >= 0 && x < static_cast<std::int32_t>(samples.width) &&
                              y < static_cast<std::int32_t>(samples.height);
        return isInside ? samples.values[static_cast<std::size_t>(y) * samples.width + static_cast<std::size_t>(x)] : 0;
    };
    const auto imageOf = [this](const std::string &keys) {
        return Source(Config("source = 'images'\n" + keys)).Only();
    };
    expect(imageOf("path = 'small.pgm'"), [&](auto x, auto y) { return at(small, x % 20, y % 6); });
    expect(imageOf("path = 'large.pgm'\nplace = 'tile'"), [&](auto x, auto y) { return at(large, x, y); });
    expect(imageOf("path = 'small.pgm'\nplace = 'center'"), [&](auto x, auto y) { return at(small, x - 22, y - 5); });
    expect(imageOf("path = 'large.pgm'\nplace = 'center'"), [&](auto x, auto y) { return at(large, x + 8, y + 2); });
}

TEST_F(ImageSourceTest, RandomOrderIsThatOfTheSeed)
{
    MakeFolder();
    for (std::uint32_t i = 0; i < 7; ++i) {
        Write("images/" + std::to_string(i) + ".pgm", BinaryPnm(MakeSamples(s_width, s_height, 1, 8, i)));
    }
    const auto run = [this](const std::string &seed) {
        Source source(Config("source = 'images'\npath = 'images'\norder = 'random'", "seed = " + seed));
        source.Begin();
        std::vector<std::vector<std::byte>> images;
        for (int i = 0; i < 20; ++i) {
            images.push_back(source.Next());
        }
        return images;
    };
    EXPECT_EQ(run("5"), run("5"));
    EXPECT_NE(run("5"), run("6"));
}

TEST_F(ImageSourceTest, RawImagesFollowEachOtherBitExact)
{
    const Samples first = MakeSamples(s_width, s_height, 1, 8), second = MakeSamples(s_width, s_height, 1, 8, 1);
    std::string bytes = "head";
    for (const Samples *samples : {&first, &second}) {
        for (const std::uint16_t value : samples->values) {
            bytes += static_cast<char>(value);
        }
    }
    Write("a.raw", bytes + "rest");
    Source source(
        Config("source = 'raw'\npath = 'a.raw'\noffset = 4\nwidth = 64\nheight = 16\npixel_format = 'BayerRG8'",
               "pixel_formats = ['BayerRG8']"));
    source.Begin();
    for (const Samples *samples : {&first, &second, &first}) {
        EXPECT_EQ(source.Next(), BytesOf(*samples));
    }
}

TEST_F(ImageSourceTest, ACommandMakesEachImage)
{
    Source source(Config("source = 'command'\ncommand = \"printf 'P2 2 1 255 {block_id} {seed}'\"", "seed = 77"));
    for (int run = 0; run < 2; ++run) { // block ids begin anew with each run
        source.Begin();
        for (int block = 0; block < 4; ++block) {
            const std::vector<std::byte> image = source.Next();
            EXPECT_EQ(image[0], static_cast<std::byte>(block));
            EXPECT_EQ(image[1], std::byte{77});
            EXPECT_EQ(image[2], static_cast<std::byte>(block));
        }
        source.Registers().Write(Reg::SiControl, 0);
    }
}

/// Complaints of the cameras of a test.
class Complaints {
  public:
    Complaints()
    {
        testing::internal::CaptureStderr();
        ListenToComplaints([this](const std::string &text) {
            const std::lock_guard lock(mutex_);
            texts_.push_back(text);
        });
    }
    ~Complaints()
    {
        ListenToComplaints({});
        testing::internal::GetCapturedStderr();
    }
    std::vector<std::string> Texts() const
    {
        const std::lock_guard lock(mutex_);
        return texts_;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> texts_;
};

TEST_F(ImageSourceTest, ACommandThatFailsLeavesTheLastImageAndIsToldOnce)
{
    const std::pair<std::string, std::string> rows[] = {
        {"exit 3", "it ended with exit code 3"},
        {"kill -9 $$", "it was ended by signal 9"},
        {"echo hello", "its output is neither PNG nor TIFF nor PNM"},
        {"sleep 600", "it has not ended in time"},
        {"exec >&-; sleep 600", "it has not ended in time"},
    };
    for (const auto &[end, why] : rows) {
        const Complaints complaints;
        const std::string command = "test {block_id} -gt 0 || { printf 'P2 1 1 255 99'; exit; }; " + end;
        CameraConfig config = Config("source = 'command'\ntimeout_ms = 200\ncommand = '''" + command + "'''");
        Source source(config);
        source.Begin();
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(source.Next(), std::vector<std::byte>(s_width * s_height, std::byte{99})) << end;
        }
        const std::string told = "test 1 -gt 0 || { printf 'P2 1 1 255 99'; exit; }; " + end;
        EXPECT_EQ(complaints.Texts(),
                  std::vector<std::string>{"camera VC000001: the command '" + told + "' failed: " + why +
                                           "; the last image is shown again, further ones are not told"});
    }
}

TEST_F(ImageSourceTest, AnImageThatCannotBeReadLeavesTheLastOne)
{
    MakeFolder();
    const Samples samples = MakeSamples(s_width, s_height, 1, 8);
    Write("images/a.pgm", BinaryPnm(samples));
    Write("images/b.pgm", "P5 9 9 255\n");
    const Complaints complaints;
    Source source(Config("source = 'images'\npath = 'images'"));
    source.Begin();
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(source.Next(), BytesOf(samples));
    }
    EXPECT_EQ(
        complaints.Texts(),
        std::vector<std::string>{"camera VC000001: " + At("images/b.pgm") +
                                 " is a broken PNM: it ends too early; the last image is shown again, further ones "
                                 "are not told"});
}

TEST_F(ImageSourceTest, ACameraThatGoesDoesNotWaitForItsCommand)
{
    const Complaints complaints;
    const auto start = std::chrono::steady_clock::now();
    {
        Source source(Config("source = 'command'\ncommand = 'sleep 600'\ntimeout_ms = 60000"));
        source.Begin();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

} // namespace
} // namespace Orvi::Vcam::Test
