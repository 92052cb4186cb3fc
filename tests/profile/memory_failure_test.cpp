// Loads a profile again and again, each time with another allocation that fails. The program
// brings its own allocation functions, which come before those of the C library.
#include "tests/profile/profile_fixture.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <new>

namespace {

struct Allocations {
    long made = 0;         // since the count began
    long live = 0;         // of all those made
    long failing = 0;      // the one that fails; 0: none
    bool allAfter = false; // those after it, too
} g_allocations;

// What dlsym() itself allocates comes from here.
alignas(std::max_align_t) char g_arena[4096];
std::size_t g_arenaUsed = 0;

bool isOfArena(const void *block)
{
    const auto at = reinterpret_cast<std::uintptr_t>(block);
    const auto begin = reinterpret_cast<std::uintptr_t>(g_arena);
    return at >= begin && at < begin + sizeof g_arena;
}

void *takeFromArena(std::size_t size)
{
    void *block = g_arena + g_arenaUsed;
    g_arenaUsed += (size + 15) / 16 * 16;
    return g_arenaUsed <= sizeof g_arena ? block : nullptr;
}

template <class Function>
Function *findNext(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

/// Whether the allocation that is asked for now has to fail.
bool fails()
{
    Allocations &all = g_allocations;
    ++all.made;
    if (all.failing == 0) return false;
    return all.made == all.failing || (all.allAfter && all.made > all.failing);
}

void *countLive(void *block)
{
    if (block) ++g_allocations.live;
    return block;
}

} // namespace

extern "C" {

void *calloc(std::size_t count, std::size_t size)
{
    static bool finding = false;
    if (finding) return takeFromArena(count * size);
    finding = true;
    static const auto next = findNext<void *(std::size_t, std::size_t)>("calloc");
    finding = false;
    return fails() ? nullptr : countLive(next(count, size));
}

void *malloc(std::size_t size)
{
    static bool finding = false;
    if (finding) return takeFromArena(size);
    finding = true;
    static const auto next = findNext<void *(std::size_t)>("malloc");
    finding = false;
    return fails() ? nullptr : countLive(next(size));
}

void free(void *block)
{
    static const auto next = findNext<void(void *)>("free");
    if (!block || isOfArena(block)) return;
    --g_allocations.live;
    next(block);
}

char *strdup(const char *text)
{
    const std::size_t size = std::strlen(text) + 1;
    void *copy = malloc(size);
    return copy ? static_cast<char *>(std::memcpy(copy, text, size)) : nullptr;
}

} // extern "C"

void *operator new(std::size_t size)
{
    void *block = malloc(size);
    return block ? block : throw std::bad_alloc();
}

void operator delete(void *block) noexcept
{
    free(block);
}

void operator delete(void *block, std::size_t) noexcept
{
    free(block);
}

namespace vornak::test {
namespace {

class MemoryFailureTest : public ProfileFixture {
protected:
    /// Loads with the `failing`-th allocation failing; the blocks that stay behind go to `left`.
    LoadedProfile loadFailing(const char *path, long failing, bool allAfter, long &left)
    {
        const long before = g_allocations.live;
        g_allocations.made = 0;
        g_allocations.allAfter = allAfter;
        g_allocations.failing = failing;
        LoadedProfile profile(ParseSingleTranscodeXML(path, kBothSections, 0, 0));
        g_allocations.failing = 0;
        left = g_allocations.live - before;
        return profile;
    }
};

TEST_F(MemoryFailureTest, LoadsWholeOrNotAtAll)
{
    const std::string audio =
        "<ACODEC NAME='aac' OPTION='a' MAXFREQUENCY='48K'><FORMAT NAME='mp4' MIME='m' PN='p' "
        "OPTION='f'/><FORMAT NAME='mpegts' OPTION='f'/></ACODEC><ACODEC NAME='mp3' OPTION='a'/>"
        "<ACODEC NAME='any' OPTION='a'><FORMAT NAME='mp4' MIME='m'/></ACODEC>";
    const std::string path = files_.write("profile.xml", "<DEVICE NAME='d'><MUSIC>" + audio +
                                                             "</MUSIC><VIDEO><VCODEC NAME='h264' "
                                                             "OPTION='v' PROFILE='main|high'>" +
                                                             audio +
                                                             "</VCODEC><VCODEC NAME='h264' "
                                                             "OPTION='v'/><VCODEC NAME='any'>" +
                                                             audio + "</VCODEC></VIDEO></DEVICE>");
    const std::string whole = describe(*loadFile(path));
    ASSERT_NE(whole.find("option='f'"), std::string::npos) << whole;

    for (const bool allAfter : {false, true}) {
        long left = 0;
        loadFailing(path.c_str(), 1, allAfter, left); // whatever the first throw keeps for later
        long failing = 0;
        for (bool failed = true; failed;) {
            const LoadedProfile profile = loadFailing(path.c_str(), ++failing, allAfter, left);
            failed = g_allocations.made >= failing;
            if (profile) {
                EXPECT_FALSE(failed) << failing;
                EXPECT_EQ(describe(*profile), whole);
            } else {
                EXPECT_EQ(left, 0) << failing;
            }
            ASSERT_TRUE(failed || profile);
        }
        EXPECT_GT(failing, 50); // the blocks of the profile alone are that many
    }
}

} // namespace
} // namespace vornak::test
