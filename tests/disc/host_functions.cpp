#include "tests/disc/host_functions.h"

#include "include/vornak_host.h"

#include <cerrno>
#include <dlfcn.h>
#include <unistd.h>

namespace {

/// The function that this program's own hides.
template <class Function>
Function *hidden(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

int Telmo_stringConvert2SystemCmdFilename(char *name)
{
    vornak::test::HostFunctions &host = vornak::test::hostFunctions();
    if (host.onConversion) host.onConversion();
    if (++host.conversions == host.failing) return -7;
    return hidden<int(char *)>(__func__)(name);
}

int Telmo_getUniqueNumer(void)
{
    const auto &number = vornak::test::hostFunctions().number;
    return number ? *number : hidden<int()>(__func__)();
}

extern "C" __attribute__((visibility("default"))) pid_t fork()
{
    errno = EAGAIN;
    return vornak::test::hostFunctions().canFork ? hidden<pid_t()>(__func__)() : -1;
}
