#include "u3v/protocol/Description.h"
#include "tests/u3v/FakeDevice.h"
#include "u3v/core/Status.h"
#include "u3v/genapi/NodeMap.h"
#include "u3v/protocol/Camera.h"
#include "u3v/protocol/Sha1.h"
#include "u3v/protocol/StreamLayout.h"
#include "u3v/protocol/Zip.h"
#include "u3v/usb/LoopbackLink.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numeric>
#include <thread>
#include <unistd.h>

namespace Orvi::Test {
namespace {

using namespace U3v;

Bytes BytesOf(const std::string &text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

Bytes Zip(const std::string &text)
{
    std::vector<Bytef> packed(compressBound(static_cast<uLong>(text.size())) + 64);
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, -MAX_WBITS, 9, Z_DEFAULT_STRATEGY);
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    const auto crc = static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef *>(text.data()), static_cast<uInt>(text.size())));
    const auto packedSize = static_cast<std::uint32_t>(packed.size()), size = static_cast<std::uint32_t>(text.size());
    const Bytes common = Pack(std::uint16_t{20}, std::uint16_t{0}, std::uint16_t{8}, std::uint32_t{0}, crc, packedSize,
                              size, std::uint16_t{5}, std::uint16_t{0});
    const Bytes name = BytesOf("a.xml");
    const auto *data = reinterpret_cast<const std::byte *>(packed.data());
    const Bytes local = Joined({Pack(std::uint32_t{0x04034B50}), common, name, Bytes(data, data + packed.size())});
    const Bytes central =
        Joined({Pack(std::uint32_t{0x02014B50}, std::uint16_t{20}), common,
                Pack(std::uint16_t{0}, std::uint16_t{0}, std::uint16_t{0}, std::uint32_t{0}, std::uint32_t{0}), name});
    const Bytes end =
        Pack(std::uint32_t{0x06054B50}, std::uint16_t{0}, std::uint16_t{0}, std::uint16_t{1}, std::uint16_t{1},
             static_cast<std::uint32_t>(central.size()), static_cast<std::uint32_t>(local.size()), std::uint16_t{0});
    return Joined({local, central, end});
}

std::string FailureOf(const std::function<void()> &call)
{
    try {
        call();
        return {};
    } catch (const StatusError &error) {
        EXPECT_EQ(error.Status(), CAM_API_STS_XML_LOAD_ERR);
        return error.what();
    }
}

const std::string xml = "<RegisterDescription/> " + std::string(3000, 'x');
constexpr std::uint32_t plain = 0x01010000, zipped = 0x01010400;

class DescriptionTest : public testing::Test {
  protected:
    struct Entry {
        std::uint32_t version, schema;
        Bytes file;
        std::array<std::byte, 20> sha1{};
    };

    void SetManifest(const std::vector<Entry> &entries)
    {
        device->Set64(FakeDevice::manifest, entries.size());
        std::uint64_t address = FakeDevice::file;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const Entry &entry = entries[i];
            const std::uint64_t at = FakeDevice::manifest + 8 + 64 * i;
            device->SetBytes(at, Pack(entry.version, entry.schema, address, std::uint64_t{entry.file.size()}));
            device->SetBytes(at + 24, Bytes(entry.sha1.begin(), entry.sha1.end()));
            device->SetBytes(address, entry.file);
            address += entry.file.size();
        }
    }

    std::string Fetch()
    {
        LoopbackLink link(device);
        GenCp control(link);
        return FetchDescription(control, FakeDevice::manifest, DescriptionCache(folder, identity));
    }

    std::string folder; // no cache when empty
    DeviceIdentity identity = [] {
        DeviceIdentity odd;
        odd.manufacturer = "Maker/..";
        odd.model = "Model 5";
        odd.deviceVersion = "1.0 b";
        return odd;
    }();

    std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
};

TEST_F(DescriptionTest, PlainZippedAndPaddedFilesGiveTheSameText)
{
    const Bytes padding(37);
    for (const auto &[schema, file] :
         {std::pair(plain, BytesOf(xml)), std::pair(zipped, Zip(xml)),
          std::pair(plain, Joined({BytesOf(xml), padding})), std::pair(zipped, Joined({Zip(xml), padding}))}) {
        SetManifest({{0x01000000, schema, file, Sha1(file)}});
        EXPECT_EQ(Fetch(), xml);
    }
}

TEST_F(DescriptionTest, NewestUsableEntryIsTaken)
{
    SetManifest({{0x01000005, plain, BytesOf("older"), {}},
                 {0x09000000, plain | 1, BytesOf("chunks"), {}},
                 {0x01010000, plain, BytesOf("newest"), {}},
                 {0x08000000, plain | 5U << 10, BytesOf("strange compression"), {}}});
    EXPECT_EQ(Fetch(), "newest");
}

TEST_F(DescriptionTest, OfASchemaThatIsNotUnderstoodOnlyWhenThereIsNoOther)
{
    SetManifest({{0x09000000, 0x02000000, BytesOf("schema 2"), {}}, {0x01000000, plain, BytesOf("schema 1"), {}}});
    EXPECT_EQ(Fetch(), "schema 1");
    SetManifest({{0x09000000, 0x02000000, BytesOf("schema 2"), {}}});
    EXPECT_EQ(Fetch(), "schema 2");
}

TEST_F(DescriptionTest, TheNextOneIsTakenWhenTheBestIsDamaged)
{
    Bytes file = Zip(xml);
    const auto sha1 = Sha1(file);
    file[60] ^= std::byte{1};
    SetManifest({{0x01000000, plain, BytesOf("older"), {}}, {0x02000000, zipped, file, sha1}});
    EXPECT_EQ(Fetch(), "older");
    SetManifest({{0x01000000, zipped, file, sha1}, {0x02000000, zipped, file, sha1}});
    EXPECT_NE(FailureOf([&] { Fetch(); }).find("none of the camera's descriptions"), std::string::npos);
}

TEST_F(DescriptionTest, ManifestWithoutADescriptionIsAnError)
{
    SetManifest({});
    EXPECT_NE(FailureOf([&] { Fetch(); }), "");
    device->Set64(FakeDevice::manifest, 1'000'000);
    EXPECT_NE(FailureOf([&] { Fetch(); }).find("1000000"), std::string::npos);
}

TEST_F(DescriptionTest, DamagedFilesAreErrors)
{
    Bytes file = Zip(xml);
    const auto sha1 = Sha1(file);
    file[60] ^= std::byte{1};
    SetManifest({{1, zipped, file, sha1}});
    EXPECT_NE(FailureOf([&] { Fetch(); }).find("SHA-1"), std::string::npos);
    SetManifest({{1, zipped, file, {}}});
    EXPECT_NE(FailureOf([&] { Fetch(); }), "");
}

TEST_F(DescriptionTest, NoCutOrFlippedArchiveIsReadBeyondItsEnd)
{
    const Bytes good = Zip(xml);
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_NE(FailureOf([&] { UnzipFirstFile(std::span(good).first(size)); }), "");
    for (std::size_t at = 0; at < good.size(); ++at)
        for (const std::byte flip : {std::byte{0xFF}, std::byte{0x80}}) {
            Bytes bad = good;
            bad[at] ^= flip;
            try {
                EXPECT_EQ(UnzipFirstFile(bad), xml); // a byte that does not matter
            } catch (const StatusError &error) {
                EXPECT_EQ(error.Status(), CAM_API_STS_XML_LOAD_ERR);
            }
        }
}

TEST_F(DescriptionTest, ArchiveThatClaimsMoreThanItCanHoldTakesNoMemory)
{
    // As good as zip can pack: the limit is not below it.
    const std::string blanks(1 << 20, ' ');
    EXPECT_EQ(UnzipFirstFile(Zip(blanks)), blanks);

    Bytes archive = Zip(xml);
    const std::size_t directory = archive.size() - 22 - 46 - 5;
    const Bytes claim = Pack(std::uint32_t{255U << 20});
    std::copy(claim.begin(), claim.end(), archive.begin() + static_cast<std::ptrdiff_t>(directory) + 24);
    EXPECT_NE(FailureOf([&] { UnzipFirstFile(archive); }).find("sizes are wrong"), std::string::npos);
}

TEST_F(DescriptionTest, FileOfTheUsersMayBeZipped)
{
    const std::string path = testing::TempDir() + "u3v-description-test";
    for (const Bytes &file : {BytesOf(xml), Zip(xml)}) {
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char *>(file.data()), static_cast<std::streamsize>(file.size()));
        EXPECT_EQ(ReadDescriptionFile(path), xml);
    }
    std::remove(path.c_str());
    EXPECT_NE(FailureOf([&] { ReadDescriptionFile(path); }).find(path), std::string::npos);
}

class DescriptionCacheTest : public DescriptionTest {
  protected:
    DescriptionCacheTest()
    {
        folder = testing::TempDir() + "u3v-cache-" + std::to_string(getpid());
        std::filesystem::remove_all(folder);
        std::filesystem::create_directory(folder);
        SetManifest({{0x01000000, zipped, file, Sha1(file)}});
    }
    ~DescriptionCacheTest() override { std::filesystem::remove_all(folder); }

    /// Bytes that a fetch reads from the camera.
    std::size_t BytesOfFetch()
    {
        const std::size_t before = device->Commands().size();
        EXPECT_EQ(Fetch(), text);
        const std::vector<Command> commands = device->Commands();
        return std::accumulate(commands.begin() + static_cast<std::ptrdiff_t>(before), commands.end(), std::size_t{0},
                               [](std::size_t sum, const Command &command) { return sum + command.count; });
    }
    std::string Path() const { return DescriptionCache(folder, identity).PathOf(Sha1(file)); }
    std::size_t FileCount() const
    {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()));
    }

    const std::string text = [] {
        std::string incompressible;
        std::uint32_t state = 1;
        while (incompressible.size() < 8000)
            incompressible += static_cast<char>(' ' + (state = state * 1664525 + 1013904223) % 90);
        return incompressible;
    }();
    const Bytes file = Zip(text);
};

TEST_F(DescriptionCacheTest, SecondFetchReadsTheManifestAlone)
{
    constexpr std::size_t manifestSize = 8 + 64;
    EXPECT_EQ(BytesOfFetch(), manifestSize + file.size());
    EXPECT_EQ(BytesOfFetch(), manifestSize);
    EXPECT_EQ(FileCount(), 1U);
    EXPECT_EQ(std::filesystem::path(Path()).filename().string().find("Maker___-Model_5-1_0_b-"), 0U);
}

TEST_F(DescriptionCacheTest, DamagedFileIsReplaced)
{
    const std::size_t whole = BytesOfFetch();
    for (const std::size_t size : {file.size() / 2, std::size_t{0}}) {
        std::filesystem::resize_file(Path(), size);
        EXPECT_EQ(BytesOfFetch(), whole);
        EXPECT_EQ(std::filesystem::file_size(Path()), file.size());
        EXPECT_LT(BytesOfFetch(), 2048U);
    }
}

TEST_F(DescriptionCacheTest, AFileOfTheRightSizeButOtherBytesIsReplaced)
{
    const std::size_t whole = BytesOfFetch();
    std::fstream(Path(), std::ios::in | std::ios::out | std::ios::binary).seekp(100).put('\x55').put('\xAA');
    EXPECT_EQ(BytesOfFetch(), whole);
    EXPECT_LT(BytesOfFetch(), 2048U);
}

TEST_F(DescriptionCacheTest, NothingButWholeFilesIsEverInTheFolder)
{
    // As another process sees it that opens the same camera.
    std::atomic<bool> done = false;
    std::thread reader([&] {
        const DescriptionCache cache(folder, identity);
        while (!done)
            EXPECT_EQ(cache.Find(Sha1(file)).value_or(file), file);
    });
    const DescriptionCache cache(folder, identity);
    // A file is replaced, not written over: who has the old one open goes on reading that.
    const std::string damaged(file.size(), 'x');
    std::ofstream(Path(), std::ios::binary) << damaged;
    std::ifstream old(Path(), std::ios::binary);
    cache.Keep(Sha1(file), file);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(old), {}), damaged);
    for (int i = 0; i < 30; ++i) {
        cache.Keep(Sha1(file), file);
        EXPECT_TRUE(cache.Find(Sha1(file)).has_value()) << "a file that is written again is whole all the time";
    }
    done = true;
    reader.join();
    EXPECT_EQ(FileCount(), 1U) << "no temporary file is left";
}

TEST_F(DescriptionCacheTest, AnOpenWithAWarmCacheReadsLessThan2KB)
{
    std::string comment;
    for (int i = 0; i < 30; ++i)
        comment += text;
    std::ranges::replace(comment, '-', '_');
    const Bytes stored = BytesOf("<RegisterDescription><Integer Name=\"Width\"><Value>5</Value></Integer><!--" +
                                 comment + "--></RegisterDescription>");
    SetManifest({{0x01000000, plain, stored, Sha1(stored)}});
    setenv("GENICAM_CACHE_V3_0", folder.c_str(), 1);
    constexpr std::size_t header = 12;
    const auto bytesOfOpen = [&] {
        const std::size_t before = device->Commands().size();
        Camera camera(std::make_unique<LoopbackLink>(device), Camera::Options());
        EXPECT_EQ(camera.Nodes().GetInt(*camera.Nodes().Find("Width")), 5);
        const std::vector<Command> commands = device->Commands();
        std::size_t bytes = 0;
        for (std::size_t i = before; i < commands.size(); ++i)
            bytes += header + commands[i].count;
        return bytes;
    };
    EXPECT_GT(bytesOfOpen(), stored.size());
    EXPECT_LT(bytesOfOpen(), 2048U);
    unsetenv("GENICAM_CACHE_V3_0");
}

TEST_F(DescriptionCacheTest, OtherVersionOrOtherBytesAreFetched)
{
    const std::size_t whole = BytesOfFetch();
    identity.deviceVersion = "2.0";
    EXPECT_EQ(BytesOfFetch(), whole);
    EXPECT_EQ(FileCount(), 2U);
    SetManifest({{0x01000000, plain, BytesOf("other"), Sha1(BytesOf("other"))}});
    EXPECT_EQ(Fetch(), "other");
    EXPECT_EQ(FileCount(), 3U);
}

TEST_F(DescriptionCacheTest, NothingIsKeptWithoutADigestOrAFolder)
{
    SetManifest({{0x01000000, zipped, file, {}}});
    EXPECT_EQ(BytesOfFetch(), BytesOfFetch());
    EXPECT_EQ(FileCount(), 0U);
    SetManifest({{0x01000000, zipped, file, Sha1(file)}});
    std::filesystem::remove_all(folder);
    EXPECT_EQ(BytesOfFetch(), BytesOfFetch());
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(Sha1Test, GivesThePublishedDigests)
{
    const auto hex = [](const std::string &text) {
        std::string digits;
        for (const std::byte b : Sha1(std::as_bytes(std::span(text)))) {
            char two[3];
            std::snprintf(two, sizeof two, "%02x", std::to_integer<unsigned>(b));
            digits += two;
        }
        return digits;
    };
    EXPECT_EQ(hex(""), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
    EXPECT_EQ(hex("abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
    EXPECT_EQ(hex(std::string(1000000, 'a')), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

TEST(StreamLayoutTest, SlotsCoverThePayloadAndOnlyTheLastReachesBeyond)
{
    for (const std::size_t alignment : {4U, 64U, 1024U, 4096U})
        for (const std::size_t maxTransfer : {1U, 1024U, 5000U, 65536U, 1048576U})
            for (const std::size_t payload : {1U, 1023U, 1024U, 1025U, 65536U, 314928U, 2304000U}) {
                const StreamLayout layout = StreamLayout::Cut(payload, 52, 32, alignment, 1024, maxTransfer);
                const std::size_t unit = std::max<std::size_t>(alignment, 1024);
                std::size_t total = 0;
                for (const std::size_t slot : layout.Slots()) {
                    EXPECT_LT(total, payload);
                    EXPECT_EQ(slot % unit, 0U);
                    EXPECT_LE(slot, std::max<std::size_t>(maxTransfer, unit));
                    total += slot;
                }
                EXPECT_GE(total, payload);
                EXPECT_LT(total - payload, unit);
                EXPECT_LE(total - layout.final2Size, payload);
                EXPECT_GE(layout.leaderSize, 52U);
                EXPECT_EQ(layout.trailerSize % 1024, 0U);
            }
}

} // namespace
} // namespace Orvi::Test
