#include "vcam/config/CameraReader.h"

#include "vcam/PixelFormats.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

constexpr std::pair<std::string_view, LinkSpeed> s_speeds[] = {
    {"low", LinkSpeed::Low},     {"full", LinkSpeed::Full},        {"high", LinkSpeed::High},
    {"super", LinkSpeed::Super}, {"super+", LinkSpeed::SuperPlus},
};

void ReadName(Section &section, std::string_view key, std::string &to)
{
    std::string text;
    if (!section.Text(key, text)) {
        return;
    }
    const bool isPlain = std::ranges::none_of(text, [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; });
    if (text.size() > s_longestName || !isPlain) {
        section.Wrong(key, isPlain ? "takes 63 bytes at most, not " + std::to_string(text.size())
                                   : "takes no control characters");
        return;
    }
    to = text;
}

void ReadFormats(Section &section, Mistakes &mistakes, std::vector<std::uint32_t> &formats)
{
    const TomlValue *list = section.Find("pixel_formats");
    if (list == nullptr) {
        return;
    }
    const std::vector<std::string_view> names = PixelFormatNames(true);
    if (list->kind != TomlValue::Kind::Array || list->items.empty()) {
        section.Wrong("pixel_formats", "takes an array of one or more of " + Listed(names));
        return;
    }
    std::vector<std::uint32_t> codes;
    for (const TomlValue &item : list->items) {
        const PixelFormat *format = item.kind == TomlValue::Kind::Text ? FindPixelFormat(item.text) : nullptr;
        if (item.kind != TomlValue::Kind::Text) {
            mistakes.push_back(
                {item.place, "pixel_formats takes names, not " + std::string(KindName(item.kind)) + " among them"});
        } else if (format == nullptr) {
            mistakes.push_back({item.place, "pixel_formats does not know '" + item.text + "'" +
                                                DidYouMean(item.text, names) + " It takes " + Listed(names)});
        } else if (std::ranges::find(codes, format->code) != codes.end()) {
            mistakes.push_back({item.place, "pixel_formats has '" + item.text + "' twice"});
        } else {
            codes.push_back(format->code);
        }
    }
    formats = codes;
}

void ReadSide(Section &section, std::string_view key, std::int64_t minimum, std::uint32_t step, std::uint32_t &to)
{
    std::uint32_t side = 0;
    if (!section.Integer(key, minimum, 16384, side)) {
        return;
    }
    if (side % step != 0) {
        section.Wrong(key, "takes multiples of " + std::to_string(step) + ", not " + std::to_string(side));
        return;
    }
    to = side;
}

} // namespace

std::vector<std::string_view> PixelFormatNames(bool withYuv)
{
    std::vector<std::string_view> names;
    for (const PixelFormat &format : s_pixelFormats) {
        const bool isYuv = format.colours == Colours::Yuv411 || format.colours == Colours::Yuv422;
        if ((withYuv || !isYuv) && std::ranges::find(names, format.name) == names.end()) {
            names.emplace_back(format.name);
        }
    }
    return names;
}

CameraEntry ReadCamera(const TomlValue &table, const ReadContext &context)
{
    CameraEntry entry;
    CameraConfig &config = entry.config;
    Section camera(table, "[[camera]]", context.mistakes);
    camera.Integer("count", 1, s_maxCameras, entry.count);
    ReadName(camera, "vendor", config.vendor);
    ReadName(camera, "model", config.model);
    ReadName(camera, "family", config.family);
    ReadName(camera, "device_version", config.deviceVersion);
    ReadName(camera, "manufacturer_info", config.manufacturerInfo);
    ReadName(camera, "serial", config.serial);
    const TomlValue *serial = camera.Find("serial");
    if (serial != nullptr && serial->kind == TomlValue::Kind::Text && serial->text.empty()) {
        camera.Wrong("serial", "is empty: it is what the camera is known by");
    }
    entry.serialPlace = camera.WhereIs("serial");
    ReadName(camera, "user_name", config.userDefinedName);
    ReadSide(camera, "sensor_width", 64, 4, config.sensorWidth);
    ReadSide(camera, "sensor_height", 16, 2, config.sensorHeight);
    ReadFormats(camera, context.mistakes, config.pixelFormats);
    if (double limit = 0; camera.Real("frame_rate_limit", 0.1, 1000, limit)) {
        config.frameRateLimit = limit;
    }
    config.isLinkLimiting = camera.OneOf<LinkSpeed>("link_speed", s_speeds, config.speed);
    if (LinkSpeed speed{}; camera.OneOf<LinkSpeed>("speed_register", s_speeds, speed)) {
        config.speedRegister = speed;
    }
    entry.hasSeed = camera.Integer("seed", 0, INT64_MAX, config.seed);
    ReadXml(camera, context, config.xml);
    camera.Flag("control_registers", config.controlRegisters);
    if (const TomlValue *image = camera.Table("image")) {
        ReadImageSource(*image, context, config.image);
    }
    for (const TomlValue *preset : camera.Tables("register", "[[camera.register]]")) {
        ReadPreset(*preset, context, config.presets);
    }
    for (const TomlValue *fault : camera.Tables("fault", "[[camera.fault]]")) {
        ReadFault(*fault, context, config.faults);
    }
    camera.RefuseOthers();
    return entry;
}

} // namespace Orvi::Vcam
