// The checks of orvicam doctor on machines made of files.

#include "tools/orvicam/doctor/Checks.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <grp.h>
#include <unistd.h>

using namespace Orvi::Tool;
using Orvi::Testing::ScopedVariable;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

namespace fs = std::filesystem;

constexpr char goodRule[] = "# a comment\nENV{ID_USB_INTERFACES}==\"*:ef0500:*\", TAG+=\"uaccess\"\n";

class DoctorTest : public testing::Test {
  protected:
    void Put(const std::string &path, const std::string &text = "")
    {
        fs::create_directories(machine.At(path).parent_path());
        std::ofstream(machine.At(path)) << text;
    }

    /// A device with a kind of interfaces, e.g. "ef0500".
    void PlugDevice(const std::string &port, const std::string &deviceClass, const std::vector<std::string> &kinds)
    {
        const std::string device = "/sys/bus/usb/devices/" + port;
        PutClass(device + "/bDevice", deviceClass);
        for (const auto &[name, value] :
             {std::pair("busnum", "2"), std::pair("devnum", "5"), std::pair("speed", "5000"),
              std::pair("manufacturer", "Maker"), std::pair("product", "Eye 5"), std::pair("serial", "C1")})
            Put(device + "/" + name, std::string(value) + "\n");
        Put(node);
        for (std::size_t i = 0; i < kinds.size(); ++i)
            PutClass(device + ":1." + std::to_string(i) + "/bInterface", kinds[i]);
    }
    void PlugCamera() { PlugDevice("2-1", "ef0201", {"ef0500", "ef0501", "ef0502"}); }

    void Bind(const std::string &interface, const std::string &driver)
    {
        const std::string target = "/sys/bus/usb/drivers/" + driver;
        fs::create_directories(machine.At(target));
        fs::create_directory_symlink(machine.At(target), machine.At("/sys/bus/usb/devices/" + interface + "/driver"));
    }

    UsbCamera Camera() const
    {
        const auto cameras = FindUsbCameras(machine);
        EXPECT_EQ(cameras.size(), 1U);
        return cameras.empty() ? UsbCamera{} : cameras.front();
    }
    Findings OfCamera() const { return CheckUsbCamera(Camera(), machine, FindUdevRule(machine), "/sdk"); }
    Finding OfRule() const { return CheckUdevRule(FindUdevRule(machine), FindUsbCameras(machine), machine, "/sdk"); }

    static constexpr char node[] = "/dev/bus/usb/002/005";
    Orvi::Testing::TempFolder folder;
    Machine machine{folder.Path()};

  private:
    void PutClass(const std::string &prefix, const std::string &kind)
    {
        Put(prefix + "Class", kind.substr(0, 2) + "\n");
        Put(prefix + "SubClass", kind.substr(2, 2) + "\n");
        Put(prefix + "Protocol", kind.substr(4, 2) + "\n");
    }
};

/// As somebody who is not root: the body in a child of that user. True when its expectations hold.
bool PassesAsNobody(const fs::path &mayEnter, const std::function<void()> &body)
{
    fs::permissions(mayEnter,
                    fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
    return Orvi::Testing::PassesInChild([&] {
        constexpr uid_t nobody = 65534;
        if (getuid() == 0) {
            ASSERT_TRUE(setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
        }
        body();
    });
}

TEST_F(DoctorTest, CameraIsFoundByItsInterfaces)
{
    PlugCamera();
    PlugDevice("2-2", "ef0201", {"0e0100", "0e0200"});  // a webcam
    PlugDevice("2-3", "000000", {"ef0500"});            // no composite device
    PlugDevice("2-10", "ef0201", {"ef0501", "ef0502"}); // no control interface
    const UsbCamera camera = Camera();
    EXPECT_EQ(camera.port, "2-1");
    EXPECT_EQ(camera.Name(), "C1");
    EXPECT_EQ(camera.product, "Maker Eye 5");
    EXPECT_EQ(camera.node, node);
    EXPECT_EQ(camera.speed, 5000U);
    EXPECT_THAT(camera.drivers, IsEmpty());
}

TEST_F(DoctorTest, CameraThatMayBeOpenedIsFine)
{
    PlugCamera();
    for (const Finding &finding : OfCamera()) {
        EXPECT_EQ(finding.verdict, Verdict::Ok) << finding.text;
        EXPECT_EQ(finding.remedy, "");
    }
}

TEST_F(DoctorTest, CameraOnUsb2IsWarnedOf)
{
    PlugCamera();
    Put("/sys/bus/usb/devices/2-1/speed", "480\n");
    const Findings findings = OfCamera();
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[1].verdict, Verdict::Warn);
    EXPECT_THAT(findings[1].text, HasSubstr("480 Mbit/s at port 2-1"));
    EXPECT_THAT(findings[1].remedy, HasSubstr("use a USB 3 port, cable and hub"));
}

TEST_F(DoctorTest, DeniedCameraFailsWithWhatIsMissing)
{
    PlugCamera();
    fs::permissions(machine.At(node), fs::perms::none);
    EXPECT_TRUE(PassesAsNobody(folder.Path(), [&] {
        const Finding denied = OfCamera()[0];
        EXPECT_EQ(denied.verdict, Verdict::Fail);
        EXPECT_EQ(denied.check, "permission of C1");
        EXPECT_THAT(denied.text, HasSubstr(std::string("may not open ") + node + " ("));
        EXPECT_THAT(denied.remedy, HasSubstr("sudo cp '/sdk/share/udev/rules.d/70-u3v.rules' /etc/udev/rules.d/"));
        EXPECT_EQ(OfRule().verdict, Verdict::Fail) << "a missing rule that keeps a camera closed is the fault";
    }));
    Put("/etc/udev/rules.d/70-u3v.rules", goodRule);
    EXPECT_TRUE(PassesAsNobody(folder.Path(), [&] {
        EXPECT_THAT(OfCamera()[0].remedy, HasSubstr("udevadm trigger")) << "the rule has not been applied";
    }));
    if (getuid() != 0)
        return; // cannot give files away
    ASSERT_EQ(chown(machine.At(node).c_str(), 0, 46), 0);
    fs::permissions(machine.At(node), fs::perms(0660));
    EXPECT_TRUE(PassesAsNobody(folder.Path(), [&] {
        EXPECT_THAT(OfCamera()[0].remedy, HasSubstr("sudo usermod -aG ")) << "the user is not in the group";
    }));
}

TEST_F(DoctorTest, CameraWithoutItsDeviceFileFails)
{
    PlugCamera();
    fs::remove(machine.At(node));
    EXPECT_EQ(OfCamera()[0].verdict, Verdict::Fail);
    EXPECT_THAT(OfCamera()[0].text, HasSubstr("No such file"));
    EXPECT_THAT(OfCamera()[0].remedy, HasSubstr("plug the camera in again; in a container say --device=/dev/bus/usb"));
}

TEST_F(DoctorTest, KernelDriverOrProgramOnTheCameraIsToldOf)
{
    PlugCamera();
    Bind("2-1:1.0", "somedriver");
    Bind("2-1:1.2", "usbfs");
    const Findings findings = OfCamera();
    ASSERT_EQ(findings.size(), 4U);
    EXPECT_EQ(findings[2].verdict, Verdict::Warn);
    EXPECT_THAT(findings[2].text, HasSubstr("somedriver at 2-1:1.0"));
    EXPECT_EQ(findings[2].remedy, "echo 2-1:1.0 | sudo tee /sys/bus/usb/drivers/somedriver/unbind");
    EXPECT_EQ(findings[3].verdict, Verdict::Warn);
    EXPECT_EQ(findings[3].remedy, std::string("sudo fuser -v ") + node);
}

TEST_F(DoctorTest, RuleIsReadWhereUdevReadsIt)
{
    EXPECT_EQ(OfRule().verdict, Verdict::Warn) << "no camera is kept closed by its absence";
    EXPECT_EQ(OfRule().remedy, InstallRuleCommand("/sdk"));
    for (const char *where : {"/usr/lib/udev/rules.d/70-u3v.rules", "/etc/udev/rules.d/60-other.rules"}) {
        Put(where, goodRule);
        EXPECT_EQ(OfRule().verdict, Verdict::Ok);
        EXPECT_EQ(OfRule().text, where);
        fs::remove(machine.At(where));
    }
}

TEST_F(DoctorTest, RuleThatDoesNotWorkIsToldWhy)
{
    const std::string matches = "ENV{ID_USB_INTERFACES}==\"*:ef0500:*\", ";
    const struct {
        const char *name;
        std::string rules;
        const char *why;
    } rows[] = {
        {"70-u3v.rules", "# ef0500 uaccess\n", "does not match"},
        {"70-u3v.rules", matches + "SYMLINK+=\"u3v\"\n", "gives nobody access"},
        {"99-u3v.rules", matches + "TAG+=\"uaccess\"\n", "below 73"},
    };
    for (const auto &row : rows) {
        const std::string path = std::string("/etc/udev/rules.d/") + row.name;
        Put(path, row.rules);
        EXPECT_EQ(OfRule().verdict, Verdict::Warn);
        EXPECT_THAT(OfRule().text, HasSubstr(path));
        EXPECT_THAT(OfRule().text, HasSubstr(row.why));
        EXPECT_EQ(OfRule().remedy, InstallRuleCommand("/sdk"));
        fs::remove(machine.At(path));
    }
    Put("/etc/udev/rules.d/99-u3v.rules", matches + "MODE=\"0666\"\n");
    EXPECT_EQ(OfRule().verdict, Verdict::Ok) << "a mode may come late";
}

TEST_F(DoctorTest, FileInEtcHidesTheOneBehindIt)
{
    Put("/usr/lib/udev/rules.d/70-u3v.rules", goodRule);
    Put("/etc/udev/rules.d/70-u3v.rules", "");
    EXPECT_EQ(OfRule().verdict, Verdict::Warn);
    EXPECT_THAT(OfRule().text, HasSubstr("/etc/udev/rules.d/70-u3v.rules"));
}

TEST_F(DoctorTest, KernelWithoutUsbMattersToRealCameras)
{
    EXPECT_EQ(CheckKernel(machine, Wanted::RealCameras).verdict, Verdict::Fail);
    EXPECT_EQ(CheckKernel(machine, Wanted::VirtualCameras).verdict, Verdict::Warn);
    EXPECT_THAT(CheckKernel(machine, Wanted::VirtualCameras).remedy, HasSubstr("sudo modprobe usbcore"));
    Put("/sys/bus/usb/devices/usb1/speed");
    EXPECT_THAT(CheckKernel(machine, Wanted::RealCameras).text, HasSubstr("/dev/bus/usb is missing"));
    EXPECT_THAT(CheckKernel(machine, Wanted::RealCameras).remedy, HasSubstr("--device=/dev/bus/usb"));
    Put(node);
    EXPECT_EQ(CheckKernel(machine, Wanted::RealCameras).verdict, Verdict::Ok);
}

TEST_F(DoctorTest, VirtualBusIsNoDuty)
{
    EXPECT_EQ(CheckVirtualBus(machine).verdict, Verdict::Ok);
    EXPECT_THAT(CheckVirtualBus(machine).text, HasSubstr("modprobe vhci_hcd"));
    Put("/sys/devices/platform/vhci_hcd.0/status");
    EXPECT_THAT(CheckVirtualBus(machine).text, HasSubstr("is loaded"));
}

TEST_F(DoctorTest, UsbMemoryHasToDoForAllCameras)
{
    EXPECT_EQ(CheckUsbMemory(machine, 1).verdict, Verdict::Ok) << "a kernel that tells nothing";
    Put("/sys/module/usbcore/parameters/usbfs_memory_mb", "16\n");
    EXPECT_EQ(CheckUsbMemory(machine, 0).verdict, Verdict::Ok);
    EXPECT_EQ(CheckUsbMemory(machine, 1).verdict, Verdict::Ok);
    EXPECT_EQ(CheckUsbMemory(machine, 2).verdict, Verdict::Warn);
    EXPECT_THAT(CheckUsbMemory(machine, 2).remedy,
                HasSubstr("echo 256 | sudo tee /sys/module/usbcore/parameters/usbfs_memory_mb"));
    EXPECT_THAT(CheckUsbMemory(machine, 20).remedy, HasSubstr("echo 320 |"));
    Put("/sys/module/usbcore/parameters/usbfs_memory_mb", "0\n");
    EXPECT_EQ(CheckUsbMemory(machine, 20).verdict, Verdict::Ok) << "0 is no limit";
}

TEST_F(DoctorTest, CamerasOfTheKernelHaveToReachTheLibrary)
{
    EXPECT_EQ(CheckCameras({}, {}).verdict, Verdict::Warn);
    EXPECT_THAT(CheckCameras({}, {}).remedy, HasSubstr("lsusb"));
    PlugCamera();
    CameraEntry entry;
    entry.serial = "VC000001";
    EXPECT_EQ(CheckCameras({entry}, {}).verdict, Verdict::Ok);
    EXPECT_EQ(CheckCameras({entry}, {Camera()}).verdict, Verdict::Fail);
    EXPECT_THAT(CheckCameras({entry}, {Camera()}).text, HasSubstr("C1 (Maker Eye 5)"));
    EXPECT_THAT(CheckCameras({entry}, {Camera()}).remedy, HasSubstr("mend what is said of them above"));
    CameraEntry real;
    real.serial = "C1";
    EXPECT_EQ(CheckCameras({entry, real}, {Camera()}).text, "2 cameras: VC000001, C1");
}

TEST_F(DoctorTest, ConfigurationIsFoundBelowTheSdk)
{
    const std::string sdk = folder.Path();
    EXPECT_THAT(CheckConfiguration(sdk).text, HasSubstr("no OrviCamSDK.cfg"));
    Put("/lib/OrviCamSDK.cfg");
    EXPECT_EQ(CheckConfiguration(sdk).text, sdk + "/lib/OrviCamSDK.cfg");
    fs::permissions(machine.At("/lib/OrviCamSDK.cfg"), fs::perms::none);
    EXPECT_TRUE(PassesAsNobody(folder.Path(), [&] {
        EXPECT_EQ(CheckConfiguration(sdk).verdict, Verdict::Warn);
        EXPECT_EQ(CheckConfiguration(sdk).remedy, "sudo chmod a+r '" + sdk + "/lib/OrviCamSDK.cfg'");
    }));
}

TEST_F(DoctorTest, CacheFolderHasToTakeFiles)
{
    const std::string cache = folder.Path() / "cache";
    const ScopedVariable home("HOME", folder.Path().string());
    {
        const ScopedVariable variable("GENICAM_CACHE_V3_0", std::nullopt);
        EXPECT_THAT(CheckCache().remedy, HasSubstr("OrviCamSDK/genicam/cache"));
    }
    const ScopedVariable variable("GENICAM_CACHE_V3_0", cache);
    EXPECT_THAT(CheckCache().text, HasSubstr("is no folder"));
    EXPECT_EQ(CheckCache().remedy, "mkdir -p '" + cache + "'");
    fs::create_directory(cache);
    EXPECT_EQ(CheckCache().verdict, Verdict::Ok);
    fs::permissions(cache, fs::perms(0555));
    EXPECT_TRUE(PassesAsNobody(folder.Path(), [&] {
        EXPECT_EQ(CheckCache().verdict, Verdict::Warn);
        EXPECT_THAT(CheckCache().remedy, HasSubstr("sudo chown"));
    }));
}

TEST_F(DoctorTest, CacheWithoutAHomeIsWarnedOf)
{
    const ScopedVariable variable("GENICAM_CACHE_V3_0", std::nullopt), home("HOME", std::nullopt);
    EXPECT_EQ(CheckCache().verdict, Verdict::Warn);
    EXPECT_THAT(CheckCache().remedy, HasSubstr("export HOME="));
}

TEST_F(DoctorTest, WrongVariablesAreToldWithTheirRemedies)
{
    const auto remediesOf = [](const char *cameras, const char *kinds) {
        const ScopedVariable count("ORVI_VIRTUAL_CAMERAS", cameras);
        const ScopedVariable transport("ORVI_TRANSPORT", kinds);
        const Findings findings = CheckVariables();
        return std::pair(findings[0].remedy, findings[1].remedy);
    };
    EXPECT_EQ(remediesOf("", ""), std::pair(std::string(), std::string()));
    EXPECT_EQ(remediesOf("65", "virtual"),
              std::pair(std::string("export ORVI_VIRTUAL_CAMERAS=1"), std::string("unset ORVI_TRANSPORT")));
    EXPECT_EQ(remediesOf("no.toml", "usb").first, "orvicam vcam check 'no.toml'");
}

TEST_F(DoctorTest, VariablesAreUnderstood)
{
    const auto verdictOf = [](const char *cameras, const char *kinds) {
        const ScopedVariable count("ORVI_VIRTUAL_CAMERAS", cameras);
        const ScopedVariable transport("ORVI_TRANSPORT", kinds);
        const Findings findings = CheckVariables();
        return std::pair(findings[0].verdict, findings[1].verdict);
    };
    Put("/bench.toml", "[[camera]]\nserial = \"A\"\n");
    Put("/wrong.toml", "[[camera]]\nsirial = \"A\"\n");
    const std::string wrong = machine.At("/wrong.toml"), file = machine.At("/bench.toml");
    EXPECT_EQ(verdictOf("", ""), std::pair(Verdict::Ok, Verdict::Ok));
    EXPECT_EQ(verdictOf("64", "usb,virtual"), std::pair(Verdict::Ok, Verdict::Ok));
    EXPECT_EQ(verdictOf(file.c_str(), "usb"), std::pair(Verdict::Ok, Verdict::Ok));
    EXPECT_EQ(verdictOf(wrong.c_str(), ""), std::pair(Verdict::Fail, Verdict::Ok));
    EXPECT_EQ(verdictOf("65", "virtual"), std::pair(Verdict::Fail, Verdict::Warn));
    EXPECT_EQ(verdictOf("-1", ""), std::pair(Verdict::Fail, Verdict::Ok));
    EXPECT_EQ(verdictOf("nowhere.toml", ""), std::pair(Verdict::Fail, Verdict::Ok));
}

} // namespace
