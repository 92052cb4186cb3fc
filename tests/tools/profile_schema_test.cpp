// The schema of profiles and the findings: what one refuses, the other tells.
#include "tools/check/checks.h"
#include "tools/check/schema.h"

#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>
#include <random>

namespace vornak::test {
namespace {

const std::string kSchema = VORNAK_SOURCE_DIR "/examples/profile.rng";

class ProfileSchema : public testing::Test {
protected:
    void SetUp() override
    {
        if (run({"sh", "-c", "command -v xmllint"}).status != 0)
            GTEST_SKIP() << "xmllint (libxml2-utils) isn't installed";
    }

    /// Which of the files are refused.
    static std::vector<bool> refused(const std::vector<std::string> &files)
    {
        std::vector<std::string> words = {"xmllint", "--noout", "--relaxng", kSchema};
        words.insert(words.end(), files.begin(), files.end());
        const std::string said = "\n" + run(words).err;
        std::vector<bool> refused;
        for (const std::string &file : files) {
            refused.push_back(said.find("\n" + file + " fails to validate\n") != std::string::npos);
            const bool isTaken = said.find("\n" + file + " validates\n") != std::string::npos;
            EXPECT_NE(refused.back(), isTaken) << file << said.substr(0, 2000);
        }
        return refused;
    }

    const TempDir dir_;
};

TEST_F(ProfileSchema, RefusesTheExamplesThatTheListSays)
{
    std::vector<std::string> files;
    std::vector<bool> expected;
    const auto add = [&](const std::string &part, bool isRefused) {
        files.push_back(dir_.write(std::to_string(files.size()), tool::exampleProfile(part)));
        expected.push_back(isRefused);
    };
    for (const tool::FaultKind &kind : tool::faultKinds()) {
        const bool isWellFormed = kind.fault != tool::Fault::BareAmpersand &&
                                  kind.fault != tool::Fault::NotWellFormed &&
                                  kind.fault != tool::Fault::DuplicateAttribute &&
                                  kind.fault != tool::Fault::EncodingMismatch;
        if (isWellFormed) add(kind.bad, kind.isRefusedBySchema);
        if (kind.fault != tool::Fault::UselessIgnore) add(kind.good, false);
    }
    const std::vector<bool> found = refused(files);
    for (std::size_t i = 0; i < files.size(); ++i)
        EXPECT_EQ(found[i], expected[i]) << run({"cat", files[i]}).out;
}

/// Changes one thing somewhere in a profile, at random.
void spoil(pugi::xml_document &profile, std::mt19937 &random)
{
    const auto below = [&](std::size_t count) { return random() % count; };
    const auto elements = profile.select_nodes("//*");
    const auto pick = [&] { return elements[below(elements.size())].node(); };
    constexpr const char *s_Values[] = {"",  " 6",  "6 ", "+6",  "-1", "-0", "K",          "1K5",
                                        "6", "5.1", "1M", "0x1", "2",  "1",  "2147483648", "٦",
                                        "0", "\t1", "k5", "yes", "-",  "--1"};
    const auto rows = tool::attributeRows();
    const auto kinds = tool::elementRows();
    pugi::xml_node element = pick();
    switch (below(8)) {
    case 0: // of any element
        element.append_attribute(below(2) == 0 ? "SIZE" : "size").set_value("1");
        break;
    case 1:
        element.remove_attribute(element.first_attribute());
        break;
    case 2:
        element.append_copy(pick());
        break;
    case 3:
        element.append_child(below(2) == 0 ? pugi::node_pcdata : pugi::node_cdata).set_value("x");
        break;
    case 4:
        element.set_name(below(4) == 0 ? "OTHER" : kinds[below(kinds.size())].name);
        break;
    case 5:
        if (element.parent().parent()) element.parent().remove_child(element);
        break;
    default: { // a value, of an attribute that it has or may have
        const char *name = rows[below(rows.size())].name;
        const unsigned own = tool::findElement(element.name())->element;
        if ((tool::findAttribute(name)->elements & own) == 0) return spoil(profile, random);
        if (!element.attribute(name)) element.append_attribute(name);
        element.attribute(name).set_value(s_Values[below(std::size(s_Values))]);
    }
    }
}

TEST_F(ProfileSchema, RefusesNothingOfWhichNothingIsFound)
{
    std::mt19937 random(1);
    std::vector<std::string> files;
    for (int i = 0; i < 1500; ++i) {
        pugi::xml_document profile;
        profile.load_string(tool::exampleProfile("<DEVICE NAME=\"T\">…</DEVICE>").c_str());
        spoil(profile, random);
        files.push_back(dir_ / std::to_string(i));
        profile.save_file(files.back().c_str());
    }
    const std::vector<bool> found = refused(files);
    int count = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!found[i]) continue;
        ++count;
        try {
            EXPECT_FALSE(tool::checkProfile(files[i]).empty()) << run({"cat", files[i]}).out;
        } catch (const tool::ProfileError &) { // which is a finding
        }
    }
    EXPECT_GE(count, 300);
}

} // namespace
} // namespace vornak::test
