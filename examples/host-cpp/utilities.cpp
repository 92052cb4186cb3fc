// The rest of what a host provides.
#include <vornak_host.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <sys/random.h>
#include <sys/stat.h>

int g_debug_level = 0;

// Quoted whatever it holds; "./" keeps a name from being read as an option or as LABEL=.
int Telmo_stringConvert2SystemCmdFilename(char *name)
{
    const bool needsFolder =
        *name == '-' || std::string(name, std::strcspn(name, "/")).find('=') != std::string::npos;
    std::string quoted = needsFolder ? "./'" : "'";
    for (const char *c = name; *c; ++c) quoted += *c == '\'' ? "'\\''" : std::string(1, *c);
    quoted += '\'';
    if (quoted.size() >= VORNAK_SHELL_NAME_SIZE) return 1;
    std::memcpy(name, quoted.c_str(), quoted.size() + 1);
    return 0;
}

// 31 bits that nobody can guess, and that no mount point has.
int Telmo_getUniqueNumer(void)
{
    for (;;) {
        unsigned bits = 0;
        if (getrandom(&bits, sizeof bits, 0) != sizeof bits) continue;
        const int number = static_cast<int>(bits & 0x7fffffff);
        char path[64];
        std::snprintf(path, sizeof path, VORNAK_MOUNT_PREFIX "%d", number);
        struct stat status;
        if (lstat(path, &status) != 0) return number;
    }
}

void mystrcmp2(const char *text, const char *word, int *result)
{
    *result = std::strncmp(text, word, std::strlen(word)) == 0;
}
