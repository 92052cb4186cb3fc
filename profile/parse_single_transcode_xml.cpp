#include "include/vornak.h"

#include "profile/profile_release.h"
#include "profile/read_rules.h"
#include "profile/rule_kinds.h"

#include <cstdlib>
#include <cxxabi.h>
#include <new>

namespace vornak {
namespace {

ProfileOwner allocateProfile()
{
    ProfileOwner profile(
        static_cast<TRANSCODE_DEVICE_PROFILE_ST *>(std::calloc(1, sizeof(*profile))));
    if (!profile) throw std::bad_alloc();
    return profile;
}

void loadMusic(TRANSCODE_DEVICE_PROFILE_ST &profile, const XMLNode &device)
{
    const XMLNode section = device.getChildNode("MUSIC", 0);
    if (!section.isEmpty()) readAudioRules(section, profile.pAudioTable);
}

void loadVideo(TRANSCODE_DEVICE_PROFILE_ST &profile, const XMLNode &device)
{
    const XMLNode section = device.getChildNode("VIDEO", 0);
    if (!section.isEmpty()) readVideoRules(section, profile.pVideoTable);
}

/// The document's DEVICE, or the empty node.
XMLNode openDevice(const char *path)
{
    int error = 0;
    XMLNode document = XMLNode::openFileHelper(path, &error);
    if (error == 0) return document.getChildNode("DEVICE", 0);
    document = XMLNode::emptyXMLNode;
    return document;
}

} // namespace
} // namespace vornak

TRANSCODE_DEVICE_PROFILE_ST *ParseSingleTranscodeXML(const char *path, int mediaFlags,
                                                     int callerData1, int callerData2)
try {
    using namespace vornak;
    if (!path) return nullptr;
    const XMLNode device = openDevice(path);
    if (device.isEmpty()) return nullptr;

    ProfileOwner profile = allocateProfile();
    const char *name = readNonEmpty(device, "NAME");
    if (!name) return nullptr;
    profile->deviceName = copyText(name);
    profile->mediaFlags = mediaFlags;
    profile->callerData1 = callerData1;
    profile->callerData2 = callerData2;
    if (mediaFlags & VORNAK_MEDIA_MUSIC) loadMusic(*profile, device);
    if (mediaFlags & VORNAK_MEDIA_VIDEO) loadVideo(*profile, device);
    return profile.release();
} catch (abi::__forced_unwind &) { // the thread is being cancelled
    throw;
} catch (...) { // out of memory, or whatever a host's function throws
    return nullptr;
}
