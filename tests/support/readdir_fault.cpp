#include "tests/support/readdir_fault.h"

#include <cerrno>
#include <dirent.h>
#include <dlfcn.h>

// Under 64-bit file offsets the C library's header gives the function its other name.
extern "C" __attribute__((visibility("default"))) dirent *readdir(DIR *folder)
{
    static auto *const real = reinterpret_cast<dirent *(*)(DIR *)>(dlsym(RTLD_NEXT, "readdir64"));
    vornak::test::ReaddirFault &fault = vornak::test::readdirFault();
    if (++fault.calls != fault.failing) return real(folder);
    errno = fault.error;
    return nullptr;
}
