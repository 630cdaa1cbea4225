// The PROM walkers over a fake PROM. The groups themselves, failures
// included, are scanned as simulated machines in tests/machines.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "framework/Trace.h"
#include "invscan/solaris/processor/ProcessorGroup.h"
#include "support/FakeSystem.h"

namespace {

// A PROM of three nodes: root 1 with children 2 and 3.
int promIoctl(int request, void* arg)
{
    auto* p = static_cast<openpromio*>(arg);
    if (p->oprom_size < sizeof(int)) {
        errno = EINVAL;
        return -1;
    }
    const int node = p->oprom_node;
    if (request == OPROMNEXT) {
        p->oprom_node = node == 0 ? 1 : node == 2 ? 3 : 0;
        return 0;
    }
    if (request == OPROMCHILD) {
        p->oprom_node = node == 1 ? 2 : 0;
        return 0;
    }
    errno = EINVAL;
    return -1;
}

TEST(PromWalk, PeerAndChildOverTheDevice)
{
    testsupport::FakeSystem os;
    os.devices["/dev/openprom"].ioctl = promIoctl;
    testsupport::ScopedSystem scope(os);
    const int fd = os.open("/dev/openprom", 0);
    ASSERT_GE(fd, 0);
    const int root = peer(0, fd);
    EXPECT_EQ(root, 1);
    EXPECT_EQ(child(root, fd), 2);
    EXPECT_EQ(peer(2, fd), 3);
    EXPECT_EQ(peer(3, fd), 0);
    EXPECT_EQ(child(3, fd), 0);

    trace::Capture capture;
    EXPECT_EQ(peer(1, 12345), -1);  // not an open descriptor
    EXPECT_EQ(child(1, 12345), -1);
    EXPECT_TRUE(capture.contains("child failed " + std::string(std::strerror(EBADF))));
    EXPECT_TRUE(capture.contains("node 00000001 fd 12345"));
    os.close(fd);
}

TEST(PromWalk, RequestBuffers)
{
    openpromio* p = opp_zalloc(16);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->oprom_size, 16u);
    const auto* bytes = reinterpret_cast<const unsigned char*>(p->oprom_array);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(bytes[i], 0) << i;
    opp_free(p);
    opp_free(nullptr);
}

}  // namespace
