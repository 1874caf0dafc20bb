#pragma once
// What the tests of real links share: the bus in memory, a folder in sysfs's place, the transport's log.

#include "tests/usb/FakeBus.h"
#include "u3v/core/Log.h"
#include "u3v/usb/LibusbDevice.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace Orvi::Test {

class UsbTest : public testing::Test {
  protected:
    UsbTest()
    {
        std::string name = (std::filesystem::temp_directory_path() / "orvi-usb-XXXXXX").string();
        folder = mkdtemp(name.data());
        context = std::make_unique<U3v::LibusbContext>(U3v::Sysfs(folder.string()));
        U3v::DeviceLog().StartFile(LogPath().c_str(), false, CAM_LOG_LEVEL_DEBUG);
    }

    // Whatever a test did, nothing is left of it.
    ~UsbTest() override
    {
        U3v::DeviceLog().Stop();
        context.reset();
        const auto counts = bus.Count();
        EXPECT_EQ(counts.contexts, 0);
        EXPECT_EQ(counts.references, 0);
        EXPECT_EQ(counts.configurations, 0);
        EXPECT_EQ(counts.lists, 0);
        EXPECT_EQ(counts.handles, 0);
        EXPECT_EQ(counts.claims, 0);
        EXPECT_EQ(counts.transfers, 0);
        EXPECT_EQ(counts.hotplugCallbacks, 0);
        EXPECT_EQ(counts.driversAttached, counts.driversDetached);
        EXPECT_THAT(bus.Mistakes(), testing::IsEmpty());
        bus.Clear();
        std::filesystem::remove_all(folder);
    }

    std::vector<std::shared_ptr<U3v::UsbDevice>> Enumerate() { return U3v::EnumerateUsbDevices(*context); }
    std::unique_ptr<U3v::UsbLink> OpenFirst() { return Enumerate().at(0)->Open(); }

    std::string LogPath() const { return (folder / "log").string(); }
    std::string Log() const
    {
        std::ifstream file(LogPath());
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // What sysfs tells of the device at bus path 2-1.
    void WriteAttribute(const std::string &name, const std::string &text) const
    {
        Write("bus/usb/devices/2-1/" + name, text);
    }
    void BindDriver(int interface, const std::string &driver) const
    {
        const auto path = folder / ("bus/usb/devices/2-1:1." + std::to_string(interface));
        std::filesystem::create_directories(path);
        std::filesystem::remove(path / "driver");
        std::filesystem::create_symlink("../../../drivers/" + driver, path / "driver");
    }
    void WriteUsbfsMemory(const std::string &text) const { Write("module/usbcore/parameters/usbfs_memory_mb", text); }

    FakeBus &bus = FakeBus::Instance();
    std::filesystem::path folder;
    std::unique_ptr<U3v::LibusbContext> context;

  private:
    void Write(const std::string &path, const std::string &text) const
    {
        std::filesystem::create_directories((folder / path).parent_path());
        std::ofstream(folder / path) << text << '\n';
    }
};

} // namespace Orvi::Test
