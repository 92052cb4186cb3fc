// The system-wide lock around the host's shared database: Vornak_Mutex_…().
#include "include/vornak.h"

#include <cerrno>
#include <fcntl.h>

static_assert(SEM_FAILED == nullptr, "the null handle is the failed open");

sem_t *vornak_db_mutex = nullptr;

namespace vornak {
namespace {

enum { kRepair = 0, kAttach = 1 }; // modes of Vornak_Mutex_Init()

/// Passes the open handle to a call of the C library.
int withHandle(int (*call)(sem_t *))
{
    if (vornak_db_mutex) return call(vornak_db_mutex);
    errno = EINVAL;
    return -1;
}

} // namespace
} // namespace vornak

int Vornak_Mutex_Init(int mode)
{
    using namespace vornak;
    if (mode != kRepair && mode != kAttach) return 1;
    vornak_db_mutex = sem_open("VORNAK_DB_SEM", O_CREAT, 0777, 1);
    if (!vornak_db_mutex) return 1;
    if (mode == kAttach) return 0;

    int count = 1;
    sem_getvalue(vornak_db_mutex, &count);
    if (count == 0) sem_post(vornak_db_mutex);
    return 0;
}

int Vornak_Mutex_Lock()
{
    return vornak::withHandle(sem_wait);
}

int Vornak_Mutex_Unlock()
{
    return vornak::withHandle(sem_post);
}

int Vornak_Mutex_Close()
{
    return vornak::withHandle(sem_close);
}
