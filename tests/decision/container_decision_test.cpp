#include "tests/decision/rules.h"

#include <gtest/gtest.h>

namespace vornak::test {
namespace {

constexpr int subtype(int number, int container)
{
    return number << 16 | container;
}

struct Call {
    int source;
    int transcoding = 0, prefer = 0, force = 0;
};

TEST(ContainerDecision, chooses)
{
    const int mp4 = kMp4, ts = kTransportStream;
    const struct {
        const char *what;
        std::vector<Format> table;
        Call call;
        int result, index, output;
    } cases[] = {
        {"a source's subtype against none", {entry(mp4)}, {subtype(3, mp4)}, 0, 0, mp4},
        {"the same subtype", {entry(subtype(3, mp4))}, {subtype(3, mp4)}, 0, 0, subtype(3, mp4)},
        {"another subtype", {entry(subtype(4, mp4))}, {subtype(3, mp4)}, 0, 256, subtype(4, mp4)},
        {"no subtype in the source", {entry(subtype(4, mp4))}, {mp4}, 0, 0, subtype(4, mp4)},
        {"a negative id is a subtype", {entry(mp4)}, {subtype(-2, mp4)}, 0, 0, mp4},
        {"the wildcard stands first", {entry(0), entry(mp4)}, {mp4}, 0, 0, mp4},
        {"an exact entry stands first", {entry(mp4), entry(0)}, {mp4}, 0, 0, mp4},
        {"the wildcard keeps the source", {entry(ts), entry(0)}, {mp4}, 0, 1, mp4},
        {"a wildcard with a subtype", {entry(subtype(5, 0))}, {mp4}, 0, 0, subtype(5, 0)},
        {"nothing agrees", {entry(ts), entry(2)}, {mp4}, 0, 256, ts},
        {"nothing agrees, forbidden", {entry(ts, 0, 1)}, {mp4}, 3, 256, ts},
        {"only 1 forbids", {entry(ts, 0, 2)}, {mp4}, 0, 256, ts},
        {"only the first entry forbids", {entry(ts), entry(2, 0, 1)}, {mp4}, 0, 256, ts},
        {"the preferred one", {entry(mp4), entry(ts)}, {mp4, 0, ts}, 0, 1, ts},
        {"one that is not listed", {entry(mp4), entry(ts)}, {mp4, 0, 12}, 0, 0, mp4},
        {"a preference takes no wildcard", {entry(mp4), entry(0)}, {mp4, 0, 12}, 0, 0, mp4},
        {"a negative preference is none", {entry(mp4), entry(ts)}, {mp4, 0, -ts}, 0, 0, mp4},
        {"preferred, though nothing agrees", {entry(2), entry(ts)}, {mp4, 0, ts}, 0, 1, ts},
        {"the output's entry", {entry(ts), entry(mp4)}, {mp4, 1}, 0, 0, ts},
        {"the preferred output", {entry(ts), entry(mp4)}, {mp4, 1, mp4}, 0, 1, mp4},
        {"only 1 transcodes", {entry(ts), entry(mp4)}, {mp4, 2}, 0, 1, mp4},
        {"a preferred output without seeking",
         {entry(ts), entry(2), entry(12, 1)},
         {mp4, 1, 12},
         0,
         256,
         ts},
        {"an output without seeking", {entry(ts, 1)}, {mp4, 1}, 2, 256, ts},
        {"the same, forbidden", {entry(ts, 1, 1)}, {mp4, 1}, 3, 256, ts},
        {"seeking matters in an output alone", {entry(mp4, 1)}, {mp4}, 0, 0, mp4},
        {"forced", {entry(mp4)}, {mp4, 0, 0, 1}, 0, 256, mp4},
        {"forced, forbidden", {entry(mp4, 1, 1)}, {mp4, 1, 0, -1}, 3, 256, mp4},
        {"forced, no seeking", {entry(mp4, 1)}, {mp4, 1, 0, 1}, 0, 256, mp4},
        {"an empty table", {}, {mp4}, 0, 256, -1},
        {"an empty table's output", {}, {mp4, 1}, 0, 0, -1},
    };
    for (auto c : cases) {
        char mime[] = "mime", pn[] = "pn";
        c.table.push_back(entry(-1));
        if (c.table.size() > 1) {
            auto &used = c.table[static_cast<std::size_t>(c.index & 255)];
            used.mime = mime;
            used.pn = pn;
        }
        Outcome o;
        o.result = FindFormatTranscode(c.table.data(), c.call.source, &o.format, &o.mime, &o.pn,
                                       &o.dst, c.call.transcoding, c.call.prefer, c.call.force);
        EXPECT_EQ(o.result, c.result) << c.what;
        EXPECT_EQ(o.format, c.index) << c.what;
        EXPECT_EQ(o.dst, c.output) << c.what;
        EXPECT_EQ(o.mime, c.table.size() > 1 ? mime : nullptr) << c.what;
        EXPECT_EQ(o.pn, c.table.size() > 1 ? pn : nullptr) << c.what;
    }
}

TEST(ContainerDecision, refusesNullAndSkipsOptionalOutputs)
{
    Format table[] = {entry(kMp4), entry(-1)};
    int index = kUntouched, output = kUntouched;
    EXPECT_EQ(FindFormatTranscode(nullptr, 8, &index, nullptr, nullptr, &output, 0, 0, 0), 1);
    EXPECT_EQ(FindFormatTranscode(table, 8, nullptr, nullptr, nullptr, &output, 0, 0, 0), 1);
    EXPECT_EQ(index, kUntouched);
    EXPECT_EQ(output, kUntouched);
    EXPECT_EQ(FindFormatTranscode(table, 8, &index, nullptr, nullptr, nullptr, 0, 0, 0), 0);
    EXPECT_EQ(index, 0);
}

TEST(ContainerDecision, neverChoosesAnEntryPast255)
{
    std::vector<Format> table(300, entry(kTransportStream));
    table.push_back(entry(-1));
    const auto chosen = [&](int prefer) {
        int index = kUntouched;
        FindFormatTranscode(table.data(), kMp4, &index, nullptr, nullptr, nullptr, 0, prefer, 0);
        return index;
    };
    table[256].formatId = kMp4;
    EXPECT_EQ(chosen(0), 256);
    EXPECT_EQ(chosen(kMp4), 256);
    table[255].formatId = kMp4;
    EXPECT_EQ(chosen(0), 255);
    EXPECT_EQ(chosen(kMp4), 255);
}

} // namespace
} // namespace vornak::test
