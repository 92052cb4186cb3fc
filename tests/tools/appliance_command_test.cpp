// The subcommands that ask the appliance, on a stand-in for one.
#include "tests/support/doc_examples.h"
#include "tests/support/private_mounts_test.h"
#include "tests/tools/stand_in_appliance.h"

#include <gtest/gtest.h>

#include <memory>

namespace vornak::test {
namespace {

class ApplianceCommandTest : public PrivateMountsTest {
protected:
    void SetUp() override
    {
        PrivateMountsTest::SetUp();
        if (IsSkipped()) return;
        appliance_ = std::make_unique<StandInAppliance>();
        if (!appliance_->isComplete()) GTEST_SKIP() << "not everything could be mounted";
    }

    void expectPage(const std::string &page, const std::string &end) const
    {
        const auto examples = readDocExamples(VORNAK_SOURCE_DIR + page);
        EXPECT_GE(examples.size(), 13U);
        expectDocExamples(examples, "", end, appliance_->run);
    }

    std::unique_ptr<StandInAppliance> appliance_;
};

TEST_F(ApplianceCommandTest, ThePageShowsWhatIsPrinted)
{
    appliance_->installQueryTool();
    appliance_->write("/answers/ENABLE", "TRUE\n");
    appliance_->write("/answers/Install_Path", "/share/vol1/Harvel\n");
    appliance_->write("/share/vol1/Harvel/gst-transcode-agent2", "");
    appliance_->write("/share/vol1/Harvel/gst-transcode-agent", "");
    appliance_->write("/tmp/.Harvel.alive", "");
    std::filesystem::create_directory(appliance_->at("/share/vol1/Public"));
    appliance_->link("vol1/Public", "/share/Public");

    expectPage("/docs/appliance.md", "");
}

TEST_F(ApplianceCommandTest, ATranscriptIsWhatHappens)
{
    expectPage("/tests/tools/transcripts/appliance.md", kShowStatus);
}

} // namespace
} // namespace vornak::test
