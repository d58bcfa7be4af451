#include "hostfixture.h"

namespace {

using namespace support;
using testing::ElementsAre;
using testing::HasSubstr;

const auto& published = settings.currentStatus.patchesToInstall;

/// The commands on a store without a host.
struct DeploymentCommandsTest : HostTest {
    DeploymentCommandsTest() { server.start(); }
};

} // namespace

TEST_F(DeploymentCommandsTest, refuseWhatTheyCannotRead)
{
    put(settings.installation.deploymentQueue, {{"a", 1}});
    put(published, {{"a", 1}});
    expectOneLineEach({
        {"queue", 1, "the queue cannot be read: "},
        {"queue --pop", 1, "the queue cannot be read: "},
        {"queue --push ALL", 1, "the queue cannot be read: "},
        {"queue --remove ALL", 1, "the queue cannot be read: "},
        {"patches", 1, "holds no list"},
    });
    client.setRefuse(true);
    putQueue({});
    expectOneLineEach({{"queue --push ALL", 3, "unreachable"}});
}

TEST_F(DeploymentCommandsTest, workOnTheQueueInItsOrder)
{
    EXPECT_EQ(call("queue").output, "the queue is empty\n");
    for (const auto* descriptor : {"ALL", "PRODUCT=Sample Reader", "all"})
        EXPECT_EQ(call("queue --push", descriptor).code, 0);
    expectOneLineEach({{"queue --push ALL", 1, "\"ALL\" is in the queue already"}});
    EXPECT_THAT(queue(), ElementsAre("ALL", "PRODUCT=Sample Reader", "all"));
    EXPECT_EQ(parseLines(call("--json queue").output).at(1).at("descriptor"), "PRODUCT=Sample Reader");
    const auto listed = call("queue").output;
    EXPECT_THAT(listed.substr(0, listed.find('\n')), testing::MatchesRegex("\\d+-\\d+-\\d+ \\d+:\\d+:\\d+  ALL"));
    EXPECT_THAT(listed, HasSubstr("  PRODUCT=Sample Reader\n"));
    EXPECT_THAT(listed, testing::EndsWith("  all  (means no update)\n"));
    EXPECT_EQ(callJson("status").at("store").at("queue"), 3);
    EXPECT_EQ(call("queue --pop").output, "took ALL\n");
    EXPECT_EQ(call("queue --remove all").code, 0);
    EXPECT_THAT(queue(), ElementsAre("PRODUCT=Sample Reader"));
}

TEST_F(DeploymentCommandsTest, showAndFollowThePublishedPatches)
{
    EXPECT_EQ(call("patches").output, "nothing was published yet\n");
    put(published, json::array());
    EXPECT_EQ(call("patches").output, "no patches to install\n");
    put(published, {{{"user_friendly_update_name", "L\xC3\xA9o 2"}, {"product_name", "Reader"}, {"severity", 1},
                        {"status", {{"value", "installation_failed"}, {"code", "17"}}}},
                       {{"update_name", "kb"}, {"severity", 3}, {"status", {{"value", "file_downloading"}}}}});
    EXPECT_EQ(call("patches").output, "NAME   PRODUCT  SEVERITY  STATE                CODE\n"
                                      "L\xC3\xA9o 2  Reader   critical  installation_failed  17\n"
                                      "kb              3         file_downloading\n");
    EXPECT_EQ(parseLines(call("--json patches").output).size(), 2u);

    const auto follower = tarnhost("--json patches --follow --count 2");
    for (int serial = 0; !follower.wait(std::chrono::milliseconds(10)); ++serial)
        put(published, {{{"update_name", std::to_string(serial)}}});
    const auto shown = parseLines(follower.output());
    ASSERT_EQ(shown.size(), 2u) << follower.output();
    EXPECT_NE(shown[0].at("patches"), shown[1].at("patches"));
}
