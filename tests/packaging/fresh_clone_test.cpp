// README.md, line by line, in a fresh clone of what is committed.
#include "tests/support/doc_examples.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

namespace vornak::test {
namespace {

TEST(Readme, WorksInAFreshClone)
{
    const TempDir home;
    const ProcessResult cloned = run({"git", "clone", "-q", VORNAK_SOURCE_DIR, home / "vornak"});
    if (cloned.status != 0) GTEST_SKIP() << cloned.err;
    expectDocExamples(readDocExamples(home / "vornak/README.md"),
                      "cd " + (home / "vornak") + "; HOME=" + std::string(home.path()) +
                          "; export HOME");
}

} // namespace
} // namespace vornak::test
