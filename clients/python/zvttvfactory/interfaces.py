"""The interfaces of vendor.zentrovi.tv.zvttvfactory@1.0: their methods, records and enumerations.

Written by scripts/make-python.py from the comments of the interface files. Do not edit.
"""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import List, Literal, NamedTuple, Optional, Sequence, Union, overload

from ._calls import Caller, Interface
from ._values import Bytes, Enumeration, Fields, wire_bytes, wire_list, wire_record, wire_records

PACKAGE = "vendor.zentrovi.tv.zvttvfactory@1.0"


class Status(NamedTuple):
    """What a method without results of its own gives with check=False."""

    s32Status: int


class Done(NamedTuple):
    """What a method gives with check=False that only tells whether it was done."""

    bDone: bool


class ZvtTvFApiAudioOutPathEnum(Enumeration):
    """Where sound goes. Every value beyond UNKNOWN counts as UNKNOWN.

    :var UNKNOWN: no path: the chip-layer library refuses it
    """

    SPEAKER = 0
    HEADPHONE = 1
    LINE_OUT = 2
    SCART1 = 3
    SCART2 = 4
    SPDIF = 5
    HDMI_ARC = 6
    BLUETOOTH = 7
    SUBWOOFER = 8
    UNKNOWN = 9


class ZvtTvFApiVideoWin(Enumeration):
    """A video window.

    :var UNKNOWN: what every other value becomes; no window
    """

    MAIN = 0
    SUB = 1
    THIRD = 2
    UNKNOWN = 3


class ZvtTvFApiPqType(Enumeration):
    """A kind of picture-quality data.

    :var UNKNOWN: what every other value becomes; no kind
    """

    BASIC = 0
    COLOR = 1
    SHARPNESS = 2
    NOISE_REDUCTION = 3
    CONTRAST = 4
    MOTION = 5
    GAMMA = 6
    UNKNOWN = 7


class ZvtTvFApiStdFactoryUartConfig(Enumeration):
    """The line settings with which the standard factory UART starts.

    :var DEFAULT: the console's own, 115200 baud 8N1
    :var SLOW: 9600 baud 8N1
    :var CUSTOM: what set_std_factory_uart_custom_config has set
    :var UNKNOWN: what every other value becomes; no configuration
    """

    DEFAULT = 0
    SLOW = 1
    CUSTOM = 2
    UNKNOWN = 3


class ZvtTvFApiPwmAttr(Enumeration):
    """What of a PWM output is set or read.

    :var FREQUENCY: [Hz] frequency
    :var DUTY: [%] share of a period during which the output is high, 0 to 100
    :var ENABLE: 1 the output runs, 0 it rests
    :var UNKNOWN: what every other value becomes; no attribute
    """

    FREQUENCY = 0
    DUTY = 1
    ENABLE = 2
    UNKNOWN = 3


class ZvtTvFApiPwmChannel(Enumeration):
    """A PWM output. Which of them a board has is the chip-layer library's to know.

    :var UNKNOWN: what every other value becomes; no output
    """

    CHANNEL_0 = 0
    CHANNEL_1 = 1
    CHANNEL_2 = 2
    CHANNEL_3 = 3
    CHANNEL_4 = 4
    CHANNEL_5 = 5
    CHANNEL_6 = 6
    CHANNEL_7 = 7
    CHANNEL_8 = 8
    CHANNEL_9 = 9
    CHANNEL_10 = 10
    CHANNEL_11 = 11
    CHANNEL_12 = 12
    CHANNEL_13 = 13
    CHANNEL_14 = 14
    CHANNEL_15 = 15
    CHANNEL_16 = 16
    CHANNEL_17 = 17
    UNKNOWN = 18


class ZvtTvFApiReloadHdcp(Enumeration):
    """What reload_hdcp reloads.

    :var STATE: the state of HDCP: authentication starts anew, with the keys that are installed
    """

    STATE = 0


class ZvtTvFApiSysFactorySvcCmd_e(Enumeration):
    """Commands of the chip-layer library's factory service.

    :var SYS_FACTORY_SVC_CMD_RAISE_EVENT: raise an event, which the text describes
    :var SYS_FACTORY_SVC_CMD_FORCE_STATUS: let the next call of a function end with a given status, or set the
        library's readiness
    :var SYS_FACTORY_SVC_CMD_DUMP_STATE: print the library's state
    """

    SYS_FACTORY_SVC_CMD_RAISE_EVENT = 0
    SYS_FACTORY_SVC_CMD_FORCE_STATUS = 1
    SYS_FACTORY_SVC_CMD_DUMP_STATE = 2


@dataclass
class ZvtTvFApiAudPeqBand_t:
    """One band of the parametric equaliser.

    :ivar u32Frequency: [Hz] middle of the band, 20 to 20000
    :ivar s16Gain: [0.1 dB] -120 to 120
    :ivar u16Q: [0.01] Q factor, 10 to 2000
    """

    u32Frequency: int = 0
    s16Gain: int = 0
    u16Q: int = 0


@dataclass
class ZvtTvFApiAudBasicSoundParam_t:
    """Parameters of the basic sound effects, those of all types in one record: an effect reads what IZvtTvFApiAudio
    says of its type and nothing else.

    :ivar u32Level: the level of an effect that has one, 0 to 100
    :ivar u16GeqBandCount: how many of the graphic equaliser's bands are given, 0 to 8; the others keep their level
    :ivar au32GeqLevel: levels of its bands from the lowest on, 0 to 100; 50 leaves a band as it is
    :ivar u16PeqBandCount: how many of the parametric equaliser's bands are given, 0 to 33; the others stay
    :ivar astPeqBand: its bands, those that the methods for one band number from 0
    """

    u32Level: int = 0
    u16GeqBandCount: int = 0
    au32GeqLevel: List[int] = field(default_factory=lambda: [0 for _ in range(8)])
    u16PeqBandCount: int = 0
    astPeqBand: List[ZvtTvFApiAudPeqBand_t] = field(default_factory=lambda: [ZvtTvFApiAudPeqBand_t() for _ in range(33)])


@dataclass
class ZvtTvFApiAdvSndDolbyDapParams_t:
    """Parameters of the Dolby DAP, levels being 0 to 100. No method can pass them on.

    :ivar u32LoudnessLevel: how far loud and quiet programmes are brought together
    :ivar u32QuietListeningLevel: how far the sound is corrected for quiet listening
    :ivar u32DialogueLevel: how far speech is raised
    :ivar u32SurroundLevel: width of the surround sound from two loudspeakers
    :ivar u32BassLevel: how far low tones are raised
    :ivar u32LimiterLevel: how far peaks are held back before a loudspeaker distorts
    :ivar s32PostGain: [0.1 dB] gain behind all processing
    :ivar vecEqualizerGain: [0.1 dB] gains of the graphic equaliser's bands, from the lowest on
    """

    u32LoudnessLevel: int = 0
    u32QuietListeningLevel: int = 0
    u32DialogueLevel: int = 0
    u32SurroundLevel: int = 0
    u32BassLevel: int = 0
    u32LimiterLevel: int = 0
    s32PostGain: int = 0
    vecEqualizerGain: List[int] = field(default_factory=lambda: [])


@dataclass
class ZvtTvFApiEventCommonObject:
    """One of the four payload records of an event: a number, a text and bytes. What each means depends on the event's
    type and is the chip-layer library's to define.

    :ivar u32Value: a number
    :ivar strValue: a text, without a NUL inside
    :ivar vecValue: bytes; the records of one event together should stay within a few tens of KiB, see
        IZvtTvFApiCallbackManager
    """

    u32Value: int = 0
    strValue: str = ""
    vecValue: bytes = b""


@dataclass
class ZvtTvFApiDispHsyModelRange:
    """The lowest and highest value that each axis of the PQ engine's HSY colour model takes.

    :ivar s32HueMin: lowest hue
    :ivar s32HueMax: highest hue
    :ivar s32SaturationMin: lowest saturation
    :ivar s32SaturationMax: highest saturation
    :ivar s32LumaMin: lowest luma
    :ivar s32LumaMax: highest luma
    """

    s32HueMin: int = 0
    s32HueMax: int = 0
    s32SaturationMin: int = 0
    s32SaturationMax: int = 0
    s32LumaMin: int = 0
    s32LumaMax: int = 0


@dataclass
class ZvtTvFApiDispTconInfo:
    """What the panel's timing controller runs on.

    :ivar u32Version: version of the timing controller's data
    :ivar u32Checksum: checksum over that data
    :ivar u16PanelId: number of the panel that the data is for
    :ivar au8PanelName: name of that panel, zeros behind it; all 32 bytes may be in use
    :ivar bEnabled: whether the chip's own timing controller drives the panel
    """

    u32Version: int = 0
    u32Checksum: int = 0
    u16PanelId: int = 0
    au8PanelName: bytes = bytes(32)
    bEnabled: bool = False


@dataclass
class ZvtTvFApiDispExtFrcDeviceInfo:
    """The external frame-rate converter.

    :ivar u32FwVersion: version of the firmware that it runs
    :ivar u16ChipId: which device it is
    :ivar u8Revision: revision of the chip
    :ivar u8State: 0 running, 1 its firmware is being written
    """

    u32FwVersion: int = 0
    u16ChipId: int = 0
    u8Revision: int = 0
    u8State: int = 0


@dataclass
class ZvtTvFApiDispTstColor:
    """A colour of a video test pattern.

    :ivar u32Red: level, 0 to 1023
    :ivar u32Green: level, 0 to 1023
    :ivar u32Blue: level, 0 to 1023
    :ivar u8Alpha: opacity over the video: 0 not seen, 255 opaque
    """

    u32Red: int = 0
    u32Green: int = 0
    u32Blue: int = 0
    u8Alpha: int = 0


@dataclass
class ZvtTvFApiDispTstPattern:
    """What a video test pattern is drawn from. Which fields a pattern uses is the chip-layer library's to define.

    :ivar stForeground: the pattern's own colour: a plain area, the first colour of a ramp, every other cell
    :ivar u32X: [pixel] left edge of the pattern's area
    :ivar u32Y: [pixel] upper edge of the pattern's area
    :ivar u32Width: [pixel] width of the pattern's area; 0 reaches to the panel's edge
    :ivar u32Height: [pixel] height of the pattern's area; 0 reaches to the panel's edge
    :ivar u32Columns: cells of a board or grid, bars, or steps of a ramp, across; 0 is the pattern's own number
    :ivar u32Rows: the same, down
    :ivar u16LineWidth: [pixel] width of lines and borders; 0 is 1
    :ivar u8Vertical: which way a ramp or bars go on: 0 from left to right, 1 from top to bottom
    :ivar u8Invert: 1: foreground and background change places
    :ivar stBackground: around or between the foreground: the last colour of a ramp, the other cells
    :ivar stLine: grid lines, and the border of a window
    :ivar u32Duration: [ms] how long the pattern stays; 0 is until another one is asked for
    """

    stForeground: ZvtTvFApiDispTstColor = field(default_factory=lambda: ZvtTvFApiDispTstColor())
    u32X: int = 0
    u32Y: int = 0
    u32Width: int = 0
    u32Height: int = 0
    u32Columns: int = 0
    u32Rows: int = 0
    u16LineWidth: int = 0
    u8Vertical: int = 0
    u8Invert: int = 0
    stBackground: ZvtTvFApiDispTstColor = field(default_factory=lambda: ZvtTvFApiDispTstColor())
    stLine: ZvtTvFApiDispTstColor = field(default_factory=lambda: ZvtTvFApiDispTstColor())
    u32Duration: int = 0


@dataclass
class ZvtTvFApiGOPPatternLine_t:
    """A line on the graphics plane. What lies beyond the plane is not drawn.

    :ivar u32StartX: [pixel] first pixel, from the left
    :ivar u32StartY: [pixel] first pixel, from above
    :ivar u32EndX: [pixel] last pixel, from the left; drawn too
    :ivar u32EndY: [pixel] last pixel, from above; drawn too
    :ivar u32Color: 0xAARRGGBB; an alpha of 0xFF is opaque
    """

    u32StartX: int = 0
    u32StartY: int = 0
    u32EndX: int = 0
    u32EndY: int = 0
    u32Color: int = 0


@dataclass
class ZvtTvFApiGOPPatternRect_t:
    """A rectangle on the graphics plane. What lies beyond the plane is not drawn.

    :ivar u32X: [pixel] left edge
    :ivar u32Y: [pixel] upper edge
    :ivar u32Width: [pixel] width, the border included
    :ivar u32Height: [pixel] height, the border included
    :ivar u32FillColor: 0xAARRGGBB; an alpha of 0xFF is opaque
    :ivar u32BorderColor: 0xAARRGGBB; an alpha of 0xFF is opaque
    :ivar u8Fill: 1 fills the rectangle; 0 leaves what is inside the border as it is
    :ivar u8BorderWidth: [pixel] width of the border, inwards; 0 is none
    :ivar u8CornerRadius: [pixel] radius of the corners; 0 is square
    :ivar u8Blend: 0 replaces the plane's pixels, 1 blends into them by the colours' alpha
    """

    u32X: int = 0
    u32Y: int = 0
    u32Width: int = 0
    u32Height: int = 0
    u32FillColor: int = 0
    u32BorderColor: int = 0
    u8Fill: int = 0
    u8BorderWidth: int = 0
    u8CornerRadius: int = 0
    u8Blend: int = 0


@dataclass
class ZvtTvFApiGOPPatternBitmap_t:
    """A picture for the graphics plane. No method draws it.

    :ivar u32X: [pixel] left edge
    :ivar u32Y: [pixel] upper edge
    :ivar u32Width: [pixel] width
    :ivar u32Height: [pixel] height
    :ivar vecPixels: width times height colours, 0xAARRGGBB, row by row from above
    """

    u32X: int = 0
    u32Y: int = 0
    u32Width: int = 0
    u32Height: int = 0
    vecPixels: List[int] = field(default_factory=lambda: [])


@dataclass
class ZvtTvFApiGOPPatternAttr_t:
    """How the graphics plane is shown and drawn on.

    :ivar u8Alpha: opacity of the whole plane: 0 not seen, 255 as it was drawn
    :ivar u16X: [pixel] left edge, on the panel, of the area that the plane is stretched to
    :ivar u16Y: [pixel] upper edge of that area
    :ivar u16Width: [pixel] width of that area; 0 reaches to the panel's edge
    :ivar u16Height: [pixel] height of that area; 0 reaches to the panel's edge
    :ivar u16LineWidth: [pixel] width of the lines that are drawn from now on; 0 is 1
    :ivar u32BackColor: 0xAARRGGBB, seen through what is transparent on the plane
    """

    u8Alpha: int = 0
    u16X: int = 0
    u16Y: int = 0
    u16Width: int = 0
    u16Height: int = 0
    u16LineWidth: int = 0
    u32BackColor: int = 0


@dataclass
class ZvtTvFApiColor:
    """A burn-in colour.

    :ivar u16Red: level, 0 to 1023
    :ivar u16Green: level, 0 to 1023
    :ivar u16Blue: level, 0 to 1023
    """

    u16Red: int = 0
    u16Green: int = 0
    u16Blue: int = 0


@dataclass
class ZvtTvFApiDemodInfoParam_t:
    """What a demodulator tells about its signal. Every text is empty for now: no method fills them.

    :ivar strSystem: the broadcasting system
    :ivar strModulation: modulation and code rate
    :ivar strStrength: strength of the signal
    :ivar strQuality: quality of the signal
    """

    strSystem: str = ""
    strModulation: str = ""
    strStrength: str = ""
    strQuality: str = ""


@dataclass
class ZvtTvFApiAdcPhase_t:
    """Sampling phases of an ADC source, each in 1/64 of the sampling clock, 0 to 63.

    :ivar u32RedPhase: red, or Pr
    :ivar u32GreenPhase: green, or Y
    :ivar u32BluePhase: blue, or Pb
    """

    u32RedPhase: int = 0
    u32GreenPhase: int = 0
    u32BluePhase: int = 0


@dataclass
class ZvtTvFApiAdcGainOffset_t:
    """Calibration of an ADC source. Gains are in 1/4096, 0 to 16383: 4096 leaves the signal as it is. Offsets are
    steps of the 12-bit converter, 0 to 4095: 2048 is none.

    :ivar u32RedGain: gain of red, or Pr
    :ivar u32GreenGain: gain of green, or Y
    :ivar u32BlueGain: gain of blue, or Pb
    :ivar u32RedOffset: offset of red, or Pr
    :ivar u32GreenOffset: offset of green, or Y
    :ivar u32BlueOffset: offset of blue, or Pb
    """

    u32RedGain: int = 0
    u32GreenGain: int = 0
    u32BlueGain: int = 0
    u32RedOffset: int = 0
    u32GreenOffset: int = 0
    u32BlueOffset: int = 0


@dataclass
class ZvtTvFApiVideoTiming:
    """The timing of an input signal; without a signal everything is 0.

    :ivar u16HActive: [pixel] a line without blanking
    :ivar u16HTotal: [pixel] a line with blanking
    :ivar u16VActive: [line] a frame without blanking
    :ivar u16VTotal: [line] a frame with blanking
    :ivar u32FrameRate: [mHz] frames, or fields of an interlaced signal: 59940 for 59.94 Hz
    :ivar bInterlaced: false for a progressive signal
    """

    u16HActive: int = 0
    u16HTotal: int = 0
    u16VActive: int = 0
    u16VTotal: int = 0
    u32FrameRate: int = 0
    bInterlaced: bool = False


@dataclass
class ZvtTvFApiHDMI_EDID_Data_t:
    """The EDID of an HDMI port: two blocks of 128 bytes.

    :ivar au8EdidData: the bytes of the two blocks
    """

    au8EdidData: bytes = bytes(256)


class AudioAdvGetSpeakerDelay(NamedTuple):
    """What adv_get_speaker_delay gives.

    :ivar s32Delay: [ms] on a failure of the library, what it left there, usually 0
    """

    s32Delay: int


class AudioAdvGetSpeakerDelayUnchecked(NamedTuple):
    """What adv_get_speaker_delay gives with check=False."""

    s32Status: int
    s32Delay: int


class AudioAdvGetVolume(NamedTuple):
    """What adv_get_volume gives.

    :ivar s32Volume: 0 to 100; on a failure of the library, what it left there, usually 0
    """

    s32Volume: int


class AudioAdvGetVolumeUnchecked(NamedTuple):
    """What adv_get_volume gives with check=False."""

    s32Status: int
    s32Volume: int


class AudioGetAttr(NamedTuple):
    """What get_attr gives.

    :ivar vecOutput: the attribute's value; empty on every failure
    """

    vecOutput: bytes


class AudioGetAttrUnchecked(NamedTuple):
    """What get_attr gives with check=False."""

    vecOutput: bytes
    s32Status: int


class Audio(Interface):
    """Sound processing, volume and volume tables.

    Status of every method: 0 success; -5 the chip-layer library is not ready (nothing was called, the other results
    are 0 or empty); any other value, unless the method says more, is the library's own, passed on unchanged. The
    service checks no range: a number that the library does not know, or beyond its range, is refused with a status
    of the library's. Texts are cut at their first NUL byte.

    Two methods deliver the status ahead of the value: a_hidl_zvttvfapi_aud_adv_get_speaker_delay and
    a_hidl_zvttvfapi_aud_adv_get_volume.

    Output paths that are plain numbers are counted as in ZvtTvFApiAudioOutPathEnum. Types of basic sound effects,
    and what each takes from ZvtTvFApiAudBasicSoundParam_t:

    - 0 bass, u32Level: 50 leaves low tones as they are
    - 1 treble, u32Level: 50 leaves high tones as they are
    - 2 balance, u32Level: 0 left channel only, 50 both alike, 100 right channel only
    - 3 surround, u32Level: width of the sound
    - 4 automatic volume, u32Level: how far loud and quiet passages are brought together
    - 5 graphic equaliser, u16GeqBandCount and au32GeqLevel
    - 6 parametric equaliser, u16PeqBandCount and astPeqBand
    """

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiAudio"

    @overload
    def adv_snd_enable(
            self, s32Processing: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_snd_enable(
            self, s32Processing: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_snd_enable(
            self, s32Processing: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Puts an advanced sound processing in place of the one before.

        :param s32Processing: its number, which is the library's; 0 is none

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_snd_enable", {
            "s32Processing": s32Processing,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_snd_enable = adv_snd_enable

    @overload
    def adv_snd_enable_sub(
            self, s32Processing: int, s32Part: int, bEnable: bool, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_snd_enable_sub(
            self, s32Processing: int, s32Part: int, bEnable: bool, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def adv_snd_enable_sub(
            self, s32Processing: int, s32Part: int, bEnable: bool, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Switches one part of an advanced sound processing, whether the processing is on or not.

        :param s32Processing: the processing's number
        :param s32Part: the part's number, from 0, at most 31
        :param bEnable: whether the part is on

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_snd_enable_sub", {
            "s32Processing": s32Processing,
            "s32Part": s32Part,
            "bEnable": bEnable,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_snd_enable_sub = adv_snd_enable_sub

    @overload
    def adv_snd_set_param(
            self, s32ParamSet: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_snd_set_param(
            self, s32ParamSet: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_snd_set_param(
            self, s32ParamSet: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Chooses the parameter set that the advanced sound processing works with.

        :param s32ParamSet: the set's number, from 0

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_snd_set_param", {
            "s32ParamSet": s32ParamSet,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_snd_set_param = adv_snd_set_param

    @overload
    def adv_set_prescale(
            self, bEnable: bool, s16Gain: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_set_prescale(
            self, bEnable: bool, s16Gain: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_set_prescale(
            self, bEnable: bool, s16Gain: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the prescaler, which is ahead of all effects.

        :param bEnable: whether it is on
        :param s16Gain: [0.1 dB] its gain, -200 to 200

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_set_prescale", {
            "bEnable": bEnable,
            "s16Gain": s16Gain,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_set_prescale = adv_set_prescale

    @overload
    def adv_set_NR(
            self, bEnable: bool, s16Level: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_set_NR(
            self, bEnable: bool, s16Level: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_set_NR(
            self, bEnable: bool, s16Level: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the noise reduction.

        :param bEnable: whether it is on
        :param s16Level: its level, 0 to 100

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_set_NR", {
            "bEnable": bEnable,
            "s16Level": s16Level,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_set_NR = adv_set_NR

    @overload
    def adv_set_speaker_delay(
            self, s32Delay: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_set_speaker_delay(
            self, s32Delay: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_set_speaker_delay(
            self, s32Delay: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Delays the loudspeakers' sound, so that it meets the picture.

        :param s32Delay: [ms] 0 to 250

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_set_speaker_delay", {
            "s32Delay": s32Delay,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_set_speaker_delay = adv_set_speaker_delay

    @overload
    def adv_get_speaker_delay(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> AudioAdvGetSpeakerDelay: ...

    @overload
    def adv_get_speaker_delay(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> AudioAdvGetSpeakerDelayUnchecked: ...

    def adv_get_speaker_delay(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[AudioAdvGetSpeakerDelay, AudioAdvGetSpeakerDelayUnchecked]:
        """Reads the delay of the loudspeakers' sound. The status comes first.

        :return s32Status: 0 success; -5 not ready; else the library's own
        :return s32Delay: [ms] on a failure of the library, what it left there, usually 0
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_get_speaker_delay", {
        }, AudioAdvGetSpeakerDelay, AudioAdvGetSpeakerDelayUnchecked, check, timeout)
    a_hidl_zvttvfapi_aud_adv_get_speaker_delay = adv_get_speaker_delay

    @overload
    def adv_set_volume(
            self, s32Path: int, s32Volume: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_set_volume(
            self, s32Path: int, s32Volume: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_set_volume(
            self, s32Path: int, s32Volume: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the volume of an output path.

        :param s32Path: the path
        :param s32Volume: 0 to 100

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_set_volume", {
            "s32Path": s32Path,
            "s32Volume": s32Volume,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_set_volume = adv_set_volume

    @overload
    def adv_get_volume(
            self, s32Path: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> AudioAdvGetVolume: ...

    @overload
    def adv_get_volume(
            self, s32Path: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> AudioAdvGetVolumeUnchecked: ...

    def adv_get_volume(
            self, s32Path: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[AudioAdvGetVolume, AudioAdvGetVolumeUnchecked]:
        """Reads the volume of an output path. The status comes first.

        :param s32Path: the path

        :return s32Status: 0 success; -5 not ready; else the library's own
        :return s32Volume: 0 to 100; on a failure of the library, what it left there, usually 0
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_get_volume", {
            "s32Path": s32Path,
        }, AudioAdvGetVolume, AudioAdvGetVolumeUnchecked, check, timeout)
    a_hidl_zvttvfapi_aud_adv_get_volume = adv_get_volume

    @overload
    def adv_set_peq_q_value(
            self, s16Band: int, s16Q: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_set_peq_q_value(
            self, s16Band: int, s16Q: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_set_peq_q_value(
            self, s16Band: int, s16Q: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the Q factor of a band of the parametric equaliser.

        :param s16Band: the band, 0 to 32
        :param s16Q: [0.01] 10 to 2000

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_set_peq_q_value", {
            "s16Band": s16Band,
            "s16Q": s16Q,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_set_peq_q_value = adv_set_peq_q_value

    @overload
    def adv_set_peq_freq_value(
            self, s16Band: int, s16Frequency: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_set_peq_freq_value(
            self, s16Band: int, s16Frequency: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_set_peq_freq_value(
            self, s16Band: int, s16Frequency: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the middle frequency of a band of the parametric equaliser.

        :param s16Band: the band, 0 to 32
        :param s16Frequency: [Hz] 20 to 20000

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_set_peq_freq_value", {
            "s16Band": s16Band,
            "s16Frequency": s16Frequency,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_set_peq_freq_value = adv_set_peq_freq_value

    @overload
    def adv_set_peq_gain_value(
            self, s16Band: int, s16Gain: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_set_peq_gain_value(
            self, s16Band: int, s16Gain: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_set_peq_gain_value(
            self, s16Band: int, s16Gain: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the gain of a band of the parametric equaliser.

        :param s16Band: the band, 0 to 32
        :param s16Gain: [0.1 dB] -120 to 120

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_set_peq_gain_value", {
            "s16Band": s16Band,
            "s16Gain": s16Gain,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_set_peq_gain_value = adv_set_peq_gain_value

    @overload
    def adv_set_peq_value(
            self, s16Band: int, s16Q: int, s16Frequency: int, s16Gain: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_set_peq_value(
            self, s16Band: int, s16Q: int, s16Frequency: int, s16Gain: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def adv_set_peq_value(
            self, s16Band: int, s16Q: int, s16Frequency: int, s16Gain: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets all values of a band of the parametric equaliser at once, or none of them.

        :param s16Band: the band, 0 to 32
        :param s16Q: [0.01] 10 to 2000
        :param s16Frequency: [Hz] 20 to 20000
        :param s16Gain: [0.1 dB] -120 to 120

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_set_peq_value", {
            "s16Band": s16Band,
            "s16Q": s16Q,
            "s16Frequency": s16Frequency,
            "s16Gain": s16Gain,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_set_peq_value = adv_set_peq_value

    @overload
    def adv_enable_basic_sound_effect(
            self, s32Type: int, bEnable: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_enable_basic_sound_effect(
            self, s32Type: int, bEnable: bool, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def adv_enable_basic_sound_effect(
            self, s32Type: int, bEnable: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Switches a basic sound effect; its parameters stay.

        :param s32Type: the effect's type, see the interface's comment
        :param bEnable: whether the effect is on

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_enable_basic_sound_effect", {
            "s32Type": s32Type,
            "bEnable": bEnable,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_enable_basic_sound_effect = adv_enable_basic_sound_effect

    @overload
    def basic_snd_set_param(
            self, s32Type: int, stParam: Union[ZvtTvFApiAudBasicSoundParam_t, Fields], *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def basic_snd_set_param(
            self, s32Type: int, stParam: Union[ZvtTvFApiAudBasicSoundParam_t, Fields], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def basic_snd_set_param(
            self, s32Type: int, stParam: Union[ZvtTvFApiAudBasicSoundParam_t, Fields], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the parameters of a basic sound effect, whether it is on or not.

        :param s32Type: the effect's type, see the interface's comment
        :param stParam: the parameters; only those of this type count

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_basic_snd_set_param", {
            "s32Type": s32Type,
            "stParam": wire_record(ZvtTvFApiAudBasicSoundParam_t, stParam),
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_basic_snd_set_param = basic_snd_set_param

    @overload
    def adv_snd_set_dolby_dap_param(
            self, stParam: Union[ZvtTvFApiAdvSndDolbyDapParams_t, Fields], *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def adv_snd_set_dolby_dap_param(
            self, stParam: Union[ZvtTvFApiAdvSndDolbyDapParams_t, Fields], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def adv_snd_set_dolby_dap_param(
            self, stParam: Union[ZvtTvFApiAdvSndDolbyDapParams_t, Fields], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Fails always: the chip-layer library takes no such parameters.

        :param stParam: not looked at

        :return s32Status: -2; -5 while the chip-layer library is not ready
        """
        return self._call("a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param", {
            "stParam": wire_record(ZvtTvFApiAdvSndDolbyDapParams_t, stParam),
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_adv_snd_set_dolby_dap_param = adv_snd_set_dolby_dap_param

    @overload
    def get_attr(
            self, u32Type: int, vecInput: Bytes, u32Size: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> AudioGetAttr: ...

    @overload
    def get_attr(
            self, u32Type: int, vecInput: Bytes, u32Size: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> AudioGetAttrUnchecked: ...

    def get_attr(
            self, u32Type: int, vecInput: Bytes, u32Size: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[AudioGetAttr, AudioGetAttrUnchecked]:
        """Queries an attribute. The one that can be queried is 4097 (0x1001), the state of an output path. Its
        input is one byte, the path. Its output is 40 bytes, numbers little-endian, at the offsets:

        - 0 u32 the path
        - 4 u32 volume, 0 to 100
        - 8 u32 delay of the loudspeakers in ms; 0 on another path
        - 12 u32 basic sound effects: bit n is set while the effect of type n is on
        - 16 u32 advanced sound processing that is on, 0 for none
        - 20 u32 its parts: bit n is set while part n is on
        - 24 u32 its parameter set
        - 28 s16 gain of the prescaler in 0.1 dB
        - 30 u16 level of the noise reduction
        - 32 u8 prescaler on 1, off 0
        - 33 u8 noise reduction on 1, off 0
        - 34 u8 1 while the path gives no sound, by its volume or its volume table, else 0
        - 35 u8 reserved, 0
        - 36 u16 entries of the path's volume table, 0 without one
        - 38 u16 the table's entry for the volume, 0 without a table

        :param u32Type: the attribute, 4097; 0, 4099, 4100 and 4610 are known, but cannot be queried
        :param vecInput: the attribute's input
        :param u32Size: how many of its bytes, from the first on, the library gets: 1 or more, and no more than
            there are

        :return vecOutput: the attribute's value; empty on every failure
        :return s32Status: -2 for a size of 0, or larger than the input (which is looked at first), and for an
            unknown attribute; -1 for one that cannot be queried, and without memory for the input; 0 success;
            -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_get_attr", {
            "u32Type": u32Type,
            "vecInput": wire_bytes(vecInput),
            "u32Size": u32Size,
        }, AudioGetAttr, AudioGetAttrUnchecked, check, timeout)
    a_hidl_zvttvfapi_aud_get_attr = get_attr

    @overload
    def set_aq_param(self, strName: str, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def set_aq_param(self, strName: str, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def set_aq_param(
            self, strName: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Loads the audio quality (AQ) parameters from a file. From an invalid one nothing is loaded.

        :param strName: the file's path on the board

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_set_aq_param", {"strName": strName}, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_set_aq_param = set_aq_param

    @overload
    def set_volume_table(
            self, ePath: Union[ZvtTvFApiAudioOutPathEnum, int, str], vecTable: Sequence[int], strName: str, *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_volume_table(
            self, ePath: Union[ZvtTvFApiAudioOutPathEnum, int, str], vecTable: Sequence[int], strName: str, *,
            check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_volume_table(
            self, ePath: Union[ZvtTvFApiAudioOutPathEnum, int, str], vecTable: Sequence[int], strName: str, *,
            check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Gives an output path its volume table. The library is called even while it is not ready, and answers for
        itself: the service does not report -5.

        :param ePath: the path; every value beyond UNKNOWN counts as UNKNOWN
        :param vecTable: linear gains, 0 silent and 4096 as it is, from the lowest volume to the highest: of n
            entries the one for volume v is number v * (n - 1) / 100, rounded down. The number of entries counts
            modulo 65536: of 65537 the first is the table, and 65536 are as good as none
        :param strName: the table's own name; may be empty

        :return s32Status: -2 for a table without entries; -4 without memory for it; any other value is the
            library's own
        """
        return self._call("a_hidl_zvttvfapi_aud_set_volume_table", {
            "ePath": ePath,
            "vecTable": wire_list(vecTable),
            "strName": strName,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_aud_set_volume_table = set_volume_table


class DisplayGetPqRange(NamedTuple):
    """What get_pq_range gives.

    :ivar stRange: the lowest and highest value of each axis
    """

    stRange: ZvtTvFApiDispHsyModelRange


class DisplayGetPqRangeUnchecked(NamedTuple):
    """What get_pq_range gives with check=False."""

    stRange: ZvtTvFApiDispHsyModelRange
    s32Status: int


class DisplayGetTconInfo(NamedTuple):
    """What get_tcon_info gives.

    :ivar stInfo: its data and its panel
    """

    stInfo: ZvtTvFApiDispTconInfo


class DisplayGetTconInfoUnchecked(NamedTuple):
    """What get_tcon_info gives with check=False."""

    stInfo: ZvtTvFApiDispTconInfo
    s32Status: int


class DisplayGetLvdsSsc(NamedTuple):
    """What get_lvds_ssc gives.

    :ivar bEnable: whether it is on
    :ivar s32Frequency: [kHz] frequency of the modulation
    :ivar s32Deviation: how far the clock is moved, in hundredths of a percent
    """

    bEnable: bool
    s32Frequency: int
    s32Deviation: int


class DisplayGetLvdsSscUnchecked(NamedTuple):
    """What get_lvds_ssc gives with check=False."""

    bEnable: bool
    s32Frequency: int
    s32Deviation: int
    s32Status: int


class DisplayGetPwmRange(NamedTuple):
    """What get_pwm_range gives.

    :ivar s32Min: [%] lowest duty
    :ivar s32Max: [%] highest duty
    """

    s32Min: int
    s32Max: int


class DisplayGetPwmRangeUnchecked(NamedTuple):
    """What get_pwm_range gives with check=False."""

    s32Min: int
    s32Max: int
    s32Status: int


class DisplayGetFrcDeviceInfo(NamedTuple):
    """What get_frc_device_info gives.

    :ivar stInfo: the device
    """

    stInfo: ZvtTvFApiDispExtFrcDeviceInfo


class DisplayGetFrcDeviceInfoUnchecked(NamedTuple):
    """What get_frc_device_info gives with check=False."""

    stInfo: ZvtTvFApiDispExtFrcDeviceInfo
    s32Status: int


class DisplayGetPqVersion(NamedTuple):
    """What get_pq_version gives.

    :ivar strVersion: at most 128 bytes
    """

    strVersion: str


class DisplayGetPqVersionUnchecked(NamedTuple):
    """What get_pq_version gives with check=False."""

    strVersion: str
    s32Status: int


class DisplayGetFrcConnectStatus(NamedTuple):
    """What get_frc_connect_status gives.

    :ivar bConnected: true as well while the library is not ready
    """

    bConnected: bool

    def __bool__(self) -> bool:
        return self.bConnected


class Display(Interface):
    """Picture quality, panel, FRC device, output timing and screen capture.

    Status of every method: 0 success; -5 the chip-layer library is not ready (nothing was called, the other results
    are 0, false or empty); any other value, unless the method says more, is the library's own, passed on unchanged.
    When the library fails, the other results are what it left in them.

    Windows, parameters, items, timings and modes that are plain numbers are counted by the library, which refuses
    those that it does not know. Texts are cut at their first NUL byte.
    """

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiDisplay"

    @overload
    def switch_window(
            self, u32Window: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def switch_window(self, u32Window: int, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def switch_window(
            self, u32Window: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Chooses the video window that is seen and adjusted.

        :param u32Window: the window's number, as in ZvtTvFApiVideoWin

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_switch_window", {
            "u32Window": u32Window,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_switch_window = switch_window

    @overload
    def set_picture_param(
            self, u32Param: int, u32Value: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_picture_param(
            self, u32Param: int, u32Value: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_picture_param(
            self, u32Param: int, u32Value: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets one picture parameter (brightness, contrast, ...) of the current window.

        :param u32Param: the parameter, by the library's number
        :param u32Value: its new value, in the parameter's own range

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_set_picture_param", {
            "u32Param": u32Param,
            "u32Value": u32Value,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_set_picture_param = set_picture_param

    @overload
    def panel_set_attr(
            self, u32Link: int, u32Lanes: int, u32BitDepth: int, u32Mapping: int, u32Swing: int, u32Mirror: int, *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def panel_set_attr(
            self, u32Link: int, u32Lanes: int, u32BitDepth: int, u32Mapping: int, u32Swing: int, u32Mirror: int, *,
            check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def panel_set_attr(
            self, u32Link: int, u32Lanes: int, u32BitDepth: int, u32Mapping: int, u32Swing: int, u32Mirror: int, *,
            check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets how the panel is driven.

        :param u32Link: kind of link to the panel, by the library's number
        :param u32Lanes: number of the link's lanes
        :param u32BitDepth: [bit] bits of each colour component
        :param u32Mapping: order of the bits on the link, by the library's number
        :param u32Swing: [mV] swing of the link's signal
        :param u32Mirror: bit 0 mirrors the picture left to right, bit 1 top to bottom

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_panel_set_attr", {
            "u32Link": u32Link,
            "u32Lanes": u32Lanes,
            "u32BitDepth": u32BitDepth,
            "u32Mapping": u32Mapping,
            "u32Swing": u32Swing,
            "u32Mirror": u32Mirror,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_panel_set_attr = panel_set_attr

    @overload
    def set_over_scan(
            self, s32Left: int, s32Right: int, s32Top: int, s32Bottom: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_over_scan(
            self, s32Left: int, s32Right: int, s32Top: int, s32Bottom: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def set_over_scan(
            self, s32Left: int, s32Right: int, s32Top: int, s32Bottom: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets how much of the picture lies beyond each edge of the panel, in tenths of a percent of its width or
        height. A negative value leaves a black margin instead.

        :param s32Left: tenths of a percent of the width, beyond the left edge
        :param s32Right: tenths of a percent of the width, beyond the right edge
        :param s32Top: tenths of a percent of the height, beyond the upper edge
        :param s32Bottom: tenths of a percent of the height, beyond the lower edge

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_disp_set_over_scan", {
            "s32Left": s32Left,
            "s32Right": s32Right,
            "s32Top": s32Top,
            "s32Bottom": s32Bottom,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_disp_set_over_scan = set_over_scan

    @overload
    def set_color_temperature(
            self, u32RedGain: int, u32GreenGain: int, u32BlueGain: int, u32RedOffset: int, u32GreenOffset: int,
            u32BlueOffset: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_color_temperature(
            self, u32RedGain: int, u32GreenGain: int, u32BlueGain: int, u32RedOffset: int, u32GreenOffset: int,
            u32BlueOffset: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_color_temperature(
            self, u32RedGain: int, u32GreenGain: int, u32BlueGain: int, u32RedOffset: int, u32GreenOffset: int,
            u32BlueOffset: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the white point: each colour's level is multiplied by its gain, then moved by its offset.

        :param u32RedGain: 1024 is 1.0
        :param u32GreenGain: 1024 is 1.0
        :param u32BlueGain: 1024 is 1.0
        :param u32RedOffset: in levels of 10 bits; 1024 is none, less is darker
        :param u32GreenOffset: as for red
        :param u32BlueOffset: as for red

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_set_color_temperature", {
            "u32RedGain": u32RedGain,
            "u32GreenGain": u32GreenGain,
            "u32BlueGain": u32BlueGain,
            "u32RedOffset": u32RedOffset,
            "u32GreenOffset": u32GreenOffset,
            "u32BlueOffset": u32BlueOffset,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_set_color_temperature = set_color_temperature

    @overload
    def get_pq_range(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> DisplayGetPqRange: ...

    @overload
    def get_pq_range(self, *, check: Literal[False], timeout: Optional[float] = None) -> DisplayGetPqRangeUnchecked: ...

    def get_pq_range(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[DisplayGetPqRange, DisplayGetPqRangeUnchecked]:
        """Reads the ranges of the PQ engine's HSY (hue, saturation, luma) colour model.

        :return stRange: the lowest and highest value of each axis
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_get_pq_range", {
        }, DisplayGetPqRange, DisplayGetPqRangeUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_disp_get_pq_range = get_pq_range

    @overload
    def get_tcon_info(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> DisplayGetTconInfo: ...

    @overload
    def get_tcon_info(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> DisplayGetTconInfoUnchecked: ...

    def get_tcon_info(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[DisplayGetTconInfo, DisplayGetTconInfoUnchecked]:
        """Reads what the panel's timing controller (TCON) runs on.

        :return stInfo: its data and its panel
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_get_tcon_info", {
        }, DisplayGetTconInfo, DisplayGetTconInfoUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_disp_get_tcon_info = get_tcon_info

    @overload
    def set_picture_param_struct(
            self, u32Type: int, vecData: Bytes, u32Size: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_picture_param_struct(
            self, u32Type: int, vecData: Bytes, u32Size: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def set_picture_param_struct(
            self, u32Type: int, vecData: Bytes, u32Size: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the picture parameters of one type at once, from the memory image of the chip-layer library's
        record for that type. The service does not look into the bytes.

        :param u32Type: the type, by the library's number
        :param vecData: the record's bytes
        :param u32Size: [byte] the record's size; must be the length of vecData, and not 0

        :return s32Status: -1 when the size is 0 or not the length of vecData, or when there was no memory for
            the bytes (the library was not called); 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_set_picture_param_struct", {
            "u32Type": u32Type,
            "vecData": wire_bytes(vecData),
            "u32Size": u32Size,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_set_picture_param_struct = set_picture_param_struct

    @overload
    def get_lvds_ssc(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> DisplayGetLvdsSsc: ...

    @overload
    def get_lvds_ssc(self, *, check: Literal[False], timeout: Optional[float] = None) -> DisplayGetLvdsSscUnchecked: ...

    def get_lvds_ssc(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[DisplayGetLvdsSsc, DisplayGetLvdsSscUnchecked]:
        """Reads the spread spectrum (SSC) of the panel's LVDS link.

        :return bEnable: whether it is on
        :return s32Frequency: [kHz] frequency of the modulation
        :return s32Deviation: how far the clock is moved, in hundredths of a percent
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_get_lvds_ssc", {
        }, DisplayGetLvdsSsc, DisplayGetLvdsSscUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_disp_get_lvds_ssc = get_lvds_ssc

    @overload
    def get_pwm_range(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> DisplayGetPwmRange: ...

    @overload
    def get_pwm_range(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> DisplayGetPwmRangeUnchecked: ...

    def get_pwm_range(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[DisplayGetPwmRange, DisplayGetPwmRangeUnchecked]:
        """Reads within which duty the PWM of the backlight can be set.

        :return s32Min: [%] lowest duty
        :return s32Max: [%] highest duty
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_get_pwm_range", {
        }, DisplayGetPwmRange, DisplayGetPwmRangeUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_disp_get_pwm_range = get_pwm_range

    @overload
    def get_frc_device_info(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> DisplayGetFrcDeviceInfo: ...

    @overload
    def get_frc_device_info(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> DisplayGetFrcDeviceInfoUnchecked: ...

    def get_frc_device_info(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[DisplayGetFrcDeviceInfo, DisplayGetFrcDeviceInfoUnchecked]:
        """Reads the description of the external frame-rate converter (FRC).

        :return stInfo: the device
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_get_frc_device_info", {
        }, DisplayGetFrcDeviceInfo, DisplayGetFrcDeviceInfoUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_disp_get_frc_device_info = get_frc_device_info

    @overload
    def upgrade_vexa_fw(
            self, strPath: str, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def upgrade_vexa_fw(self, strPath: str, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def upgrade_vexa_fw(
            self, strPath: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Begins to write a new firmware to the frame-rate converter. How far it has got and how it ended are
        events of the display module (notifyDispEvent).

        :param strPath: path of the firmware file

        :return s32Status: 0 once it has begun; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_upgrade_vexa_fw", {"strPath": strPath}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_upgrade_vexa_fw = upgrade_vexa_fw

    @overload
    def get_pq_version(
            self, eWindow: Union[ZvtTvFApiVideoWin, int, str], eType: Union[ZvtTvFApiPqType, int, str], *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> DisplayGetPqVersion: ...

    @overload
    def get_pq_version(
            self, eWindow: Union[ZvtTvFApiVideoWin, int, str], eType: Union[ZvtTvFApiPqType, int, str], *,
            check: Literal[False], timeout: Optional[float] = None
    ) -> DisplayGetPqVersionUnchecked: ...

    def get_pq_version(
            self, eWindow: Union[ZvtTvFApiVideoWin, int, str], eType: Union[ZvtTvFApiPqType, int, str], *,
            check: bool = True, timeout: Optional[float] = None
    ) -> Union[DisplayGetPqVersion, DisplayGetPqVersionUnchecked]:
        """Reads the version of one kind of picture-quality data.

        :param eWindow: the window; a value beyond UNKNOWN reaches the library as UNKNOWN
        :param eType: the kind of data; a value beyond UNKNOWN reaches the library as UNKNOWN

        :return strVersion: at most 128 bytes
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_get_pq_version", {
            "eWindow": eWindow,
            "eType": eType,
        }, DisplayGetPqVersion, DisplayGetPqVersionUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_disp_get_pq_version = get_pq_version

    @overload
    def update_pq_ini_files(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def update_pq_ini_files(self, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def update_pq_ini_files(self, *, check: bool = True, timeout: Optional[float] = None) -> Union[None, Status]:
        """Reads the picture-quality data anew from its ini files.

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_update_pq_ini_files", {}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_update_pq_ini_files = update_pq_ini_files

    @overload
    def set_output_timing(
            self, u32Timing: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_output_timing(
            self, u32Timing: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_output_timing(
            self, u32Timing: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the panel's timing.

        :param u32Timing: the timing, by the library's number

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_set_output_timing", {
            "u32Timing": u32Timing,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_set_output_timing = set_output_timing

    @overload
    def nty_drv_reload_param(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def nty_drv_reload_param(self, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def nty_drv_reload_param(self, *, check: bool = True, timeout: Optional[float] = None) -> Union[None, Status]:
        """Has the display driver load its parameters again.

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_nty_drv_reload_param", {}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_nty_drv_reload_param = nty_drv_reload_param

    @overload
    def set_pq_value(
            self, u32Item: int, s32Value: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_pq_value(
            self, u32Item: int, s32Value: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_pq_value(
            self, u32Item: int, s32Value: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets one item of the PQ engine.

        :param u32Item: the item, by the library's number
        :param s32Value: its new value, in the item's own range

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_set_pq_value", {
            "u32Item": u32Item,
            "s32Value": s32Value,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_set_pq_value = set_pq_value

    @overload
    def capture_screen_to_usb(
            self, strPath: str, s32Option: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def capture_screen_to_usb(
            self, strPath: str, s32Option: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def capture_screen_to_usb(
            self, strPath: str, s32Option: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Writes what the panel shows to a file on the USB storage.

        :param strPath: path of the file on the storage
        :param s32Option: what of the picture is written, by the library's number; 0 is all of it

        :return s32Status: 0 once the file is complete; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_capture_screen_to_usb", {
            "strPath": strPath,
            "s32Option": s32Option,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_capture_screen_to_usb = capture_screen_to_usb

    def get_frc_connect_status(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> DisplayGetFrcConnectStatus:
        """Tells whether the external frame-rate converter answers.

        There is no status: while the chip-layer library is not ready the answer is true, and the caller cannot
        tell that from a converter that answers. Where it matters, ask a method that has one first,
        a_hidl_a_zvttvfapi_disp_get_frc_device_info for example.

        :return bConnected: true as well while the library is not ready
        """
        return self._call("a_hidl_a_zvttvfapi_disp_get_frc_connect_status", {
        }, DisplayGetFrcConnectStatus, DisplayGetFrcConnectStatus, check, timeout)
    a_hidl_a_zvttvfapi_disp_get_frc_connect_status = get_frc_connect_status

    @overload
    def set_gamma_curve(
            self, vecRed: Sequence[int], vecGreen: Sequence[int], vecBlue: Sequence[int], *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_gamma_curve(
            self, vecRed: Sequence[int], vecGreen: Sequence[int], vecBlue: Sequence[int], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def set_gamma_curve(
            self, vecRed: Sequence[int], vecGreen: Sequence[int], vecBlue: Sequence[int], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the gamma curve: the panel's level, 0 to 1023, for each 8-bit input level of a colour.

        Give 256 entries in every table. Of a longer table the rest is ignored; a shorter one counts as if zeros
        followed. A table's number of entries is taken modulo 65536.

        :param vecRed: the table for red
        :param vecGreen: the table for green
        :param vecBlue: the table for blue

        :return s32Status: -2 when a table has no entry, or a multiple of 65536; -4 when there was no memory for
            a table (the library was called in neither case); 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_set_gamma_curve", {
            "vecRed": wire_list(vecRed),
            "vecGreen": wire_list(vecGreen),
            "vecBlue": wire_list(vecBlue),
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_set_gamma_curve = set_gamma_curve

    @overload
    def set_freerun_control(
            self, u32Mode: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_freerun_control(
            self, u32Mode: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_freerun_control(
            self, u32Mode: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets whether and how the output runs on its own clock rather than the input's.

        :param u32Mode: the mode, by the library's number

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disp_set_freerun_control", {
            "u32Mode": u32Mode,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disp_set_freerun_control = set_freerun_control


class DisplayTest(Interface):
    """Test patterns, graphics-layer patterns and burn-in.

    The panel shows, from the bottom up: the video or, in its place, a video test pattern or the burn-in colours;
    the graphics plane, on which the methods named gop draw; the OSD.

    Status of every method: 0 success; -5 the chip-layer library is not ready (nothing was called); any other value,
    unless the method says more, is the library's own, passed on unchanged.

    Patterns and layers are counted by the library, which refuses those that it does not know. Texts are cut at
    their first NUL byte.
    """

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiDisplayTest"

    @overload
    def set_burning_mode(
            self, bEnable: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_burning_mode(self, bEnable: bool, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def set_burning_mode(
            self, bEnable: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Starts or ends the burn-in: the panel goes through plain colours of the library's own, until it is
        ended.

        :param bEnable: true starts it, false ends it

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_set_burning_mode", {
            "bEnable": bEnable,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_set_burning_mode = set_burning_mode

    @overload
    def gen_test_pattern(
            self, u32Pattern: int, stPattern: Union[ZvtTvFApiDispTstPattern, Fields], *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def gen_test_pattern(
            self, u32Pattern: int, stPattern: Union[ZvtTvFApiDispTstPattern, Fields], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def gen_test_pattern(
            self, u32Pattern: int, stPattern: Union[ZvtTvFApiDispTstPattern, Fields], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Shows a video test pattern in place of the video.

        :param u32Pattern: the pattern, by the library's number; 0 shows the video again
        :param stPattern: what the pattern is drawn from; fields that it has no use for are ignored

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gen_test_pattern", {
            "u32Pattern": u32Pattern,
            "stPattern": wire_record(ZvtTvFApiDispTstPattern, stPattern),
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gen_test_pattern = gen_test_pattern

    @overload
    def gen_gop_test_pattern_by_bmp(
            self, strPath: str, u32X: int, u32Y: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def gen_gop_test_pattern_by_bmp(
            self, strPath: str, u32X: int, u32Y: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def gen_gop_test_pattern_by_bmp(
            self, strPath: str, u32X: int, u32Y: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Draws a BMP file on the graphics plane.

        :param strPath: path of the file
        :param u32X: [pixel] where the picture's left edge comes to on the plane
        :param u32Y: [pixel] where the picture's upper edge comes to on the plane

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp", {
            "strPath": strPath,
            "u32X": u32X,
            "u32Y": u32Y,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp = gen_gop_test_pattern_by_bmp

    @overload
    def gen_gop_test_pattern_on(
            self, u32Width: int, u32Height: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def gen_gop_test_pattern_on(
            self, u32Width: int, u32Height: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def gen_gop_test_pattern_on(
            self, u32Width: int, u32Height: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Puts up an empty, wholly transparent graphics plane and shows it.

        :param u32Width: [pixel] the plane's width; 0 is the panel's
        :param u32Height: [pixel] the plane's height; 0 is the panel's

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_on", {
            "u32Width": u32Width,
            "u32Height": u32Height,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_on = gen_gop_test_pattern_on

    @overload
    def gen_gop_test_pattern_off(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def gen_gop_test_pattern_off(self, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def gen_gop_test_pattern_off(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Takes the graphics plane away, with what is drawn on it.

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_off", {}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_off = gen_gop_test_pattern_off

    @overload
    def gen_gop_test_pattern_show(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def gen_gop_test_pattern_show(self, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def gen_gop_test_pattern_show(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Shows the graphics plane again, with what is drawn on it.

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_show", {}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_show = gen_gop_test_pattern_show

    @overload
    def gen_gop_test_pattern_hide(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def gen_gop_test_pattern_hide(self, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def gen_gop_test_pattern_hide(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Hides the graphics plane. What is drawn on it stays, and it can be drawn on.

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_hide", {}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_hide = gen_gop_test_pattern_hide

    @overload
    def set_osd_layer_on_off(
            self, u32Layer: int, bOn: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_osd_layer_on_off(
            self, u32Layer: int, bOn: bool, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_osd_layer_on_off(
            self, u32Layer: int, bOn: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Shows or hides an OSD layer.

        :param u32Layer: the layer, by the library's number
        :param bOn: true shows it, false hides it

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_set_osd_layer_on_off", {
            "u32Layer": u32Layer,
            "bOn": bOn,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_set_osd_layer_on_off = set_osd_layer_on_off

    @overload
    def set_pq_on_off(self, bOn: bool, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def set_pq_on_off(self, bOn: bool, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def set_pq_on_off(
            self, bOn: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Switches picture-quality processing on or off as a whole. Its settings stay.

        :param bOn: true switches it on, false off

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_set_pq_on_off", {"bOn": bOn}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_set_pq_on_off = set_pq_on_off

    @overload
    def gen_gop_test_pattern_draw_line(
            self, stLine: Union[ZvtTvFApiGOPPatternLine_t, Fields], *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def gen_gop_test_pattern_draw_line(
            self, stLine: Union[ZvtTvFApiGOPPatternLine_t, Fields], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def gen_gop_test_pattern_draw_line(
            self, stLine: Union[ZvtTvFApiGOPPatternLine_t, Fields], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Draws a line on the graphics plane.

        :param stLine: the line

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line", {
            "stLine": wire_record(ZvtTvFApiGOPPatternLine_t, stLine),
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_line = gen_gop_test_pattern_draw_line

    @overload
    def gen_gop_test_pattern_draw_rect(
            self, stRect: Union[ZvtTvFApiGOPPatternRect_t, Fields], *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def gen_gop_test_pattern_draw_rect(
            self, stRect: Union[ZvtTvFApiGOPPatternRect_t, Fields], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def gen_gop_test_pattern_draw_rect(
            self, stRect: Union[ZvtTvFApiGOPPatternRect_t, Fields], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Draws a rectangle on the graphics plane.

        :param stRect: the rectangle

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect", {
            "stRect": wire_record(ZvtTvFApiGOPPatternRect_t, stRect),
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_rect = gen_gop_test_pattern_draw_rect

    @overload
    def gen_gop_test_pattern_draw_bitmap(
            self, stBitmap: Union[ZvtTvFApiGOPPatternBitmap_t, Fields], *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def gen_gop_test_pattern_draw_bitmap(
            self, stBitmap: Union[ZvtTvFApiGOPPatternBitmap_t, Fields], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def gen_gop_test_pattern_draw_bitmap(
            self, stBitmap: Union[ZvtTvFApiGOPPatternBitmap_t, Fields], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Refused: the chip-layer library has no counterpart of the record. To draw a picture, use
        a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_by_bmp.

        :param stBitmap: not read

        :return s32Status: -1; -5 when the library is not ready
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_bitmap", {
            "stBitmap": wire_record(ZvtTvFApiGOPPatternBitmap_t, stBitmap),
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gen_gop_test_pattern_draw_bitmap = gen_gop_test_pattern_draw_bitmap

    @overload
    def gop_pattern_set_attr(
            self, stAttr: Union[ZvtTvFApiGOPPatternAttr_t, Fields], *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def gop_pattern_set_attr(
            self, stAttr: Union[ZvtTvFApiGOPPatternAttr_t, Fields], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def gop_pattern_set_attr(
            self, stAttr: Union[ZvtTvFApiGOPPatternAttr_t, Fields], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets how the graphics plane is shown and drawn on.

        :param stAttr: the attributes, all of them

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_disptst_gop_pattern_set_attr", {
            "stAttr": wire_record(ZvtTvFApiGOPPatternAttr_t, stAttr),
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_disptst_gop_pattern_set_attr = gop_pattern_set_attr

    @overload
    def set_burning_mode_adv(
            self, bEnable: bool, u8Interval: int, vecColors: Sequence[Union[ZvtTvFApiColor, Fields]], *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_burning_mode_adv(
            self, bEnable: bool, u8Interval: int, vecColors: Sequence[Union[ZvtTvFApiColor, Fields]], *,
            check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_burning_mode_adv(
            self, bEnable: bool, u8Interval: int, vecColors: Sequence[Union[ZvtTvFApiColor, Fields]], *,
            check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Starts the burn-in with colours of the caller's, or ends it.

        The library is given the number of colours modulo 256, and that many from the start: of 300 the first
        44. Of a multiple of 256 it is given none, and decides what that means.

        :param bEnable: true starts it, false ends it
        :param u8Interval: [s] how long each colour is shown; 0 is the library's own pace
        :param vecColors: the colours in order, at least one, also to end the burn-in

        :return s32Status: -2 without a colour, -4 when there was no memory for them (the library was called in
            neither case); 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_disptst_set_burning_mode_adv", {
            "bEnable": bEnable,
            "u8Interval": u8Interval,
            "vecColors": wire_records(ZvtTvFApiColor, vecColors),
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_disptst_set_burning_mode_adv = set_burning_mode_adv


class InformationGetIniPara(NamedTuple):
    """What get_ini_para gives.

    :ivar strIniValue: the value, at most 2047 bytes; on a failure, whatever text the library left, usually none
    """

    strIniValue: str


class InformationGetIniParaUnchecked(NamedTuple):
    """What get_ini_para gives with check=False."""

    strIniValue: str
    s32Status: int


class InformationGetIpEnableStatus(NamedTuple):
    """What get_ip_enable_status gives.

    :ivar bEnable: false as well when the library failed without an answer
    """

    bEnable: bool

    def __bool__(self) -> bool:
        return self.bEnable


class InformationGetIpEnableStatusUnchecked(NamedTuple):
    """What get_ip_enable_status gives with check=False."""

    bEnable: bool
    s32Status: int


class InformationGetFapiSwVersion(NamedTuple):
    """What get_fapi_sw_version gives.

    :ivar strVersion: at most 127 bytes
    """

    strVersion: str


class InformationGetFapiSwVersionUnchecked(NamedTuple):
    """What get_fapi_sw_version gives with check=False."""

    strVersion: str
    s32Status: int


class Information(Interface):
    """Configuration parameters and identity of the chip-layer library.

    Status of every method: 0 success; -5 the chip-layer library is not ready (nothing was called, the other results
    are empty); any other value is the library's own, passed on unchanged.
    """

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiInformation"

    @overload
    def get_ini_para(
            self, strIniArg1: str, strIniArg2: str, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InformationGetIniPara: ...

    @overload
    def get_ini_para(
            self, strIniArg1: str, strIniArg2: str, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InformationGetIniParaUnchecked: ...

    def get_ini_para(
            self, strIniArg1: str, strIniArg2: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InformationGetIniPara, InformationGetIniParaUnchecked]:
        """Reads one parameter of the INI configuration.

        The two texts that name a parameter are the chip-layer library's to define and mean the same in both
        methods. Each text is cut at its first NUL byte.

        :param strIniArg1: first part of the parameter's name
        :param strIniArg2: second part of the parameter's name

        :return strIniValue: the value, at most 2047 bytes; on a failure, whatever text the library left,
            usually none
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_info_get_ini_para", {
            "strIniArg1": strIniArg1,
            "strIniArg2": strIniArg2,
        }, InformationGetIniPara, InformationGetIniParaUnchecked, check, timeout)
    a_hidl_zvttvfapi_info_get_ini_para = get_ini_para

    @overload
    def set_ini_para(
            self, strIniArg1: str, strIniArg2: str, strIniValue: str, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_ini_para(
            self, strIniArg1: str, strIniArg2: str, strIniValue: str, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def set_ini_para(
            self, strIniArg1: str, strIniArg2: str, strIniValue: str, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Writes one parameter of the INI configuration.

        :param strIniArg1: first part of the parameter's name
        :param strIniArg2: second part of the parameter's name
        :param strIniValue: the new value

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_info_set_ini_para", {
            "strIniArg1": strIniArg1,
            "strIniArg2": strIniArg2,
            "strIniValue": strIniValue,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_info_set_ini_para = set_ini_para

    @overload
    def get_ip_enable_status(
            self, u32IpId: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InformationGetIpEnableStatus: ...

    @overload
    def get_ip_enable_status(
            self, u32IpId: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InformationGetIpEnableStatusUnchecked: ...

    def get_ip_enable_status(
            self, u32IpId: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InformationGetIpEnableStatus, InformationGetIpEnableStatusUnchecked]:
        """Tells whether a numbered IP of the chip is enabled.

        :param u32IpId: the IP's number, in the chip-layer library's numbering

        :return bEnable: false as well when the library failed without an answer
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_info_get_ip_enable_status", {
            "u32IpId": u32IpId,
        }, InformationGetIpEnableStatus, InformationGetIpEnableStatusUnchecked, check, timeout)
    a_hidl_zvttvfapi_info_get_ip_enable_status = get_ip_enable_status

    @overload
    def get_fapi_sw_version(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InformationGetFapiSwVersion: ...

    @overload
    def get_fapi_sw_version(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InformationGetFapiSwVersionUnchecked: ...

    def get_fapi_sw_version(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InformationGetFapiSwVersion, InformationGetFapiSwVersionUnchecked]:
        """Reads the chip-layer library's version text.

        :return strVersion: at most 127 bytes
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_info_get_fapi_sw_version", {
        }, InformationGetFapiSwVersion, InformationGetFapiSwVersionUnchecked, check, timeout)
    a_hidl_zvttvfapi_info_get_fapi_sw_version = get_fapi_sw_version


class InputSourceGetDemodInfo(NamedTuple):
    """What get_demod_info gives.

    :ivar stDemodInfo: four empty texts
    """

    stDemodInfo: ZvtTvFApiDemodInfoParam_t


class InputSourceGetDemodInfoUnchecked(NamedTuple):
    """What get_demod_info gives with check=False."""

    stDemodInfo: ZvtTvFApiDemodInfoParam_t
    s32Status: int


class InputSourceGetVideoStandard(NamedTuple):
    """What get_video_standard gives.

    :ivar u8Standard: 0 unknown, 1 PAL, 2 NTSC M, 3 SECAM, 4 NTSC 4.43, 5 PAL M, 6 PAL N, 7 PAL 60
    """

    u8Standard: int


class InputSourceGetVideoStandardUnchecked(NamedTuple):
    """What get_video_standard gives with check=False."""

    u8Standard: int
    s32Status: int


class InputSourceCheckVdSignalLocked(NamedTuple):
    """What check_vd_signal_locked gives.

    :ivar u8LockStatus: 1 locked, 0 not locked
    """

    u8LockStatus: int


class InputSourceCheckVdSignalLockedUnchecked(NamedTuple):
    """What check_vd_signal_locked gives with check=False."""

    u8LockStatus: int
    s32Status: int


class InputSourceGetAdcPhase(NamedTuple):
    """What get_adc_phase gives.

    :ivar stPhase: its phases
    """

    stPhase: ZvtTvFApiAdcPhase_t


class InputSourceGetAdcPhaseUnchecked(NamedTuple):
    """What get_adc_phase gives with check=False."""

    stPhase: ZvtTvFApiAdcPhase_t
    s32Status: int


class InputSourceGetAdcGainOffset(NamedTuple):
    """What get_adc_gain_offset gives.

    :ivar stGainOffset: its calibration
    """

    stGainOffset: ZvtTvFApiAdcGainOffset_t


class InputSourceGetAdcGainOffsetUnchecked(NamedTuple):
    """What get_adc_gain_offset gives with check=False."""

    stGainOffset: ZvtTvFApiAdcGainOffset_t
    s32Status: int


class InputSourceGetFactoryVdPara(NamedTuple):
    """What get_factory_vd_para gives.

    :ivar u32Value: its value
    """

    u32Value: int


class InputSourceGetFactoryVdParaUnchecked(NamedTuple):
    """What get_factory_vd_para gives with check=False."""

    u32Value: int
    s32Status: int


class InputSourceGetCurrentInputSource(NamedTuple):
    """What get_current_input_source gives.

    :ivar u32Source: the source's number, at most 255
    """

    u32Source: int


class InputSourceGetCurrentInputSourceUnchecked(NamedTuple):
    """What get_current_input_source gives with check=False."""

    u32Source: int
    s32Status: int


class InputSourceGetCurrentInputSourceType(NamedTuple):
    """What get_current_input_source_type gives.

    :ivar u32Type: 0 none, 1 tuner, 2 composite, 3 component, 4 PC, 5 HDMI, 6 files and streams; at most 255
    """

    u32Type: int


class InputSourceGetCurrentInputSourceTypeUnchecked(NamedTuple):
    """What get_current_input_source_type gives with check=False."""

    u32Type: int
    s32Status: int


class InputSourceGetInputTiming(NamedTuple):
    """What get_input_timing gives.

    :ivar stTiming: the timing, all 0 without a signal
    """

    stTiming: ZvtTvFApiVideoTiming


class InputSourceGetInputTimingUnchecked(NamedTuple):
    """What get_input_timing gives with check=False."""

    stTiming: ZvtTvFApiVideoTiming
    s32Status: int


class InputSourceGetBer(NamedTuple):
    """What get_ber gives.

    :ivar s32Ber: [1e-9] wrong bits in a thousand million
    """

    s32Ber: int


class InputSourceGetBerUnchecked(NamedTuple):
    """What get_ber gives with check=False."""

    s32Ber: int
    s32Status: int


class InputSource(Interface):
    """Input sources: calibration, video decoder, timing and bit error rate.

    Status of every method: 0 success; -5 the chip-layer library is not ready (nothing was called, the other results
    are 0 or empty); any other value, unless the method says more, is the library's own, passed on unchanged. When
    the library fails, the other results are what it left in them.

    Numbers of sources: 0 none, 1 analogue tuner, 2 digital tuner, 3 composite video (AV), 4 component video, 5 VGA,
    6 to 8 HDMI 1 to 3, 9 files and streams. The sources 3, 4 and 5 have an analogue-to-digital converter (ADC),
    which can be calibrated whatever source is current. The library refuses numbers that it does not know and values
    beyond their range.

    Clients get notifyInpSrcEvent events about the current source's signal, stObj1.u32Value being the source: type
    0x200001 when the signal was locked or lost (stObj2.u32Value 1 or 0), type 0x200002 when the timing of a locked
    signal is another one (stObj2.u32Value the frame rate in mHz, stObj2.strValue a description such as "1920x1080i
    50.000 Hz").
    """

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiInputSource"

    @overload
    def auto_gain_offset(
            self, s32DevType: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def auto_gain_offset(
            self, s32DevType: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def auto_gain_offset(
            self, s32DevType: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Finds gain and offset of an ADC source from the reference signal at its input, and sets them; returns
        when that is done. Without a signal the calibration stays as it was.

        :param s32DevType: the source's number; the library sees a negative one as a large number

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_auto_gain_offset", {
            "s32DevType": s32DevType,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_inpsrc_auto_gain_offset = auto_gain_offset

    @overload
    def get_demod_info(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InputSourceGetDemodInfo: ...

    @overload
    def get_demod_info(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InputSourceGetDemodInfoUnchecked: ...

    def get_demod_info(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceGetDemodInfo, InputSourceGetDemodInfoUnchecked]:
        """Fails always: what a demodulator tells cannot be delivered yet.

        :return stDemodInfo: four empty texts
        :return s32Status: -1; -5 while the chip-layer library is not ready
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_get_demod_info", {
        }, InputSourceGetDemodInfo, InputSourceGetDemodInfoUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_get_demod_info = get_demod_info

    @overload
    def get_video_standard(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InputSourceGetVideoStandard: ...

    @overload
    def get_video_standard(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InputSourceGetVideoStandardUnchecked: ...

    def get_video_standard(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceGetVideoStandard, InputSourceGetVideoStandardUnchecked]:
        """Reads the colour standard that the video decoder (VD) recognises.

        :return u8Standard: 0 unknown, 1 PAL, 2 NTSC M, 3 SECAM, 4 NTSC 4.43, 5 PAL M, 6 PAL N, 7 PAL 60
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_get_video_standard", {
        }, InputSourceGetVideoStandard, InputSourceGetVideoStandardUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_get_video_standard = get_video_standard

    @overload
    def check_vd_signal_locked(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InputSourceCheckVdSignalLocked: ...

    @overload
    def check_vd_signal_locked(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InputSourceCheckVdSignalLockedUnchecked: ...

    def check_vd_signal_locked(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceCheckVdSignalLocked, InputSourceCheckVdSignalLockedUnchecked]:
        """Tells whether the video decoder is locked to its signal.

        :return u8LockStatus: 1 locked, 0 not locked
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_check_vd_signal_locked", {
        }, InputSourceCheckVdSignalLocked, InputSourceCheckVdSignalLockedUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_check_vd_signal_locked = check_vd_signal_locked

    @overload
    def set_adc_phase(
            self, u32Source: int, u32RedPhase: int, u32GreenPhase: int, u32BluePhase: int, *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_adc_phase(
            self, u32Source: int, u32RedPhase: int, u32GreenPhase: int, u32BluePhase: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def set_adc_phase(
            self, u32Source: int, u32RedPhase: int, u32GreenPhase: int, u32BluePhase: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the sampling phases of an ADC source.

        :param u32Source: the source's number
        :param u32RedPhase: [1/64 clock] red, or Pr, 0 to 63
        :param u32GreenPhase: [1/64 clock] green, or Y, 0 to 63
        :param u32BluePhase: [1/64 clock] blue, or Pb, 0 to 63

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_set_adc_phase", {
            "u32Source": u32Source,
            "u32RedPhase": u32RedPhase,
            "u32GreenPhase": u32GreenPhase,
            "u32BluePhase": u32BluePhase,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_inpsrc_set_adc_phase = set_adc_phase

    @overload
    def set_adc_gain_offset(
            self, u32Source: int, u32RedGain: int, u32GreenGain: int, u32BlueGain: int, u32RedOffset: int,
            u32GreenOffset: int, u32BlueOffset: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_adc_gain_offset(
            self, u32Source: int, u32RedGain: int, u32GreenGain: int, u32BlueGain: int, u32RedOffset: int,
            u32GreenOffset: int, u32BlueOffset: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_adc_gain_offset(
            self, u32Source: int, u32RedGain: int, u32GreenGain: int, u32BlueGain: int, u32RedOffset: int,
            u32GreenOffset: int, u32BlueOffset: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the gains and offsets of an ADC source.

        :param u32Source: the source's number
        :param u32RedGain: [1/4096] gain of red, or Pr, 0 to 16383
        :param u32GreenGain: [1/4096] gain of green, or Y, 0 to 16383
        :param u32BlueGain: [1/4096] gain of blue, or Pb, 0 to 16383
        :param u32RedOffset: offset of red, or Pr, 0 to 4095; 2048 is none
        :param u32GreenOffset: offset of green, or Y, 0 to 4095; 2048 is none
        :param u32BlueOffset: offset of blue, or Pb, 0 to 4095; 2048 is none

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_set_adc_gain_offset", {
            "u32Source": u32Source,
            "u32RedGain": u32RedGain,
            "u32GreenGain": u32GreenGain,
            "u32BlueGain": u32BlueGain,
            "u32RedOffset": u32RedOffset,
            "u32GreenOffset": u32GreenOffset,
            "u32BlueOffset": u32BlueOffset,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_inpsrc_set_adc_gain_offset = set_adc_gain_offset

    @overload
    def get_adc_phase(
            self, u32Source: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InputSourceGetAdcPhase: ...

    @overload
    def get_adc_phase(
            self, u32Source: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InputSourceGetAdcPhaseUnchecked: ...

    def get_adc_phase(
            self, u32Source: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceGetAdcPhase, InputSourceGetAdcPhaseUnchecked]:
        """Reads the sampling phases of an ADC source.

        :param u32Source: the source's number

        :return stPhase: its phases
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_get_adc_phase", {
            "u32Source": u32Source,
        }, InputSourceGetAdcPhase, InputSourceGetAdcPhaseUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_get_adc_phase = get_adc_phase

    @overload
    def get_adc_gain_offset(
            self, u32Source: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InputSourceGetAdcGainOffset: ...

    @overload
    def get_adc_gain_offset(
            self, u32Source: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InputSourceGetAdcGainOffsetUnchecked: ...

    def get_adc_gain_offset(
            self, u32Source: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceGetAdcGainOffset, InputSourceGetAdcGainOffsetUnchecked]:
        """Reads the gains and offsets of an ADC source.

        :param u32Source: the source's number

        :return stGainOffset: its calibration
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_get_adc_gain_offset", {
            "u32Source": u32Source,
        }, InputSourceGetAdcGainOffset, InputSourceGetAdcGainOffsetUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_get_adc_gain_offset = get_adc_gain_offset

    @overload
    def vif_init(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def vif_init(self, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def vif_init(self, *, check: bool = True, timeout: Optional[float] = None) -> Union[None, Status]:
        """Puts the analogue tuner's intermediate-frequency stage (VIF) back into the state that it has after power
        on.

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_vif_init", {}, None, Status, check, timeout)
    a_hidl_zvttvfapi_inpsrc_vif_init = vif_init

    @overload
    def set_factory_vd_para(
            self, u32Param: int, u32Value: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_factory_vd_para(
            self, u32Param: int, u32Value: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_factory_vd_para(
            self, u32Param: int, u32Value: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets a factory parameter of the video decoder.

        :param u32Param: the parameter, by the library's number
        :param u32Value: its new value, in the parameter's own range

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_set_factory_vd_para", {
            "u32Param": u32Param,
            "u32Value": u32Value,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_inpsrc_set_factory_vd_para = set_factory_vd_para

    @overload
    def get_factory_vd_para(
            self, u32Param: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InputSourceGetFactoryVdPara: ...

    @overload
    def get_factory_vd_para(
            self, u32Param: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InputSourceGetFactoryVdParaUnchecked: ...

    def get_factory_vd_para(
            self, u32Param: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceGetFactoryVdPara, InputSourceGetFactoryVdParaUnchecked]:
        """Reads a factory parameter of the video decoder.

        :param u32Param: the parameter, by the library's number

        :return u32Value: its value
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_get_factory_vd_para", {
            "u32Param": u32Param,
        }, InputSourceGetFactoryVdPara, InputSourceGetFactoryVdParaUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_get_factory_vd_para = get_factory_vd_para

    @overload
    def get_current_input_source(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InputSourceGetCurrentInputSource: ...

    @overload
    def get_current_input_source(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InputSourceGetCurrentInputSourceUnchecked: ...

    def get_current_input_source(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceGetCurrentInputSource, InputSourceGetCurrentInputSourceUnchecked]:
        """Reads the current input source.

        :return u32Source: the source's number, at most 255
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_get_current_input_source", {
        }, InputSourceGetCurrentInputSource, InputSourceGetCurrentInputSourceUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_get_current_input_source = get_current_input_source

    @overload
    def get_current_input_source_type(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InputSourceGetCurrentInputSourceType: ...

    @overload
    def get_current_input_source_type(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InputSourceGetCurrentInputSourceTypeUnchecked: ...

    def get_current_input_source_type(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceGetCurrentInputSourceType, InputSourceGetCurrentInputSourceTypeUnchecked]:
        """Reads what kind of input the current source is.

        :return u32Type: 0 none, 1 tuner, 2 composite, 3 component, 4 PC, 5 HDMI, 6 files and streams; at most
            255
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_get_current_input_source_type", {
        }, InputSourceGetCurrentInputSourceType, InputSourceGetCurrentInputSourceTypeUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_get_current_input_source_type = get_current_input_source_type

    @overload
    def get_input_timing(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> InputSourceGetInputTiming: ...

    @overload
    def get_input_timing(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> InputSourceGetInputTimingUnchecked: ...

    def get_input_timing(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceGetInputTiming, InputSourceGetInputTimingUnchecked]:
        """Reads the timing of the current source's signal.

        :return stTiming: the timing, all 0 without a signal
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_get_input_timing", {
        }, InputSourceGetInputTiming, InputSourceGetInputTimingUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_get_input_timing = get_input_timing

    @overload
    def get_ber(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> InputSourceGetBer: ...

    @overload
    def get_ber(self, *, check: Literal[False], timeout: Optional[float] = None) -> InputSourceGetBerUnchecked: ...

    def get_ber(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[InputSourceGetBer, InputSourceGetBerUnchecked]:
        """Reads the bit error rate of the digital tuner's signal.

        :return s32Ber: [1e-9] wrong bits in a thousand million
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_inpsrc_get_ber", {
        }, InputSourceGetBer, InputSourceGetBerUnchecked, check, timeout)
    a_hidl_zvttvfapi_inpsrc_get_ber = get_ber


class Manager(Interface):
    """The event manager: relays the events of the chip-layer modules to every client that has registered.

    Its methods work whether or not the chip-layer library is ready.
    """

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiManager"

    @overload
    def post_event(
            self, u32EvtType: int, stObj1: Union[ZvtTvFApiEventCommonObject, Fields],
            stObj2: Union[ZvtTvFApiEventCommonObject, Fields], stObj3: Union[ZvtTvFApiEventCommonObject, Fields],
            stObj4: Union[ZvtTvFApiEventCommonObject, Fields], *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def post_event(
            self, u32EvtType: int, stObj1: Union[ZvtTvFApiEventCommonObject, Fields],
            stObj2: Union[ZvtTvFApiEventCommonObject, Fields], stObj3: Union[ZvtTvFApiEventCommonObject, Fields],
            stObj4: Union[ZvtTvFApiEventCommonObject, Fields], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def post_event(
            self, u32EvtType: int, stObj1: Union[ZvtTvFApiEventCommonObject, Fields],
            stObj2: Union[ZvtTvFApiEventCommonObject, Fields], stObj3: Union[ZvtTvFApiEventCommonObject, Fields],
            stObj4: Union[ZvtTvFApiEventCommonObject, Fields], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Posts an event to all registered clients, the poster included, as if a module had raised it. The lowest
        set bit of bits 16 to 24 of the type chooses the callback method:

        16 notifySysEvent, 17 notifyNetEvent, 18 notifyDispEvent, 19 notifyDispTstEvent, 20 notifyPrphrlEvent,
        21 notifyInpSrcEvent, 22 notifyAudEvent, 23 notifyInfoEvent, 24 notifyTvEvent

        :param u32EvtType: the event's type, passed on unchanged
        :param stObj1: first payload record; texts are cut at their first NUL
        :param stObj2: second payload record
        :param stObj3: third payload record
        :param stObj4: fourth payload record

        :return s32Status: 0 when every client was told; -1 when at least one could not be told, or when there
            was no memory for the event; -2 when none of bits 16 to 24 is set
        """
        return self._call("a_hidl_a_zvttvfapi_mngr_post_event", {
            "u32EvtType": u32EvtType,
            "stObj1": wire_record(ZvtTvFApiEventCommonObject, stObj1),
            "stObj2": wire_record(ZvtTvFApiEventCommonObject, stObj2),
            "stObj3": wire_record(ZvtTvFApiEventCommonObject, stObj3),
            "stObj4": wire_record(ZvtTvFApiEventCommonObject, stObj4),
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_mngr_post_event = post_event


class Network(Interface):
    """MAC address and network interfaces.

    Status of every method: 0 success; -5 the chip-layer library is not ready (nothing was called); any other value
    is the library's own, passed on unchanged. Texts are cut at their first NUL byte and otherwise reach the library
    as they are.
    """

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiNetwork"

    @overload
    def set_mac(self, strMac: str, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def set_mac(self, strMac: str, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def set_mac(self, strMac: str, *, check: bool = True, timeout: Optional[float] = None) -> Union[None, Status]:
        """Sets the television's MAC address.

        :param strMac: six groups of two hexadecimal digits of either case, all separated by ':' or all by '-'.
            The library refuses every other text, and group addresses (lowest bit of the first group set); the
            address stays then

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_net_set_mac", {"strMac": strMac}, None, Status, check, timeout)
    a_hidl_zvttvfapi_net_set_mac = set_mac

    @overload
    def set_interface_updown(
            self, strIfName: str, bUp: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_interface_updown(
            self, strIfName: str, bUp: bool, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_interface_updown(
            self, strIfName: str, bUp: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Brings a network interface up or down.

        :param strIfName: the interface's name, such as eth0; the library refuses an unknown one
        :param bUp: whether it is to be up; it is a success if it is so already

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_net_set_interface_updown", {
            "strIfName": strIfName,
            "bUp": bUp,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_net_set_interface_updown = set_interface_updown


class PeripheralGetRcFormat(NamedTuple):
    """What get_rc_format gives.

    :ivar u8Protocol: the protocol, by the library's number; 255 when it is unknown, or the library is not ready
    """

    u8Protocol: int


class PeripheralGetRcFormatUnchecked(NamedTuple):
    """What get_rc_format gives with check=False."""

    u8Protocol: int
    s32Status: int


class PeripheralReadFromI2c(NamedTuple):
    """What read_from_i2c gives.

    :ivar vecData: u16Size bytes, after a failure of the library too: then what it had read, and zeros, without
        meaning; empty when the service did not call it (-5, and -1 as below)
    """

    vecData: bytes


class PeripheralReadFromI2cUnchecked(NamedTuple):
    """What read_from_i2c gives with check=False."""

    vecData: bytes
    s32Status: int


class PeripheralGetGpioStatus(NamedTuple):
    """What get_gpio_status gives.

    :ivar u8GpioStatus: 1 high, 0 low
    """

    u8GpioStatus: int


class PeripheralGetGpioStatusUnchecked(NamedTuple):
    """What get_gpio_status gives with check=False."""

    u8GpioStatus: int
    s32Status: int


class PeripheralGetCecStatus(NamedTuple):
    """What get_cec_status gives.

    :ivar s32CecStatus: the state, by the library's number, 0 to 255
    """

    s32CecStatus: int


class PeripheralGetCecStatusUnchecked(NamedTuple):
    """What get_cec_status gives with check=False."""

    s32CecStatus: int
    s32Status: int


class PeripheralGetEarcStatus(NamedTuple):
    """What get_earc_status gives.

    :ivar s32EarcStatus: the state, by the library's number
    """

    s32EarcStatus: int


class PeripheralGetEarcStatusUnchecked(NamedTuple):
    """What get_earc_status gives with check=False."""

    s32EarcStatus: int
    s32Status: int


class PeripheralGetIicSlaveAddress(NamedTuple):
    """What get_iic_slave_address gives.

    :ivar u16SlaveAddr: its address of 7 bits
    """

    u16SlaveAddr: int


class PeripheralGetIicSlaveAddressUnchecked(NamedTuple):
    """What get_iic_slave_address gives with check=False."""

    u16SlaveAddr: int
    s32Status: int


class PeripheralPwmGetAttr(NamedTuple):
    """What pwm_get_attr gives.

    :ivar u32Value: the attribute's value, in its unit
    """

    u32Value: int


class PeripheralPwmGetAttrUnchecked(NamedTuple):
    """What pwm_get_attr gives with check=False."""

    u32Value: int
    s32Status: int


class PeripheralGetHdmiEdidData(NamedTuple):
    """What get_hdmi_edid_data gives.

    :ivar stEdid: the EDID
    """

    stEdid: ZvtTvFApiHDMI_EDID_Data_t


class PeripheralGetHdmiEdidDataUnchecked(NamedTuple):
    """What get_hdmi_edid_data gives with check=False."""

    stEdid: ZvtTvFApiHDMI_EDID_Data_t
    s32Status: int


class PeripheralGetSarAdc(NamedTuple):
    """What get_sar_adc gives.

    :ivar u8Value: the low 8 bits of the library's result; 0 also while the library is not ready: there is no status
    """

    u8Value: int


class Peripheral(Interface):
    """Board peripherals: UART, buses, GPIO, PWM, keys, HDMI, CEC and infrared.

    Status of every method: 0 success; -1, -2 and -4 where a method says so; -5 the chip-layer library is not ready
    (nothing was called, the other results are 0 or empty); any other value is the library's own, passed on
    unchanged. When the library fails, the other results are what it left in them. Some methods have a result in
    place of a status, and some do not wait for the library to be ready: they say so.

    Numbers of ports, lines, channels, modes and kinds are the library's, which refuses those that it does not know.
    Texts are cut at their first NUL byte, unless a method says otherwise. The service does not order calls that
    touch the same UART, bus or line.

    Clients get notifyPrphrlEvent events of these types:

    - 0x100001 bytes came in on the factory UART: stObj1.u32Value the port, stObj1.vecValue the bytes
    - 0x100002 bytes came in on the standard factory UART: the same
    - 0x100003 the monitored GPIO line has changed: stObj1.u32Value the line, stObj2.u32Value its level, 1 high or 0
      low
    - 0x100004 a key: stObj1.u32Value its code, stObj1.strValue "keypad" or "ir", stObj2.u32Value 1 pressed or 0
      released
    - 0x100005 the keypad's ADC has another value: stObj1.u32Value the channel, stObj2.u32Value the value
    - 0x100006 a source has begun or ceased to see an HDMI port: stObj1.u32Value the port, stObj2.u32Value 1 or 0
    """

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiPeripheral"

    @overload
    def set_factory_uart_onoff(
            self, bEnable: bool, s8Mode: int, s8Port: int, s8Speed: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_factory_uart_onoff(
            self, bEnable: bool, s8Mode: int, s8Port: int, s8Speed: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Done: ...

    def set_factory_uart_onoff(
            self, bEnable: bool, s8Mode: int, s8Port: int, s8Speed: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Done]:
        """Gives the board's serial console to the factory UART, or back to the system.

        :param bEnable: true for the factory UART
        :param s8Mode: what the console is used for; ignored when it is given back
        :param s8Port: the port of the console
        :param s8Speed: the line's speed, by the library's number; ignored when it is given back

        :return bDone: whether it was done; false also while the library is not ready: there is no status
        """
        return self._call("a_hidl_zvttvfapi_prphrl_set_factory_uart_onoff", {
            "bEnable": bEnable,
            "s8Mode": s8Mode,
            "s8Port": s8Port,
            "s8Speed": s8Speed,
        }, None, Done, check, timeout)
    a_hidl_zvttvfapi_prphrl_set_factory_uart_onoff = set_factory_uart_onoff

    @overload
    def write_factory_uart(
            self, strText: str, u32Count: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def write_factory_uart(
            self, strText: str, u32Count: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Done: ...

    def write_factory_uart(
            self, strText: str, u32Count: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Done]:
        """Sends a text to the factory UART. A NUL byte within u32Count is sent like any other.

        :param strText: the text
        :param u32Count: [byte] how many bytes to send. It reaches the library unchanged: where it is less than
            the text's length, the text's beginning is sent; where it is more, NUL bytes stand behind the text,
            up to that count

        :return bDone: whether they were sent; false also when there is no memory for so many bytes behind the
            text, and while the library is not ready: there is no status
        """
        return self._call("a_hidl_zvttvfapi_prphrl_write_factory_uart", {
            "strText": strText,
            "u32Count": u32Count,
        }, None, Done, check, timeout)
    a_hidl_zvttvfapi_prphrl_write_factory_uart = write_factory_uart

    @overload
    def set_std_factory_uart_onoff(
            self, bEnable: bool, s8Port: int, s8Mode: int, eConfig: Union[ZvtTvFApiStdFactoryUartConfig, int, str],
            *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_std_factory_uart_onoff(
            self, bEnable: bool, s8Port: int, s8Mode: int, eConfig: Union[ZvtTvFApiStdFactoryUartConfig, int, str],
            *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_std_factory_uart_onoff(
            self, bEnable: bool, s8Port: int, s8Mode: int, eConfig: Union[ZvtTvFApiStdFactoryUartConfig, int, str],
            *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Starts or stops the standard factory UART, which takes the console for bytes.

        :param bEnable: true starts it; false stops it, and the other arguments are ignored
        :param s8Port: the port of the console
        :param s8Mode: what the console is used for
        :param eConfig: the line's settings; a value that is none of the enumeration counts as UNKNOWN

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_set_std_factory_uart_onoff", {
            "bEnable": bEnable,
            "s8Port": s8Port,
            "s8Mode": s8Mode,
            "eConfig": eConfig,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_set_std_factory_uart_onoff = set_std_factory_uart_onoff

    @overload
    def write_std_factory_uart(
            self, vecData: Bytes, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def write_std_factory_uart(
            self, vecData: Bytes, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def write_std_factory_uart(
            self, vecData: Bytes, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sends bytes to the standard factory UART.

        :param vecData: 1 to 255 bytes. The number of bytes counts modulo 256: of 300 bytes the first 44 are
            sent, and 256 bytes are as good as none

        :return s32Status: -2 when there is nothing to send; -4 when there was no memory for the bytes; 0
            success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_write_std_factory_uart", {
            "vecData": wire_bytes(vecData),
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_write_std_factory_uart = write_std_factory_uart

    @overload
    def set_std_factory_uart_custom_config(
            self, s8Port: int, u8Format: int, u32BaudRate: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_std_factory_uart_custom_config(
            self, s8Port: int, u8Format: int, u32BaudRate: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def set_std_factory_uart_custom_config(
            self, s8Port: int, u8Format: int, u32BaudRate: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets what the configuration CUSTOM of the standard factory UART stands for, from its next start on.

        :param s8Port: the port of the console
        :param u8Format: data bits, parity and stop bits, by the library's number
        :param u32BaudRate: [baud] the line's rate

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_set_std_factory_uart_custom_config", {
            "s8Port": s8Port,
            "u8Format": u8Format,
            "u32BaudRate": u32BaudRate,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_set_std_factory_uart_custom_config = set_std_factory_uart_custom_config

    @overload
    def get_keypad_code(
            self, bStart: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def get_keypad_code(self, bStart: bool, *, check: Literal[False], timeout: Optional[float] = None) -> Done: ...

    def get_keypad_code(
            self, bStart: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Done]:
        """Starts or stops reading the board's keypad; while it is read, its keys raise events. The code of a key
        comes with its event.

        :param bStart: true starts

        :return bDone: whether it was done; false also while the library is not ready: there is no status
        """
        return self._call("a_hidl_zvttvfapi_prphrl_get_keypad_code", {"bStart": bStart}, None, Done, check, timeout)
    a_hidl_zvttvfapi_prphrl_get_keypad_code = get_keypad_code

    @overload
    def get_adc_in_keypad(
            self, bEnable: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def get_adc_in_keypad(self, bEnable: bool, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def get_adc_in_keypad(
            self, bEnable: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Starts or stops reporting the values of the keypad's ADC; they come as events.

        :param bEnable: true starts

        :return s32Status: the library's own, 0 success; 0 also while the library is not ready
        """
        return self._call("a_hidl_zvttvfapi_prphrl_get_adc_in_keypad", {
            "bEnable": bEnable,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_get_adc_in_keypad = get_adc_in_keypad

    @overload
    def get_rc_format(
            self, strName: str, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> PeripheralGetRcFormat: ...

    @overload
    def get_rc_format(
            self, strName: str, *, check: Literal[False], timeout: Optional[float] = None
    ) -> PeripheralGetRcFormatUnchecked: ...

    def get_rc_format(
            self, strName: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[PeripheralGetRcFormat, PeripheralGetRcFormatUnchecked]:
        """Tells which protocol a remote control speaks.

        :param strName: name of the remote control, as the library knows it

        :return u8Protocol: the protocol, by the library's number; 255 when it is unknown, or the library is not
            ready
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_get_rc_format", {
            "strName": strName,
        }, PeripheralGetRcFormat, PeripheralGetRcFormatUnchecked, check, timeout)
    a_hidl_zvttvfapi_prphrl_get_rc_format = get_rc_format

    @overload
    def enable_iic(self, s32Port: int, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def enable_iic(self, s32Port: int, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def enable_iic(
            self, s32Port: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Lets the board drive an I2C bus.

        :param s32Port: the bus

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_enable_iic", {"s32Port": s32Port}, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_enable_iic = enable_iic

    @overload
    def disable_iic(self, s32Port: int, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def disable_iic(self, s32Port: int, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def disable_iic(
            self, s32Port: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Takes the board off an I2C bus, so that something outside can drive it.

        :param s32Port: the bus

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_disable_iic", {"s32Port": s32Port}, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_disable_iic = disable_iic

    @overload
    def read_from_i2c(
            self, s32Port: int, u16SlaveAddr: int, u16Mode: int, vecAddr: Bytes, u16Size: int, *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> PeripheralReadFromI2c: ...

    @overload
    def read_from_i2c(
            self, s32Port: int, u16SlaveAddr: int, u16Mode: int, vecAddr: Bytes, u16Size: int, *,
            check: Literal[False], timeout: Optional[float] = None
    ) -> PeripheralReadFromI2cUnchecked: ...

    def read_from_i2c(
            self, s32Port: int, u16SlaveAddr: int, u16Mode: int, vecAddr: Bytes, u16Size: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[PeripheralReadFromI2c, PeripheralReadFromI2cUnchecked]:
        """Writes address bytes to a device on an I2C bus, then reads bytes from it.

        :param s32Port: the bus
        :param u16SlaveAddr: the device, by its address of 7 bits
        :param u16Mode: how the bus goes from writing to reading; 0 by a repeated start, others by the library's
            number
        :param vecAddr: the address bytes, a register or a place in a memory, most significant first; at least
            one. Their number counts modulo 65536
        :param u16Size: [byte] how many to read, at least 1

        :return vecData: u16Size bytes, after a failure of the library too: then what it had read, and zeros,
            without meaning; empty when the service did not call it (-5, and -1 as below)
        :return s32Status: -1 when u16Size is 0, vecAddr is empty or there was no memory for the bytes (nothing
            was sent to the bus); 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_read_from_i2c", {
            "s32Port": s32Port,
            "u16SlaveAddr": u16SlaveAddr,
            "u16Mode": u16Mode,
            "vecAddr": wire_bytes(vecAddr),
            "u16Size": u16Size,
        }, PeripheralReadFromI2c, PeripheralReadFromI2cUnchecked, check, timeout)
    a_hidl_zvttvfapi_prphrl_read_from_i2c = read_from_i2c

    @overload
    def write_to_i2c(
            self, s32Port: int, u16SlaveAddr: int, vecAddr: Bytes, u16Size: int, vecData: Bytes, *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def write_to_i2c(
            self, s32Port: int, u16SlaveAddr: int, vecAddr: Bytes, u16Size: int, vecData: Bytes, *,
            check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def write_to_i2c(
            self, s32Port: int, u16SlaveAddr: int, vecAddr: Bytes, u16Size: int, vecData: Bytes, *,
            check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Writes bytes to a device on an I2C bus, behind address bytes or without any.

        :param s32Port: the bus
        :param u16SlaveAddr: the device, by its address of 7 bits
        :param vecAddr: the address bytes, a register or a place in a memory, most significant first; none to
            write the data alone. Their number counts modulo 65536
        :param u16Size: [byte] how many bytes of data to write, at least 1
        :param vecData: the data: bytes beyond u16Size are not written, and zeros are written where it has fewer

        :return s32Status: -1 when u16Size is 0 or there was no memory for the bytes (nothing was sent to the
            bus); 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_write_to_i2c", {
            "s32Port": s32Port,
            "u16SlaveAddr": u16SlaveAddr,
            "vecAddr": wire_bytes(vecAddr),
            "u16Size": u16Size,
            "vecData": wire_bytes(vecData),
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_write_to_i2c = write_to_i2c

    @overload
    def control_gpio(
            self, u32Gpio: int, u32Level: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def control_gpio(
            self, u32Gpio: int, u32Level: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def control_gpio(
            self, u32Gpio: int, u32Level: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Drives a GPIO line.

        :param u32Gpio: the line
        :param u32Level: 1 high, 0 low

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_control_gpio", {
            "u32Gpio": u32Gpio,
            "u32Level": u32Level,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_control_gpio = control_gpio

    @overload
    def get_gpio_status(
            self, u32Gpio: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> PeripheralGetGpioStatus: ...

    @overload
    def get_gpio_status(
            self, u32Gpio: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> PeripheralGetGpioStatusUnchecked: ...

    def get_gpio_status(
            self, u32Gpio: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[PeripheralGetGpioStatus, PeripheralGetGpioStatusUnchecked]:
        """Reads the level of a GPIO line. The library is asked in every state, ready or not.

        :param u32Gpio: the line

        :return u8GpioStatus: 1 high, 0 low
        :return s32Status: the library's own, 0 success
        """
        return self._call("a_hidl_a_zvttvfapi_prphrl_get_gpio_status", {
            "u32Gpio": u32Gpio,
        }, PeripheralGetGpioStatus, PeripheralGetGpioStatusUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_prphrl_get_gpio_status = get_gpio_status

    @overload
    def set_gpio_monitor_onoff(
            self, bEnable: bool, u32Gpio: int, u32Trigger: int, u32Interval: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_gpio_monitor_onoff(
            self, bEnable: bool, u32Gpio: int, u32Trigger: int, u32Interval: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def set_gpio_monitor_onoff(
            self, bEnable: bool, u32Gpio: int, u32Trigger: int, u32Interval: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Starts or stops the GPIO monitor, which raises an event when a line changes. There is one: a start while
        it runs replaces what it watches.

        :param bEnable: true starts it; false stops it, and the other arguments are ignored
        :param u32Gpio: the line
        :param u32Trigger: 0 on every change, 1 when it rises, 2 when it falls
        :param u32Interval: [ms] how often to look, at least; 0 is the library's own pace

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_set_gpio_monitor_onoff", {
            "bEnable": bEnable,
            "u32Gpio": u32Gpio,
            "u32Trigger": u32Trigger,
            "u32Interval": u32Interval,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_set_gpio_monitor_onoff = set_gpio_monitor_onoff

    @overload
    def reload_hdcp_key(
            self, strKeyType: str, strKeyPath: str, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def reload_hdcp_key(
            self, strKeyType: str, strKeyPath: str, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def reload_hdcp_key(
            self, strKeyType: str, strKeyPath: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Installs an HDCP key.

        :param strKeyType: the kind of key, as the library names it
        :param strKeyPath: path of the file that holds the key

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_reload_hdcp_key", {
            "strKeyType": strKeyType,
            "strKeyPath": strKeyPath,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_reload_hdcp_key = reload_hdcp_key

    @overload
    def enable_cec(self, bEnable: bool, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def enable_cec(self, bEnable: bool, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def enable_cec(
            self, bEnable: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Switches CEC on or off.

        :param bEnable: true switches it on

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_enable_cec", {"bEnable": bEnable}, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_enable_cec = enable_cec

    @overload
    def get_cec_status(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> PeripheralGetCecStatus: ...

    @overload
    def get_cec_status(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> PeripheralGetCecStatusUnchecked: ...

    def get_cec_status(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[PeripheralGetCecStatus, PeripheralGetCecStatusUnchecked]:
        """Reads the state of CEC.

        :return s32CecStatus: the state, by the library's number, 0 to 255
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_get_cec_status", {
        }, PeripheralGetCecStatus, PeripheralGetCecStatusUnchecked, check, timeout)
    a_hidl_zvttvfapi_prphrl_get_cec_status = get_cec_status

    @overload
    def get_earc_status(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> PeripheralGetEarcStatus: ...

    @overload
    def get_earc_status(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> PeripheralGetEarcStatusUnchecked: ...

    def get_earc_status(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[PeripheralGetEarcStatus, PeripheralGetEarcStatusUnchecked]:
        """Reads the state of eARC.

        :return s32EarcStatus: the state, by the library's number
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_get_earc_status", {
        }, PeripheralGetEarcStatus, PeripheralGetEarcStatusUnchecked, check, timeout)
    a_hidl_zvttvfapi_prphrl_get_earc_status = get_earc_status

    @overload
    def get_iic_slave_address(
            self, u16Device: int, u16Index: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> PeripheralGetIicSlaveAddress: ...

    @overload
    def get_iic_slave_address(
            self, u16Device: int, u16Index: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> PeripheralGetIicSlaveAddressUnchecked: ...

    def get_iic_slave_address(
            self, u16Device: int, u16Index: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[PeripheralGetIicSlaveAddress, PeripheralGetIicSlaveAddressUnchecked]:
        """Looks up the I2C address of one of the board's devices.

        :param u16Device: the kind of device, by the library's number
        :param u16Index: which one of that kind, from 0

        :return u16SlaveAddr: its address of 7 bits
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_get_iic_slave_address", {
            "u16Device": u16Device,
            "u16Index": u16Index,
        }, PeripheralGetIicSlaveAddress, PeripheralGetIicSlaveAddressUnchecked, check, timeout)
    a_hidl_zvttvfapi_prphrl_get_iic_slave_address = get_iic_slave_address

    @overload
    def pwm_set_attr(
            self, eAttr: Union[ZvtTvFApiPwmAttr, int, str], eChannel: Union[ZvtTvFApiPwmChannel, int, str],
            u32Value: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def pwm_set_attr(
            self, eAttr: Union[ZvtTvFApiPwmAttr, int, str], eChannel: Union[ZvtTvFApiPwmChannel, int, str],
            u32Value: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def pwm_set_attr(
            self, eAttr: Union[ZvtTvFApiPwmAttr, int, str], eChannel: Union[ZvtTvFApiPwmChannel, int, str],
            u32Value: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets an attribute of a PWM output. A value that is none of its enumeration counts as UNKNOWN.

        :param eAttr: the attribute
        :param eChannel: the output
        :param u32Value: its new value, in the attribute's unit

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_pwm_set_attr", {
            "eAttr": eAttr,
            "eChannel": eChannel,
            "u32Value": u32Value,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_pwm_set_attr = pwm_set_attr

    @overload
    def pwm_get_attr(
            self, eAttr: Union[ZvtTvFApiPwmAttr, int, str], eChannel: Union[ZvtTvFApiPwmChannel, int, str], *,
            check: Literal[True] = True, timeout: Optional[float] = None
    ) -> PeripheralPwmGetAttr: ...

    @overload
    def pwm_get_attr(
            self, eAttr: Union[ZvtTvFApiPwmAttr, int, str], eChannel: Union[ZvtTvFApiPwmChannel, int, str], *,
            check: Literal[False], timeout: Optional[float] = None
    ) -> PeripheralPwmGetAttrUnchecked: ...

    def pwm_get_attr(
            self, eAttr: Union[ZvtTvFApiPwmAttr, int, str], eChannel: Union[ZvtTvFApiPwmChannel, int, str], *,
            check: bool = True, timeout: Optional[float] = None
    ) -> Union[PeripheralPwmGetAttr, PeripheralPwmGetAttrUnchecked]:
        """Reads an attribute of a PWM output. A value that is none of its enumeration counts as UNKNOWN.

        :param eAttr: the attribute
        :param eChannel: the output

        :return u32Value: the attribute's value, in its unit
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_pwm_get_attr", {
            "eAttr": eAttr,
            "eChannel": eChannel,
        }, PeripheralPwmGetAttr, PeripheralPwmGetAttrUnchecked, check, timeout)
    a_hidl_zvttvfapi_prphrl_pwm_get_attr = pwm_get_attr

    @overload
    def set_hdmi_edid_version(
            self, s32Port: int, s8Version: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_hdmi_edid_version(
            self, s32Port: int, s8Version: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_hdmi_edid_version(
            self, s32Port: int, s8Version: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Chooses which of its EDIDs an HDMI port shows to a source.

        :param s32Port: the port
        :param s8Version: the EDID, by the library's number

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_set_hdmi_edid_version", {
            "s32Port": s32Port,
            "s8Version": s8Version,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_set_hdmi_edid_version = set_hdmi_edid_version

    @overload
    def set_uart_pipe_mode(
            self, bEnable: bool, strName: str, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_uart_pipe_mode(
            self, bEnable: bool, strName: str, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_uart_pipe_mode(
            self, bEnable: bool, strName: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Connects the serial console to a pipe, from which another program of the board uses it, or disconnects
        it.

        :param bEnable: true connects it
        :param strName: name of the pipe, as the library knows it

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_set_uart_pipe_mode", {
            "bEnable": bEnable,
            "strName": strName,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_set_uart_pipe_mode = set_uart_pipe_mode

    @overload
    def enable_ir_block_key(
            self, bEnable: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def enable_ir_block_key(
            self, bEnable: bool, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def enable_ir_block_key(
            self, bEnable: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Switches the blocking of remote-control keys on or off. The list of keys stays.

        :param bEnable: true switches it on

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_enable_ir_block_key", {
            "bEnable": bEnable,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_enable_ir_block_key = enable_ir_block_key

    @overload
    def add_ir_block_key(
            self, u64CustomCode: int, u64KeyCode: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def add_ir_block_key(
            self, u64CustomCode: int, u64KeyCode: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def add_ir_block_key(
            self, u64CustomCode: int, u64KeyCode: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Adds a key to the list of remote-control keys that are blocked.

        :param u64CustomCode: code of the remote control that sends it
        :param u64KeyCode: the key's own code

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_add_ir_block_key", {
            "u64CustomCode": u64CustomCode,
            "u64KeyCode": u64KeyCode,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_add_ir_block_key = add_ir_block_key

    @overload
    def invert_ir_block_key(
            self, bInvert: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def invert_ir_block_key(
            self, bInvert: bool, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def invert_ir_block_key(
            self, bInvert: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Turns the meaning of the list of keys over, or back.

        :param bInvert: true: the keys on the list pass and all others are blocked; false: the keys on the list
            are blocked

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_prphrl_invert_ir_block_key", {
            "bInvert": bInvert,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_invert_ir_block_key = invert_ir_block_key

    @overload
    def set_hdmi_hpd(
            self, u8Port: int, bPlugged: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_hdmi_hpd(
            self, u8Port: int, bPlugged: bool, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_hdmi_hpd(
            self, u8Port: int, bPlugged: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the hot-plug detect (HPD) line of an HDMI port. The library is called in every state, ready or not.

        :param u8Port: the port
        :param bPlugged: true: a source sees the port as plugged in

        :return s32Status: the library's own, 0 success
        """
        return self._call("a_hidl_zvttvfapi_prphrl_set_hdmi_hpd", {
            "u8Port": u8Port,
            "bPlugged": bPlugged,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_set_hdmi_hpd = set_hdmi_hpd

    @overload
    def get_hdmi_edid_data(
            self, u32Port: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> PeripheralGetHdmiEdidData: ...

    @overload
    def get_hdmi_edid_data(
            self, u32Port: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> PeripheralGetHdmiEdidDataUnchecked: ...

    def get_hdmi_edid_data(
            self, u32Port: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[PeripheralGetHdmiEdidData, PeripheralGetHdmiEdidDataUnchecked]:
        """Reads the EDID of an HDMI port, as a source sees it.

        :param u32Port: the port

        :return stEdid: the EDID
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_prphrl_get_hdmi_edid_data", {
            "u32Port": u32Port,
        }, PeripheralGetHdmiEdidData, PeripheralGetHdmiEdidDataUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_prphrl_get_hdmi_edid_data = get_hdmi_edid_data

    @overload
    def set_hdmi_edid_data(
            self, s32Port: int, s8Version: int, s32Size: int, vecData: Bytes, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_hdmi_edid_data(
            self, s32Port: int, s8Version: int, s32Size: int, vecData: Bytes, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def set_hdmi_edid_data(
            self, s32Port: int, s8Version: int, s32Size: int, vecData: Bytes, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Replaces an EDID of an HDMI port.

        :param s32Port: the port
        :param s8Version: which of the port's EDIDs, by the library's number
        :param s32Size: [byte] the size of the EDID. It reaches the library unchanged, the sign bit as the
            highest of 32, whatever the length of vecData
        :param vecData: the EDID, 256 bytes. Where there are fewer, or none, the library finds zeros behind
            them; it does not read more

        :return s32Status: -1 when there was no memory for the bytes (the library was not called); 0 success; -5
            not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_prphrl_set_hdmi_edid_data", {
            "s32Port": s32Port,
            "s8Version": s8Version,
            "s32Size": s32Size,
            "vecData": wire_bytes(vecData),
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_prphrl_set_hdmi_edid_data = set_hdmi_edid_data

    def get_sar_adc(
            self, s32Channel: int, s32Mode: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> PeripheralGetSarAdc:
        """Measures a channel of the successive-approximation ADC.

        :param s32Channel: the channel
        :param s32Mode: how it is measured, by the library's number

        :return u8Value: the low 8 bits of the library's result; 0 also while the library is not ready: there is
            no status
        """
        return self._call("a_hidl_a_zvttvfapi_prphrl_get_sar_adc", {
            "s32Channel": s32Channel,
            "s32Mode": s32Mode,
        }, PeripheralGetSarAdc, PeripheralGetSarAdc, check, timeout)
    a_hidl_a_zvttvfapi_prphrl_get_sar_adc = get_sar_adc

    @overload
    def reload_hdcp(
            self, eReload: Union[ZvtTvFApiReloadHdcp, int, str], *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def reload_hdcp(
            self, eReload: Union[ZvtTvFApiReloadHdcp, int, str], *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def reload_hdcp(
            self, eReload: Union[ZvtTvFApiReloadHdcp, int, str], *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Reloads HDCP, with the keys that are installed.

        :param eReload: what is reloaded; STATE is all that can be

        :return s32Status: -2 for any other value than STATE (the library was not called); 0 success; -5 not
            ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_prphrl_reload_hdcp", {"eReload": eReload}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_prphrl_reload_hdcp = reload_hdcp

    @overload
    def switch_to_ttys1(
            self, bEnable: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def switch_to_ttys1(self, bEnable: bool, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def switch_to_ttys1(
            self, bEnable: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Moves the board's console to the second serial device, or back to the first.

        :param bEnable: true moves it to the second one

        :return s32Status: 0 once the library was called, whatever the switch did; -5 when it is not ready
        """
        return self._call("a_hidl_zvttvfapi_prphrl_switch_to_ttys1", {"bEnable": bEnable}, None, Status, check, timeout)
    a_hidl_zvttvfapi_prphrl_switch_to_ttys1 = switch_to_ttys1


class SystemGetEmmcEnvVar(NamedTuple):
    """What get_emmc_env_var gives.

    :ivar strVarValue: its value, at most 1023 bytes
    """

    strVarValue: str


class SystemGetEmmcEnvVarUnchecked(NamedTuple):
    """What get_emmc_env_var gives with check=False."""

    strVarValue: str
    s32Status: int


class SystemGetWdtStatus(NamedTuple):
    """What get_wdt_status gives.

    :ivar bEnable: false as well while the chip-layer library is not ready: there is no status
    """

    bEnable: bool

    def __bool__(self) -> bool:
        return self.bEnable


class SystemReadEmmc(NamedTuple):
    """What read_emmc gives.

    :ivar vecBytes: u32Length bytes, after a failure of the library too: then what it had read, and zeros, without
        meaning
    """

    vecBytes: bytes


class SystemReadEmmcUnchecked(NamedTuple):
    """What read_emmc gives with check=False."""

    vecBytes: bytes
    s32Status: int


class SystemReadFileOneLine(NamedTuple):
    """What read_file_one_line gives.

    :ivar strLine: the line, up to its first NUL byte, without its end; empty at the end of the file
    """

    strLine: str


class SystemReadFileOneLineUnchecked(NamedTuple):
    """What read_file_one_line gives with check=False."""

    strLine: str
    s32Status: int


class SystemReadFile(NamedTuple):
    """What read_file gives.

    :ivar strData: what was read, up to its first NUL byte
    """

    strData: str


class SystemReadFileUnchecked(NamedTuple):
    """What read_file gives with check=False."""

    strData: str
    s32Status: int


class SystemReadFileByte(NamedTuple):
    """What read_file_byte gives.

    :ivar vecBytes: what was read, NULs included: fewer bytes, or none, at the end of the file; after a failure,
        what the library had read before it
    """

    vecBytes: bytes


class SystemReadFileByteUnchecked(NamedTuple):
    """What read_file_byte gives with check=False."""

    vecBytes: bytes
    s32Status: int


class SystemGetFileChecksum(NamedTuple):
    """What get_file_checksum gives.

    :ivar u32Checksum: the checksum; after a failure, what the library left, usually 0
    """

    u32Checksum: int


class SystemGetFileChecksumUnchecked(NamedTuple):
    """What get_file_checksum gives with check=False."""

    u32Checksum: int
    s32Status: int


class SystemReadReg(NamedTuple):
    """What read_reg gives.

    :ivar u32Value: its value; 0 after a failure
    """

    u32Value: int


class SystemReadRegUnchecked(NamedTuple):
    """What read_reg gives with check=False."""

    u32Value: int
    s32Status: int


class SystemGetRtcTime(NamedTuple):
    """What get_rtc_time gives.

    :ivar u64Time: [s] since 1970-01-01 00:00 UTC, at most 4294967295; after a failure, what the library left,
        usually 0
    """

    u64Time: int


class SystemGetRtcTimeUnchecked(NamedTuple):
    """What get_rtc_time gives with check=False."""

    u64Time: int
    s32Status: int


class SystemGetCustomerHash(NamedTuple):
    """What get_customer_hash gives.

    :ivar vecBytes: the hash, at most 16 bytes
    """

    vecBytes: bytes


class SystemGetCustomerHashUnchecked(NamedTuple):
    """What get_customer_hash gives with check=False."""

    vecBytes: bytes
    s32Status: int


class SystemGetDataindexPath(NamedTuple):
    """What get_dataindex_path gives.

    :ivar strPath: the path, at most 128 bytes
    """

    strPath: str


class SystemGetDataindexPathUnchecked(NamedTuple):
    """What get_dataindex_path gives with check=False."""

    strPath: str
    s32Status: int


class System(Interface):
    """Files, storage, keys and the board itself.

    Status of every method: 0 success; -1 the service could not produce the result; -2 nothing to write; -4 no
    memory for the data; -5 the chip-layer library is not ready (nothing was called, the other results are empty);
    any other value is the library's own, passed on unchanged. A failure leaves the other results empty unless the
    method says otherwise.

    Paths, names and texts are cut at their first NUL byte. Paths are the board's; those that it does not let a
    client reach are refused with a status of the library's.

    A process, the service's or a client's, has 1 MiB less two pages (1016 KiB with pages of 4 KiB) for everything
    that is being sent to it, arguments and results of all its calls together. What finds no room fails at the
    caller as a transport error; when it is the results, the method has done its work. So a call should carry a few
    tens of KiB at most: read and write what is longer in pieces, for instance of 32768 bytes each. The service does
    not order calls that touch the same file, area or register.
    """

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiSystem"

    @overload
    def get_emmc_env_var(
            self, strVarName: str, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> SystemGetEmmcEnvVar: ...

    @overload
    def get_emmc_env_var(
            self, strVarName: str, *, check: Literal[False], timeout: Optional[float] = None
    ) -> SystemGetEmmcEnvVarUnchecked: ...

    def get_emmc_env_var(
            self, strVarName: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[SystemGetEmmcEnvVar, SystemGetEmmcEnvVarUnchecked]:
        """Reads an environment variable from the eMMC.

        :param strVarName: the variable's name

        :return strVarValue: its value, at most 1023 bytes
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_sys_get_emmc_env_var", {
            "strVarName": strVarName,
        }, SystemGetEmmcEnvVar, SystemGetEmmcEnvVarUnchecked, check, timeout)
    a_hidl_zvttvfapi_sys_get_emmc_env_var = get_emmc_env_var

    @overload
    def set_emmc_env_var(
            self, strVarName: str, strVarValue: str, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_emmc_env_var(
            self, strVarName: str, strVarValue: str, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def set_emmc_env_var(
            self, strVarName: str, strVarValue: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets an environment variable on the eMMC. Once acknowledged it survives a restart.

        :param strVarName: the variable's name
        :param strVarValue: its new value; only up to 1023 bytes can be read back

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_sys_set_emmc_env_var", {
            "strVarName": strVarName,
            "strVarValue": strVarValue,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_sys_set_emmc_env_var = set_emmc_env_var

    @overload
    def update_system_key(
            self, strKeyPath: str, bReplace: bool, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def update_system_key(
            self, strKeyPath: str, bReplace: bool, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def update_system_key(
            self, strKeyPath: str, bReplace: bool, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Installs a system key.

        :param strKeyPath: path of the file that holds the key
        :param bReplace: whether a key that is installed already is replaced; otherwise it is a failure

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_update_system_key", {
            "strKeyPath": strKeyPath,
            "bReplace": bReplace,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_update_system_key = update_system_key

    @overload
    def secure_storage_encrypt_key(
            self, strStorageName: str, strKeyName: str, vecUserKey: Bytes, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def secure_storage_encrypt_key(
            self, strStorageName: str, strKeyName: str, vecUserKey: Bytes, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def secure_storage_encrypt_key(
            self, strStorageName: str, strKeyName: str, vecUserKey: Bytes, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Encrypts a user key and puts it into the secure storage. While debug lines are on, the key's bytes are
        written to the log.

        :param strStorageName: the storage area
        :param strKeyName: the key's name in that area
        :param vecUserKey: the plain key, 1 to 255 bytes. The number of bytes counts modulo 256: of 300 bytes
            the first 44 are the key, and 256 bytes are as good as none

        :return s32Status: -1 for a key without bytes, and (never -4) without memory for it; 0 success; -5 not
            ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_secure_storage_encrypt_key", {
            "strStorageName": strStorageName,
            "strKeyName": strKeyName,
            "vecUserKey": wire_bytes(vecUserKey),
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_secure_storage_encrypt_key = secure_storage_encrypt_key

    @overload
    def check_file(self, strPath: str, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def check_file(self, strPath: str, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def check_file(
            self, strPath: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Tells whether a file can be used.

        :param strPath: the file's path

        :return s32Status: 0 when it is a plain file that can be read; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_check_file", {"strPath": strPath}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_check_file = check_file

    @overload
    def copy_file(
            self, strSrcPath: str, strDstPath: str, bCopyOption: bool, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def copy_file(
            self, strSrcPath: str, strDstPath: str, bCopyOption: bool, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def copy_file(
            self, strSrcPath: str, strDstPath: str, bCopyOption: bool, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Copies a file, or a folder with all that is in it.

        :param strSrcPath: what is copied
        :param strDstPath: path of the copy
        :param bCopyOption: whether something that is at strDstPath already is replaced; otherwise it is a
            failure

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_copy_file", {
            "strSrcPath": strSrcPath,
            "strDstPath": strDstPath,
            "bCopyOption": bCopyOption,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_copy_file = copy_file

    @overload
    def set_wdt(self, bEnable: bool, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def set_wdt(self, bEnable: bool, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def set_wdt(self, bEnable: bool, *, check: bool = True, timeout: Optional[float] = None) -> Union[None, Status]:
        """Starts or stops the watchdog.

        :param bEnable: true starts it

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_sys_set_wdt", {"bEnable": bEnable}, None, Status, check, timeout)
    a_hidl_zvttvfapi_sys_set_wdt = set_wdt

    def get_wdt_status(self, *, check: bool = True, timeout: Optional[float] = None) -> SystemGetWdtStatus:
        """Tells whether the watchdog runs.

        :return bEnable: false as well while the chip-layer library is not ready: there is no status
        """
        return self._call("a_hidl_zvttvfapi_sys_get_wdt_status", {
        }, SystemGetWdtStatus, SystemGetWdtStatus, check, timeout)
    a_hidl_zvttvfapi_sys_get_wdt_status = get_wdt_status

    @overload
    def set_miu_ssc(
            self, u8MiuId: int, u16Modulation: int, u16Deviation: int, bEnable: bool, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def set_miu_ssc(
            self, u8MiuId: int, u16Modulation: int, u16Deviation: int, bEnable: bool, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def set_miu_ssc(
            self, u8MiuId: int, u16Modulation: int, u16Deviation: int, bEnable: bool, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the spread-spectrum clock of a memory interface unit (MIU).

        :param u8MiuId: the unit's number, from 0
        :param u16Modulation: [kHz] modulation frequency
        :param u16Deviation: [0.01 %] deviation from the nominal frequency
        :param bEnable: whether the clock is spread

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_sys_set_miu_ssc", {
            "u8MiuId": u8MiuId,
            "u16Modulation": u16Modulation,
            "u16Deviation": u16Deviation,
            "bEnable": bEnable,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_sys_set_miu_ssc = set_miu_ssc

    @overload
    def upgrade_fw(
            self, u8Target: int, strPath: str, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def upgrade_fw(
            self, u8Target: int, strPath: str, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def upgrade_fw(
            self, u8Target: int, strPath: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Writes a firmware image to its target and returns when that is done, which may take minutes.

        Meanwhile clients get notifySysEvent events of type 0x10001: stObj1.u32Value is the percentage done, 0
        to 100, stObj1.strValue the path, stObj2.u32Value the target and stObj2.strValue "running"; the last
        one, before the call returns, says "done" or "failed" there. The upgrade goes on, and so do the events,
        if the caller ends.

        :param u8Target: the target's number, in the chip-layer library's numbering
        :param strPath: path of the image

        :return s32Status: how the upgrade ended: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_sys_upgrade_fw", {
            "u8Target": u8Target,
            "strPath": strPath,
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_sys_upgrade_fw = upgrade_fw

    @overload
    def write_emmc(
            self, strEmmcName: str, u32Offset: int, vecData: Bytes, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def write_emmc(
            self, strEmmcName: str, u32Offset: int, vecData: Bytes, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def write_emmc(
            self, strEmmcName: str, u32Offset: int, vecData: Bytes, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Writes bytes into an area of the eMMC. Once acknowledged they survive a restart.

        :param strEmmcName: the area's name
        :param u32Offset: [bytes] where in the area to begin
        :param vecData: the bytes, at least one

        :return s32Status: -2 when vecData is empty; -4 without memory for the bytes; 0 success; -5 not ready;
            else the library's own
        """
        return self._call("a_hidl_zvttvfapi_sys_write_emmc", {
            "strEmmcName": strEmmcName,
            "u32Offset": u32Offset,
            "vecData": wire_bytes(vecData),
        }, None, Status, check, timeout)
    a_hidl_zvttvfapi_sys_write_emmc = write_emmc

    @overload
    def read_emmc(
            self, strEmmcName: str, u32Offset: int, u32Length: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> SystemReadEmmc: ...

    @overload
    def read_emmc(
            self, strEmmcName: str, u32Offset: int, u32Length: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> SystemReadEmmcUnchecked: ...

    def read_emmc(
            self, strEmmcName: str, u32Offset: int, u32Length: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[SystemReadEmmc, SystemReadEmmcUnchecked]:
        """Reads bytes from an area of the eMMC.

        :param strEmmcName: the area's name
        :param u32Offset: [bytes] where in the area to begin
        :param u32Length: [bytes] how many to read; 0 is passed on to the library

        :return vecBytes: u32Length bytes, after a failure of the library too: then what it had read, and zeros,
            without meaning
        :return s32Status: 0 success; -4 without memory for the bytes; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_sys_read_emmc", {
            "strEmmcName": strEmmcName,
            "u32Offset": u32Offset,
            "u32Length": u32Length,
        }, SystemReadEmmc, SystemReadEmmcUnchecked, check, timeout)
    a_hidl_zvttvfapi_sys_read_emmc = read_emmc

    @overload
    def remove_file(self, strPath: str, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def remove_file(self, strPath: str, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def remove_file(
            self, strPath: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Removes a file, or a folder with all that is in it.

        :param strPath: the path

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_remove_file", {"strPath": strPath}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_remove_file = remove_file

    @overload
    def create_file(self, strPath: str, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def create_file(self, strPath: str, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def create_file(
            self, strPath: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Makes an empty file in a folder that exists.

        :param strPath: the path; a failure if there is something already

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_create_file", {"strPath": strPath}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_create_file = create_file

    @overload
    def create_folder(self, strPath: str, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def create_folder(self, strPath: str, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def create_folder(
            self, strPath: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Makes a folder in a folder that exists.

        :param strPath: the path; a failure if there is something already

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_create_folder", {"strPath": strPath}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_create_folder = create_folder

    @overload
    def check_folder(self, strPath: str, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def check_folder(self, strPath: str, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def check_folder(
            self, strPath: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Tells whether a folder can be used.

        :param strPath: the folder's path

        :return s32Status: 0 when it is a folder that can be listed; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_check_folder", {"strPath": strPath}, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_check_folder = check_folder

    @overload
    def read_file_one_line(
            self, strPath: str, u32Length: int, u64Offset: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> SystemReadFileOneLine: ...

    @overload
    def read_file_one_line(
            self, strPath: str, u32Length: int, u64Offset: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> SystemReadFileOneLineUnchecked: ...

    def read_file_one_line(
            self, strPath: str, u32Length: int, u64Offset: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[SystemReadFileOneLine, SystemReadFileOneLineUnchecked]:
        """Reads one line of a file as text.

        :param strPath: the file's path
        :param u32Length: [bytes] room for the line and one byte for its end: u32Length - 1 bytes of it are read
            at most
        :param u64Offset: [bytes] where in the file the line begins

        :return strLine: the line, up to its first NUL byte, without its end; empty at the end of the file
        :return s32Status: 0 success; -4 without memory for the line, -1 for its text; -5 not ready; else the
            library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_read_file_one_line", {
            "strPath": strPath,
            "u32Length": u32Length,
            "u64Offset": u64Offset,
        }, SystemReadFileOneLine, SystemReadFileOneLineUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_sys_read_file_one_line = read_file_one_line

    @overload
    def read_file(
            self, strPath: str, u32Length: int, u64Offset: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> SystemReadFile: ...

    @overload
    def read_file(
            self, strPath: str, u32Length: int, u64Offset: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> SystemReadFileUnchecked: ...

    def read_file(
            self, strPath: str, u32Length: int, u64Offset: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[SystemReadFile, SystemReadFileUnchecked]:
        """Reads a part of a file as text.

        :param strPath: the file's path
        :param u32Length: [bytes] how many to read at most; 0 never succeeds
        :param u64Offset: [bytes] where in the file to begin

        :return strData: what was read, up to its first NUL byte
        :return s32Status: -1 also when there was nothing to read (the end of the file), and when the library
            claims more bytes than were asked for; -4 without memory for the text; 0 success; -5 not ready; else
            the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_read_file", {
            "strPath": strPath,
            "u32Length": u32Length,
            "u64Offset": u64Offset,
        }, SystemReadFile, SystemReadFileUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_sys_read_file = read_file

    @overload
    def read_file_byte(
            self, strPath: str, u32Length: int, u64Offset: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> SystemReadFileByte: ...

    @overload
    def read_file_byte(
            self, strPath: str, u32Length: int, u64Offset: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> SystemReadFileByteUnchecked: ...

    def read_file_byte(
            self, strPath: str, u32Length: int, u64Offset: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[SystemReadFileByte, SystemReadFileByteUnchecked]:
        """Reads a part of a file as bytes.

        :param strPath: the file's path
        :param u32Length: [bytes] how many to read at most
        :param u64Offset: [bytes] where in the file to begin

        :return vecBytes: what was read, NULs included: fewer bytes, or none, at the end of the file; after a
            failure, what the library had read before it
        :return s32Status: -1 when the library claims more bytes than were asked for; -4 without memory for the
            bytes; 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_read_file_byte", {
            "strPath": strPath,
            "u32Length": u32Length,
            "u64Offset": u64Offset,
        }, SystemReadFileByte, SystemReadFileByteUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_sys_read_file_byte = read_file_byte

    @overload
    def get_file_checksum(
            self, strPath: str, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> SystemGetFileChecksum: ...

    @overload
    def get_file_checksum(
            self, strPath: str, *, check: Literal[False], timeout: Optional[float] = None
    ) -> SystemGetFileChecksumUnchecked: ...

    def get_file_checksum(
            self, strPath: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[SystemGetFileChecksum, SystemGetFileChecksumUnchecked]:
        """Computes a file's CRC-32, the one of Ethernet and gzip.

        :param strPath: the file's path

        :return u32Checksum: the checksum; after a failure, what the library left, usually 0
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_get_file_checksum", {
            "strPath": strPath,
        }, SystemGetFileChecksum, SystemGetFileChecksumUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_sys_get_file_checksum = get_file_checksum

    @overload
    def write_file(
            self, strPath: str, strData: str, bAppend: bool, bAddCrLf: bool, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def write_file(
            self, strPath: str, strData: str, bAppend: bool, bAddCrLf: bool, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def write_file(
            self, strPath: str, strData: str, bAppend: bool, bAddCrLf: bool, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Writes text to a file, which is made if it does not exist.

        :param strPath: the file's path
        :param strData: the text
        :param bAppend: true writes behind what the file holds, false replaces it
        :param bAddCrLf: whether CR LF is written after the text

        :return s32Status: -2 when strData is empty and bAddCrLf false; -4 without memory for the text; 0
            success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_write_file", {
            "strPath": strPath,
            "strData": strData,
            "bAppend": bAppend,
            "bAddCrLf": bAddCrLf,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_write_file = write_file

    @overload
    def write_file_byte(
            self, strPath: str, vecData: Bytes, strMode: str, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def write_file_byte(
            self, strPath: str, vecData: Bytes, strMode: str, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def write_file_byte(
            self, strPath: str, vecData: Bytes, strMode: str, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Writes bytes to a file.

        :param strPath: the file's path
        :param vecData: the bytes, NULs included, at least one
        :param strMode: how the file is opened, as fopen() takes it: "w" replaces it, "a" appends, "r+" writes
            over its beginning

        :return s32Status: -2 when vecData is empty; -4 without memory for the bytes; 0 success; -5 not ready;
            else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_write_file_byte", {
            "strPath": strPath,
            "vecData": wire_bytes(vecData),
            "strMode": strMode,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_write_file_byte = write_file_byte

    @overload
    def change_file_mode(
            self, strPath: str, u32Mode: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def change_file_mode(
            self, strPath: str, u32Mode: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> Status: ...

    def change_file_mode(
            self, strPath: str, u32Mode: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sets the permissions of a file or folder.

        :param strPath: the path
        :param u32Mode: the permission bits, 0 to 0o7777 (0o644: its owner writes, everybody reads)

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_change_file_mode", {
            "strPath": strPath,
            "u32Mode": u32Mode,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_change_file_mode = change_file_mode

    @overload
    def read_reg(
            self, u32Bank: int, u32Offset: int, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> SystemReadReg: ...

    @overload
    def read_reg(
            self, u32Bank: int, u32Offset: int, *, check: Literal[False], timeout: Optional[float] = None
    ) -> SystemReadRegUnchecked: ...

    def read_reg(
            self, u32Bank: int, u32Offset: int, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[SystemReadReg, SystemReadRegUnchecked]:
        """Reads a register.

        :param u32Bank: the register's bank
        :param u32Offset: the register's number in the bank

        :return u32Value: its value; 0 after a failure
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_read_reg", {
            "u32Bank": u32Bank,
            "u32Offset": u32Offset,
        }, SystemReadReg, SystemReadRegUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_sys_read_reg = read_reg

    @overload
    def write_reg(
            self, u32Bank: int, u32Offset: int, u32Value: int, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def write_reg(
            self, u32Bank: int, u32Offset: int, u32Value: int, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def write_reg(
            self, u32Bank: int, u32Offset: int, u32Value: int, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Writes a register.

        :param u32Bank: the register's bank
        :param u32Offset: the register's number in the bank
        :param u32Value: its new value

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_write_reg", {
            "u32Bank": u32Bank,
            "u32Offset": u32Offset,
            "u32Value": u32Value,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_write_reg = write_reg

    @overload
    def send_cmd_to_factory_svc(
            self, eCmd: Union[ZvtTvFApiSysFactorySvcCmd_e, int, str], strText: str, *, check: Literal[True] = True,
            timeout: Optional[float] = None
    ) -> None: ...

    @overload
    def send_cmd_to_factory_svc(
            self, eCmd: Union[ZvtTvFApiSysFactorySvcCmd_e, int, str], strText: str, *, check: Literal[False],
            timeout: Optional[float] = None
    ) -> Status: ...

    def send_cmd_to_factory_svc(
            self, eCmd: Union[ZvtTvFApiSysFactorySvcCmd_e, int, str], strText: str, *, check: bool = True,
            timeout: Optional[float] = None
    ) -> Union[None, Status]:
        """Sends a command to the factory service of the chip-layer library.

        :param eCmd: the command; every value beyond the known ones counts as the last
        :param strText: what the command needs, in the library's own form

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_send_cmd_to_factory_svc", {
            "eCmd": eCmd,
            "strText": strText,
        }, None, Status, check, timeout)
    a_hidl_a_zvttvfapi_sys_send_cmd_to_factory_svc = send_cmd_to_factory_svc

    @overload
    def get_rtc_time(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> SystemGetRtcTime: ...

    @overload
    def get_rtc_time(self, *, check: Literal[False], timeout: Optional[float] = None) -> SystemGetRtcTimeUnchecked: ...

    def get_rtc_time(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[SystemGetRtcTime, SystemGetRtcTimeUnchecked]:
        """Reads the real-time clock.

        :return u64Time: [s] since 1970-01-01 00:00 UTC, at most 4294967295; after a failure, what the library
            left, usually 0
        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_a_zvttvfapi_sys_get_rtc_time", {
        }, SystemGetRtcTime, SystemGetRtcTimeUnchecked, check, timeout)
    a_hidl_a_zvttvfapi_sys_get_rtc_time = get_rtc_time

    @overload
    def sync_fs(self, *, check: Literal[True] = True, timeout: Optional[float] = None) -> None: ...

    @overload
    def sync_fs(self, *, check: Literal[False], timeout: Optional[float] = None) -> Status: ...

    def sync_fs(self, *, check: bool = True, timeout: Optional[float] = None) -> Union[None, Status]:
        """Returns when all that was written to files before is on the storage itself.

        :return s32Status: 0 success; -5 not ready; else the library's own
        """
        return self._call("a_hidl_zvttvfapi_sys_sync_fs", {}, None, Status, check, timeout)
    a_hidl_zvttvfapi_sys_sync_fs = sync_fs

    @overload
    def get_customer_hash(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> SystemGetCustomerHash: ...

    @overload
    def get_customer_hash(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> SystemGetCustomerHashUnchecked: ...

    def get_customer_hash(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[SystemGetCustomerHash, SystemGetCustomerHashUnchecked]:
        """Reads the customer hash.

        :return vecBytes: the hash, at most 16 bytes
        :return s32Status: -1 for every failure but -5, the library's own value is not told; 0 success
        """
        return self._call("a_hidl_zvttvfapi_sys_get_customer_hash", {
        }, SystemGetCustomerHash, SystemGetCustomerHashUnchecked, check, timeout)
    a_hidl_zvttvfapi_sys_get_customer_hash = get_customer_hash

    @overload
    def get_dataindex_path(
            self, *, check: Literal[True] = True, timeout: Optional[float] = None
    ) -> SystemGetDataindexPath: ...

    @overload
    def get_dataindex_path(
            self, *, check: Literal[False], timeout: Optional[float] = None
    ) -> SystemGetDataindexPathUnchecked: ...

    def get_dataindex_path(
            self, *, check: bool = True, timeout: Optional[float] = None
    ) -> Union[SystemGetDataindexPath, SystemGetDataindexPathUnchecked]:
        """Reads the path of the data index.

        :return strPath: the path, at most 128 bytes
        :return s32Status: 0 success; -4 without memory for the path, -1 for its text; -5 not ready; else the
            library's own
        """
        return self._call("a_hidl_zvttvfapi_sys_get_dataindex_path", {
        }, SystemGetDataindexPath, SystemGetDataindexPathUnchecked, check, timeout)
    a_hidl_zvttvfapi_sys_get_dataindex_path = get_dataindex_path


class Tv(Interface):
    """The television as a whole. It has no methods of its own."""

    _name = "vendor.zentrovi.tv.zvttvfactory@1.0::IZvtTvFApiTv"


class Interfaces:
    """The interfaces of a service, by their short and by their whole names."""

    def __init__(self, caller: Caller, instance: str) -> None:
        self.audio = self.IZvtTvFApiAudio = Audio(caller, instance)
        self.display = self.IZvtTvFApiDisplay = Display(caller, instance)
        self.displaytest = self.IZvtTvFApiDisplayTest = DisplayTest(caller, instance)
        self.information = self.IZvtTvFApiInformation = Information(caller, instance)
        self.inputsource = self.IZvtTvFApiInputSource = InputSource(caller, instance)
        self.manager = self.IZvtTvFApiManager = Manager(caller, instance)
        self.network = self.IZvtTvFApiNetwork = Network(caller, instance)
        self.peripheral = self.IZvtTvFApiPeripheral = Peripheral(caller, instance)
        self.system = self.IZvtTvFApiSystem = System(caller, instance)
        self.tv = self.IZvtTvFApiTv = Tv(caller, instance)
