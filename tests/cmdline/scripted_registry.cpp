#include "tests/cmdline/scripted_registry.h"

#include "include/vornak_host.h"

#include <algorithm>

namespace vornak::test {

ScriptedRegistry g_registry;

namespace {

void noteBuffer(const char *buffer)
{
    if (std::any_of(buffer, buffer + VORNAK_NAME_SIZE, [](char c) { return c != '\0'; }))
        g_registry.clearedBuffers = false;
}

/// Like a careless host: fills the whole buffer, without a NUL where the text is that long.
int answer(char *buffer, const std::string *text)
{
    ++g_registry.calls;
    noteBuffer(buffer);
    if (!text) return -1;
    text->copy(buffer, VORNAK_NAME_SIZE);
    return 0;
}

template <class Map, class Key>
const typename Map::mapped_type *find(const Map &map, const Key &key)
{
    const auto found = map.find(key);
    return found == map.end() ? nullptr : &found->second;
}

} // namespace
} // namespace vornak::test

using namespace vornak::test;

int CodecIDToName(char *name, int id)
{
    return answer(name, find(g_registry.codecs, id));
}

int ProfileIDToName(char *name, int profile, int codecId)
{
    return answer(name, find(g_registry.profiles, std::pair(codecId, profile)));
}

int ContainerFormatIDToName(char *name, char *subtype, int id)
{
    const auto *container = find(g_registry.containers, id);
    noteBuffer(subtype);
    if (container && container->subtype) container->subtype->copy(subtype, VORNAK_NAME_SIZE);
    return answer(name, container ? &container->name : nullptr);
}
