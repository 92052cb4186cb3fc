// The main function of every test program.
#include <csignal>
#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    // A shell's background job ignores SIGINT, and nohup's SIGHUP. The tests send both, to this
    // program and to what they start, which would go on for ever.
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGALRM, SIGTERM, SIGCHLD})
        std::signal(signal, SIG_DFL);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
