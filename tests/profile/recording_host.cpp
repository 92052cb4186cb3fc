#include "tests/profile/recording_host.h"

#include "include/vornak_host.h"

#include <cstring>
#include <dlfcn.h>
#include <mutex>
#include <pthread.h>
#include <stdexcept>
#include <utility>

namespace {

struct Record {
    std::mutex mutex;
    std::string calls;

    template <class... Pieces>
    void add(Pieces... pieces)
    {
        const std::lock_guard lock(mutex);
        ((calls += pieces), ...);
    }
} g_registry, g_nodes;

struct Name {
    const char *name;
    int id;
};

constexpr Name s_Codecs[] = {{"h264", 28},   {"mpeg2", 2}, {"aac", 86018},
                             {"mp3", 86017}, {"any", 0},   {"unset", -1}};
constexpr Name s_Profiles[] = {{"main", 1}, {"high", 2}, {"tab\t", 4}};
constexpr Name s_Exceptions[] = {{"interlaced", 1}, {"10bit", 2}};
constexpr Name s_Containers[] = {{"mp4", 8}, {"ts", 9}};

template <std::size_t Size>
int find(const Name (&names)[Size], const char *name, int *id)
{
    if (std::strcmp(name, "throws") == 0) throw std::runtime_error(name);
    if (std::strcmp(name, "cancelled") == 0) {
        pthread_cancel(pthread_self());
        pthread_testcancel();
    }
    *id = 7777;
    for (const Name &known : names) {
        if (std::strcmp(known.name, name) != 0) continue;
        *id = known.id;
        return 0;
    }
    return -5;
}

/// The stand-in host's definition of a function that this file defines, too.
template <class Function>
Function *next(const char *symbol)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

int CodecNameToID(const char *name, int *id)
{
    g_registry.add("codec(", name, ") ");
    return find(s_Codecs, name, id);
}

int ProfileNameToID(const char *name, int *bit)
{
    g_registry.add("profile(", name, ") ");
    return find(s_Profiles, name, bit);
}

int PlayExceptionNameToID(const char *name, int *bit)
{
    g_registry.add("exception(", name, ") ");
    return find(s_Exceptions, name, bit);
}

int ContainerFormatNameToID(const char *name, const char *subtype, int *id)
{
    g_registry.add("container(", name, ",", subtype ? subtype : "null", ") ");
    const int result = find(s_Containers, name, id);
    if (subtype && std::strcmp(subtype, "m4a") == 0) *id |= 0x10000;
    return result;
}

XMLNode XMLNode::openFileHelper(const char *path, int *error, const char *tag)
{
    g_nodes.add("open(", tag ? tag : "null", ") ");
    static const auto open =
        next<XMLNode(const char *, int *, const char *)>("_ZN7XMLNode14openFileHelperEPKcPiS1_");
    return open(path, error, tag);
}

XMLNode XMLNode::getChildNode(const char *name, int index) const
{
    g_nodes.add(name, "[", std::to_string(index), "] ");
    static const auto get =
        next<XMLNode(const XMLNode *, const char *, int)>("_ZNK7XMLNode12getChildNodeEPKci");
    return get(this, name, index);
}

int XMLNode::nChildNode(const char *name) const
{
    g_nodes.add("count(", name, ") ");
    static const auto count =
        next<int(const XMLNode *, const char *)>("_ZNK7XMLNode10nChildNodeEPKc");
    return count(this, name);
}

const char *XMLNode::getAttribute(const char *name, int index) const
{
    g_nodes.add("n:", name, " ");
    static const auto get =
        next<const char *(const XMLNode *, const char *, int)>("_ZNK7XMLNode12getAttributeEPKci");
    return index == 0 ? get(this, name, index) : nullptr;
}

const char *XMLNode::getAttribute(const char *name, int *iterator) const
{
    g_nodes.add("p:", name, " ");
    static const auto get =
        next<const char *(const XMLNode *, const char *, int)>("_ZNK7XMLNode12getAttributeEPKci");
    return iterator ? nullptr : get(this, name, 0);
}

std::string vornak::test::takeRegistryCalls()
{
    return std::exchange(g_registry.calls, {});
}

std::string vornak::test::takeNodeCalls()
{
    return std::exchange(g_nodes.calls, {});
}
