#include "profile/name_list.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

namespace vornak {
namespace {

constexpr std::size_t kListSize = 1024; // bytes of a list without its blanks
constexpr char kSeparator[] = "|";

void copyWithoutBlanks(const char *text, char (&list)[kListSize])
{
    std::size_t length = 0;
    for (; *text != '\0'; ++text) {
        if (*text == ' ') continue;
        if (length == kListSize - 1) break;
        list[length++] = *text;
    }
    list[length] = '\0';
    if (*text == '\0' || *text == *kSeparator) return;
    // the list goes on within a name: that one is left out
    char *lastSeparator = std::strrchr(list, *kSeparator);
    *(lastSeparator ? lastSeparator : list) = '\0';
}

} // namespace

int parseNameList(const char *text, int (*lookup)(const char *name, int *bit), const char *kind)
{
    char list[kListSize];
    copyWithoutBlanks(text, list);
    int bits = 0;
    char *rest;
    for (const char *name = strtok_r(list, kSeparator, &rest); name;
         name = strtok_r(nullptr, kSeparator, &rest)) {
        int bit = 0;
        if (lookup(name, &bit) == 0)
            bits |= bit;
        else
            std::fprintf(stderr, "[ParseSingleTranscodeXML:%d] skip unknow %s name: %s !\n",
                         __LINE__, kind, name);
    }
    return bits;
}

} // namespace vornak
