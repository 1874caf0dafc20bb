// Ports of the kernel's virtual controller, as its files show them.

#include "tools/vcam-usbip/Vhci.h"
#include "tests/support/TempFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace Orvi::UsbIp::Test {

namespace {

constexpr char s_titles[] = "hub port sta spd dev      sockfd local_busid\n";

class VhciTest : public testing::Test {
  protected:
    void Write(const std::string &name, const std::string &text) const { std::ofstream(temp.Path() / name) << text; }
    std::string Attached() const
    {
        std::string text;
        std::getline(std::ifstream(temp.Path() / "attach"), text);
        return text;
    }

    Orvi::Testing::TempFolder temp;
    Vhci vhci{temp.Path(), temp.Path() / "devices"};
};

std::string Without(std::string text, std::size_t word)
{
    std::istringstream stream(text);
    std::string result, part;
    for (std::size_t i = 0; stream >> part; ++i)
        result += (i == word ? "FD" : part) + " ";
    return result;
}

} // namespace

TEST_F(VhciTest, TakesTheFirstFreePortOfTheRightHub)
{
    Write("status", std::string(s_titles) + "hs  0000 004 000 00000000 000000 0-0\n"
                                            "ss  0015 006 005 00010001 000003 2-1\n"
                                            "ss  0016 007 000 00000000 000000 0-0\n"
                                            "ss  0017 004 000 00000000 000000 0-0\n");
    Write("attach", "");
    const Vhci::Plug plug = vhci.Attach(Vcam::LinkSpeed::Super, 0x10002);
    EXPECT_EQ(plug.port, 17u);
    EXPECT_GE(plug.socket.Get(), 0);
    EXPECT_EQ(Without(Attached(), 1), "17 FD 65538 5 ");
    Write("attach", "");
    EXPECT_EQ(vhci.Attach(Vcam::LinkSpeed::High, 1).port, 0u);
    EXPECT_EQ(Without(Attached(), 1), "0 FD 1 3 ");
    EXPECT_EQ(vhci.BusId(15), "2-1");
    EXPECT_EQ(vhci.BusId(99), "");
}

TEST_F(VhciTest, FurtherControllersHavePortsToo)
{
    Write("status", std::string(s_titles) + "ss  0015 006 005 00010001 000003 2-1\n");
    Write("status.1", std::string(s_titles) + "ss  0031 004 000 00000000 000000 0-0\n");
    Write("attach", "");
    EXPECT_EQ(vhci.Attach(Vcam::LinkSpeed::Super, 1).port, 31u);
}

TEST_F(VhciTest, TellsWhatIsMissing)
{
    try {
        vhci.Attach(Vcam::LinkSpeed::Super, 1);
        ADD_FAILURE() << "there is no controller";
    } catch (const NoController &failure) {
        EXPECT_NE(std::string(failure.what()).find("sudo modprobe vhci_hcd"), std::string::npos) << failure.what();
    }
    Write("status", s_titles);
    try {
        vhci.Attach(Vcam::LinkSpeed::Super, 1);
        ADD_FAILURE() << "there is no port";
    } catch (const std::runtime_error &failure) {
        EXPECT_NE(std::string(failure.what()).find("all ports of vhci_hcd's ss hub are in use"), std::string::npos)
            << failure.what();
    }
}

TEST_F(VhciTest, OnlyRootMayPlugIn)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root may write everywhere";
    Write("status", std::string(s_titles) + "ss  0015 004 000 00000000 000000 0-0\n");
    Write("attach", "");
    std::filesystem::permissions(temp.Path() / "attach", std::filesystem::perms::owner_read);
    EXPECT_THROW(vhci.Attach(Vcam::LinkSpeed::Super, 1), NotPermitted);
}

TEST_F(VhciTest, ComesBackToItsPortOnceTheKernelHasLetGo)
{
    const std::string others = std::string(s_titles) + "ss  0015 004 000 00000000 000000 0-0\n";
    Write("status", others + "ss  0016 005 000 00000000 000000 0-0\n");
    Write("attach", "");
    std::filesystem::create_directories(temp.Path() / "devices" / "2-2");
    std::thread kernel([&] {
        Write("next", others + "ss  0016 004 000 00000000 000000 0-0\n");
        std::filesystem::rename(temp.Path() / "next", temp.Path() / "status");
        std::filesystem::remove(temp.Path() / "devices" / "2-2");
    });
    EXPECT_EQ(vhci.AttachAgain(Vcam::LinkSpeed::Super, 1, 16, "2-2").port, 16u);
    EXPECT_FALSE(std::filesystem::exists(temp.Path() / "devices" / "2-2"));
    kernel.join();
    EXPECT_EQ(vhci.AttachAgain(Vcam::LinkSpeed::Super, 1, 99, "").port, 15u) << "any port when its own is no more";
}

} // namespace Orvi::UsbIp::Test
