#pragma once

namespace simulator {

/** A block of the chip that is licensed on its own. Its number is its place in kIps. */
struct Ip {
    /** Its key in section [ip] of ip.ini, where a line "<key> = 1" or "= 0" overrules the fuse. */
    const char* key;
    const char* what;
    bool fused;
};

constexpr Ip kIps[] = {
        {"mpeg2", "MPEG-2 video", true},
        {"mpeg4", "MPEG-4 Visual", true},
        {"avc", "AVC", true},
        {"hevc", "HEVC", true},
        {"vp9", "VP9", true},
        {"av1", "AV1", false},
        {"jpeg", "JPEG", true},
        {"mp2", "MPEG-1 audio layer II", true},
        {"aac", "AAC, HE-AAC", true},
        {"ac3", "AC-3", true},
        {"eac3", "E-AC-3", true},
        {"ac4", "AC-4", false},
        {"mpegh", "MPEG-H audio", false},
};

constexpr unsigned kIpCount = sizeof(kIps) / sizeof(kIps[0]);

/** Whether an IP may be used; id is below kIpCount. The file is read at the first question and by
 * reloadIps(); what is wrong in it is said on standard error, and the fuse counts. */
bool ipEnabled(unsigned id);
void reloadIps();

}  // namespace simulator
