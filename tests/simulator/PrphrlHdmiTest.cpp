#include <zlib.h>

#include "tests/simulator/PrphrlFixture.h"

using namespace simulator;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class PrphrlHdmiTest : public PrphrlFixture {
  protected:
    /** The bytes, or the status of a failure. */
    static std::string edid(unsigned port) {
        fapi_core::ZvtTvFApiHDMI_EDID_Data_t data = {};
        const int32_t status = a_zvttvfapi_prphrl_get_hdmi_edid_data(port, &data);
        return status == kOk ? std::string(reinterpret_cast<char*>(data.au8EdidData), 256)
                             : std::to_string(status);
    }
    static int32_t setEdid(unsigned port, int version, std::string data, unsigned size) {
        data.resize(256);
        return a_zvttvfapi_prphrl_set_hdmi_edid_data(port, static_cast<signed char>(version), size,
                                                     bytes(data));
    }
    static int32_t choose(unsigned port, int version) {
        return a_zvttvfapi_prphrl_set_hdmi_edid_version(port, static_cast<signed char>(version));
    }
    static std::string judged(const std::string& edid) {
        write(state() / "judged.bin", edid);
        FILE* pipe = popen(("edid-decode --check '" + (state() / "judged.bin") + "' 2>&1").c_str(), "r");
        std::string output;
        for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) {
            output += static_cast<char>(c);
        }
        EXPECT_EQ(pclose(pipe), 0) << output;
        return output;
    }
    /** The block's last byte made right. */
    static std::string summed(std::string data) {
        for (size_t block = 0; block + 128 <= data.size(); block += 128) {
            unsigned char sum = 0;
            for (size_t i = 0; i < 127; ++i) {
                sum = static_cast<unsigned char>(sum + static_cast<unsigned char>(data[block + i]));
            }
            data[block + 127] = static_cast<char>(-sum);
        }
        return data;
    }

    /** A key with its receiver's number at a place, and its checksum. */
    static std::string key(size_t size, size_t receiver, const std::string& number) {
        std::string content(size - 4, '\x42');
        content.replace(receiver, 5, number);
        const uLong sum = crc32(0, bytes(content), static_cast<uInt>(content.size()));
        for (int shift = 24; shift >= 0; shift -= 8) {
            content += static_cast<char>(sum >> shift);
        }
        return content;
    }
    static int32_t install(const std::string& type, const std::string& content) {
        write(state() / "files/key.bin", content);
        return a_zvttvfapi_prphrl_reload_hdcp_key(bytes(type), bytes("/key.bin"));
    }
    static int32_t authenticate() {
        return a_zvttvfapi_prphrl_reload_hdcp(fapi_core::ZvtTvFApiReloadHdcp::STATE);
    }
    static int cec() {
        signed char status = -1;
        EXPECT_EQ(a_zvttvfapi_prphrl_get_cec_status(&status), kOk);
        return status;
    }
};

}  // namespace

TEST_F(PrphrlHdmiTest, EveryEdidOfTheBoardConforms) {
    for (unsigned port = 1; port <= 4; ++port) {
        const std::string wide = judged(edid(port));
        ASSERT_EQ(choose(port, 0), kOk);
        const std::string plain = judged(edid(port));
        for (const std::string& output : {wide, plain}) {
            EXPECT_THAT(output, HasSubstr("conformity: PASS"));
            EXPECT_THAT(output, Not(HasSubstr("Warnings")));
            EXPECT_THAT(output, HasSubstr("physical address: " + std::to_string(port) + ".0.0.0"));
        }
        EXPECT_THAT(wide, HasSubstr("3840x2160   60.0"));
        EXPECT_THAT(plain, Not(HasSubstr("3840x2160")));
    }
    EXPECT_EQ(edid(0), std::to_string(kOutOfRange));
    EXPECT_EQ(edid(5), std::to_string(kOutOfRange));
    EXPECT_EQ(choose(1, 2), kOutOfRange);
    EXPECT_EQ(choose(1, -1), kOutOfRange);
}

TEST_F(PrphrlHdmiTest, AGoodEdidReplacesOneVersionOfOnePortAndABadOneNothing) {
    const std::string original = edid(2);
    std::string other = original;
    other[12] = 0x55;
    other = summed(other);
    EXPECT_EQ(setEdid(2, 1, other, 256), kOk);
    EXPECT_EQ(edid(2), other);
    EXPECT_EQ(contentOf(state() / "hdmi/edid-2-1.bin"), other) << "on the disk when it is acknowledged";
    EXPECT_EQ(edid(3)[12], original[12]);
    std::string shorter = other.substr(0, 128);
    shorter[126] = 0;
    shorter = summed(shorter);
    EXPECT_EQ(setEdid(2, 0, shorter, 128), kOk);
    EXPECT_EQ(edid(2), other) << "another version";
    EXPECT_EQ(choose(2, 0), kOk);
    EXPECT_EQ(edid(2), shorter + std::string(128, '\0'));
    EXPECT_EQ(contentOf(state() / "ini/prphrl.ini"), "[hdmi]\nedid_version_2 = 0\n");
    EXPECT_EQ(choose(2, 1), kOk);

    const auto changed = [&](size_t at, char value, bool mended) {
        std::string bad = other;
        bad[at] = value;
        return mended ? summed(bad) : bad;
    };
    const struct {
        unsigned port;
        int version;
        std::string data;
        unsigned size;
        int32_t status;
    } bad[] = {{2, 1, std::string(1, '\0'), 256, kBadData},
               {2, 1, changed(20, 1, false), 256, kBadData},
               {2, 1, changed(200, 1, false), 256, kBadData},
               {2, 1, changed(0, 1, true), 256, kBadData},
               {2, 1, changed(126, 0, true), 256, kBadData},
               {2, 1, changed(126, 2, true), 256, kBadData},
               {2, 1, other, 128, kBadData},
               {2, 1, other, 0, kOutOfRange},
               {2, 1, other, 255, kOutOfRange},
               {2, 1, other, UINT32_MAX, kOutOfRange},
               {0, 1, other, 256, kOutOfRange},
               {5, 1, other, 256, kOutOfRange},
               {2, 2, other, 256, kOutOfRange}};
    for (const auto& row : bad) {
        EXPECT_EQ(setEdid(row.port, row.version, row.data, row.size), row.status) << "row " << &row - bad;
        EXPECT_EQ(edid(2), other);
    }
    write(state() / "hdmi/edid-2-1.bin", other.substr(1));
    EXPECT_EQ(edid(2), std::to_string(kBadData)) << "spoiled by other hands";
}

TEST_F(PrphrlHdmiTest, ASourceSeesAPortWhileBothCableAndHotPlugLineSaySo) {
    EXPECT_EQ(cec(), 0);
    EXPECT_EQ(a_zvttvfapi_prphrl_enable_cec(1), kOk);
    EXPECT_EQ(cec(), 1);
    EXPECT_EQ(drive("hdmi 1 connect"), kOk);
    EXPECT_EQ(drive("hdmi 1 connect"), kOk);
    EXPECT_EQ(cec(), 2);
    EXPECT_EQ(a_zvttvfapi_prphrl_set_hdmi_hpd(1, 0), kOk);
    EXPECT_EQ(cec(), 1);
    EXPECT_EQ(a_zvttvfapi_prphrl_set_hdmi_hpd(4, 0), kOk);
    EXPECT_EQ(drive("hdmi 4 connect"), kOk);
    EXPECT_EQ(a_zvttvfapi_prphrl_set_hdmi_hpd(1, 1), kOk);
    EXPECT_EQ(drive("hdmi 1 disconnect"), kOk);
    EXPECT_THAT(events(4), ElementsAre("6 1 1", "6 1 0", "6 1 1", "6 1 0"));
    for (const unsigned char port : {0, 5, 255}) {
        EXPECT_EQ(a_zvttvfapi_prphrl_set_hdmi_hpd(port, 1), kOutOfRange);
    }
    EXPECT_EQ(a_zvttvfapi_prphrl_set_hdmi_hpd(1, 2), kOutOfRange);
    for (const char* order :
         {"hdmi 5 connect", "hdmi 0 connect", "hdmi 1", "hdmi 1 burn", "earc 3", "earc"}) {
        EXPECT_EQ(drive(order), kOutOfRange) << order;
    }
    int earc = -1;
    EXPECT_EQ(drive("earc 2"), kOk);
    EXPECT_EQ(a_zvttvfapi_prphrl_get_earc_status(&earc), kOk);
    EXPECT_EQ(earc, 2);
}

TEST_F(PrphrlHdmiTest, OnlyAnHdcpKeyThatChecksIsInstalledAndUsed) {
    const std::string number = "\x0f\x0f\x0f\x0f\x0f";  // twenty bits set
    const std::string oneMore = "\x0f\x0f\x0f\x0f\x1f";
    std::string spoiled = key(292, 0, number);
    spoiled[100] ^= 1;
    EXPECT_EQ(authenticate(), kNotFound);
    const struct {
        const char* type;
        std::string content;
        int32_t status;
    } rows[] = {{"1.4", spoiled, kBadData},
                {"1.4", key(292, 0, oneMore), kBadData},
                {"1.4", key(291, 0, number), kBadData},
                {"1.4", key(293, 0, number), kBadData},
                {"1.4", "", kBadData},
                {"1.4", key(862, 16, number), kBadData},
                {"1.3", key(292, 0, number), kBadName},
                {"1.4", key(292, 0, number), kOk}};
    for (const auto& row : rows) {
        EXPECT_EQ(install(row.type, row.content), row.status) << row.type << " " << row.content.size();
    }
    EXPECT_EQ(a_zvttvfapi_prphrl_reload_hdcp_key(bytes("1.4"), bytes("/none")), kNotFound);
    EXPECT_EQ(a_zvttvfapi_prphrl_reload_hdcp_key(bytes("1.4"), bytes("/")), kBadFile);
    EXPECT_EQ(a_zvttvfapi_prphrl_reload_hdcp_key(bytes("1.4"), bytes("/../hdcp/1.4.key")), kNotFound);
    drive("hdmi 3 connect");
    EXPECT_THAT(described(), HasSubstr("hdmi 3 edid 1 hpd up cable in hdcp 1.4\n"));
    EXPECT_EQ(install("2.2", key(862, 16, number)), kOk);
    EXPECT_THAT(described(), HasSubstr("cable in hdcp 1.4\n"));
    EXPECT_EQ(authenticate(), kOk);
    EXPECT_THAT(described(), HasSubstr("cable in hdcp 2.2\n"));
    write(state() / "hdcp/2.2.key", spoiled);
    EXPECT_EQ(authenticate(), kOk);
    EXPECT_THAT(described(), HasSubstr("cable in hdcp 1.4\n"));
}
