// A readdir() that fails when it is told to, for programs that export it with readdir_fault.cpp.
#pragma once

namespace vornak::test {

struct ReaddirFault {
    int calls = 0;   ///< so far
    int failing = 0; ///< the call, counted from 1, that fails; 0: none
    int error = 0;   ///< its errno
};

inline ReaddirFault &readdirFault()
{
    static ReaddirFault fault;
    return fault;
}

} // namespace vornak::test
