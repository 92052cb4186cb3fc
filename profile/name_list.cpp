#include "profile/name_list.h"

#include <cstdio>

namespace vornak {

const char *NameList::next()
{
    while (*rest_ != '\0' && !isCut_)
        if (takeName() && name_[0] != '\0') return name_;
    return nullptr;
}

/// Takes what stands before the next bar, perhaps nothing. False: the list is cut within it.
bool NameList::takeName()
{
    const char *const begin = rest_;
    std::size_t length = 0;
    for (; *rest_ != '\0' && *rest_ != '|'; ++rest_) {
        if (*rest_ == ' ') continue;
        isCut_ = seen_++ == kLongest;
        if (isCut_) return false;
        name_[length++] = *rest_;
    }
    name_[length] = '\0';
    written_ = {begin, static_cast<std::size_t>(rest_ - begin)};
    if (*rest_ == '\0') return true;
    isCut_ = seen_++ == kLongest;
    ++rest_;
    return true;
}

int parseNameList(const char *text, int (*lookup)(const char *name, int *bit), const char *kind)
{
    NameList names(text);
    int bits = 0;
    while (const char *name = names.next()) {
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
