#pragma once

#include <functional>
#include <mutex>
#include <string>

#include "simulator/board/StateDirectory.h"
#include "simulator/peripheral/Edid.h"

namespace simulator {

/**
 * The HDMI ports, 1 to 4: their EDIDs, hot-plug lines, HDCP, CEC and eARC.
 *
 * Kept: replaced EDIDs (hdmi/edid-PORT-VERSION.bin of the state folder), the version that each port shows
 * (parameter hdmi:edid_version_PORT of prphrl.ini) and the HDCP keys (hdcp/TYPE.key). Everything else is as
 * at the start after a restart: lines plugged, no cables, CEC off, no audio return. Any thread.
 */
class HdmiPorts {
  public:
    static constexpr unsigned kPorts = 4;
    /** Versions of EDID: 0 is 1920x1080 as of HDMI 1.4, 1 is 3840x2160 as of HDMI 2.0; 1 until chosen. */
    static constexpr int kVersions = 2;

    /** Told, with a lock held, that a source has found the port or has lost it. */
    using Report = std::function<void(unsigned port, bool up)>;

    explicit HdmiPorts(Report report);

    /** Puts back as at the start what is not kept. */
    void reset();

    /** The EDID of the version that the port shows. kOutOfRange; kBadData: its file was spoiled by other
     * hands. */
    int32_t edid(unsigned port, Edid* edid) const;
    /**
     * Replaces an EDID, of 128 or 256 bytes; no other count is touched. kOutOfRange: port, version, count;
     * kBadData, with the reason on standard error, for what no source could read.
     */
    int32_t replaceEdid(unsigned port, int version, size_t count, const uint8_t* bytes);
    int32_t chooseEdid(unsigned port, int version);

    /** A source sees the port while its hot-plug line is up and a cable is in. kOutOfRange. */
    int32_t setHotPlug(unsigned port, bool up);
    int32_t setCable(unsigned port, bool in);

    /**
     * Installs the HDCP key of a type, "1.4" or "2.2", from a file of the board's file system. kBadName: the
     * type; kBadData: the file is no key, see docs/board.md; or why it cannot be read.
     */
    int32_t installKey(const std::string& type, const char* path);
    /** Authenticates the sources that see a port anew. kNotFound: there is no key. */
    int32_t authenticate();

    void enableCec(bool on);
    /** 0 off, 1 on and alone, 2 on with a source on the bus. */
    int cecState() const;

    /** 0 none, 1 ARC, 2 eARC. kOutOfRange. */
    int32_t setAudioReturn(int state);
    int audioReturn() const;

    std::string describe() const;

  private:
    struct Port {
        bool hotPlug = true;
        bool cable = false;
        const char* hdcp = nullptr;  // type of the key with which its source was authenticated
        bool up() const { return hotPlug && cable; }
    };

    int chosenVersion(unsigned port) const;
    const char* bestKey() const;
    template <typename Change>
    int32_t changePort(unsigned port, Change change);

    StateFolder mEdids;
    StateFolder mKeys;
    const Report mReport;

    mutable std::mutex mMutex;
    // All below guarded by mMutex, held while a file is written too.
    Port mPorts[kPorts];  // port 1 first
    bool mCec = false;
    int mAudioReturn = 0;
};

}  // namespace simulator
