// Images of discs, and another root directory to mount them in.
#pragma once

#include "tests/support/private_mounts.h"
#include "tests/support/process.h"
#include "tests/support/temp_dir.h"

namespace vornak::test {

/// Makes dvd.iso, a squashfs with the title VTS_02_1.VOB, and bluray.iso, an ext4 with the stream
/// 00001.m2ts, in a directory. Returns why they can't be mounted here, or the empty text.
inline std::string makeDiscImages(const std::string &folder)
{
    const TempDir source;
    source.write("VIDEO_TS/VIDEO_TS.IFO", "");
    source.write("VIDEO_TS/VTS_02_1.VOB", "film");
    const std::string dvd = folder + "dvd.iso", place = source / "trial";
    if (run({"mksquashfs", source / "", dvd, "-quiet", "-no-progress"}).status != 0)
        return "mksquashfs makes no image";
    std::filesystem::remove_all(source / "VIDEO_TS");
    source.write("BDMV/index.bdmv", "");
    source.write("BDMV/STREAM/00001.m2ts", "film");
    if (run({"mkfs.ext4", "-q", "-d", source / "", folder + "bluray.iso", "4M"}).status != 0)
        return "mkfs.ext4 makes no image";
    std::filesystem::create_directory(place);
    const ProcessResult mounted = run({"mount", "-o", "loop,ro", dvd, place});
    return mounted.status != 0 ? "no loop mount: " + mounted.err : run({"umount", place}).err;
}

/// A root directory at /tmp/root with all that mounting needs, and the DVD's image in /images.
/// For a private /tmp: it is left where it is, since the machine's devices are mounted in it.
class OtherRoot {
public:
    OtherRoot()
        : whyNot_(run({"sh", "-ec", kMake}).err),
          devices_("/dev", "/tmp/root/dev", nullptr, MS_BIND),
          processes_("/proc", "/tmp/root/proc", nullptr, MS_BIND)
    {
        if (!devices_ || !processes_) whyNot_ += "no bind mounts";
    }

    /// Why nothing can be mounted in it, or the empty text.
    const std::string &whyNot() const { return whyNot_; }

private:
    static constexpr char kMake[] = R"sh(
mkdir -p /tmp/root/dev /tmp/root/proc /tmp/root/tmp /tmp/root/images
cp /tmp/dvd.iso "/tmp/root/images/a 'film'.iso"
for program in /bin/sh "$(command -v mount)" "$(command -v umount)" "$(command -v rmdir)"; do
    cp -L --parents "$program" $(ldd "$program" | grep -o '/[^ ]*') /tmp/root
done
)sh";

    std::string whyNot_;
    ScopedMount devices_, processes_;
};

} // namespace vornak::test
