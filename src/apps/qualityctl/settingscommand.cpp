#include "builtinresource.h"
#include "commands.h"
#include "hostlog.h"
#include <qualityutility/resource/picqualityresource.h>
#include <reports/table.h>

#include <CLI/CLI.hpp>

#include <QFileInfo>

#include <cmath>

namespace {

struct SetArguments
{
    std::string key;
    std::string value;
};

/// The double that reads as the float does.
double toDouble(float value)
{
    return QString::number(static_cast<double>(value), 'g', 7).toDouble();
}

PicQualityResource& openResource(const Output& output)
{
    HostLog::install(output.quiet);
    return builtInResource();
}

CommandResult showSettings(const Output& output)
{
    const PicQualityResource& resource = openResource(output);
    const PicQualitySettings& s = resource.settings();
    const std::vector<std::pair<const char*, QJsonValue>> values{
        {"custom_timeout_s", s.customTimeout},
        {"last_open_path", s.lastOpenPath},
        {"gray_advance_state", s.grayAdvanceState},
        {"gray_max_w_com", s.grayMaxWCom},
        {"custom_color_coordinate", s.customColorCoordinate},
        {"color_temperature_k", s.colorTemp},
        {"white_x", s.xCom},
        {"white_y", s.yCom},
        {"frequency_mode", s.freqMode},
        {"frequency_hz", toDouble(s.freq)},
        {"speed", s.speed},
        {"luminance_mode", s.lvMode},
        {"display_mode", s.displayMode},
        {"channel", s.channelNo},
        {"frequencies", s.freqList.join(QStringLiteral(", "))},
        {"magic_gray_state", s.magicGrayState},
        {"measure_wait_ms", s.measureWaitTime},
        {"default_max_luminance_cd_m2", s.defaultMaxLum},
        {"peak_brightness_scale", s.peakBrightnessScale},
        {"default_gamut_coefficient", toDouble(s.defaultCoeff)},
    };
    Reports::Table table(
        {{QStringLiteral("setting"), QStringLiteral("setting")}, {QStringLiteral("value"), QStringLiteral("value")}});
    QJsonObject json;
    for (const auto& [key, value] : values) {
        table.add({QString::fromLatin1(key), {value.toVariant().toString(), value}});
        json.insert(QLatin1String(key), value);
    }
    const QString file = resource.getSettingsFile();
    return {QStringLiteral("%1\n\n").arg(file) + table.toText(),
            {{QStringLiteral("file"), file}, {QStringLiteral("settings"), json}}};
}

float parseFrequency(const QString& text)
{
    bool converted = false;
    const float frequency = text.toFloat(&converted);
    if (!converted || !std::isfinite(frequency) || frequency <= 0.0F)
        throw Fault{Fault::Kind::Usage, QStringLiteral("freq"), QStringLiteral("a frequency in Hz above 0"),
                    QStringLiteral("\"%1\"").arg(text)};
    return frequency;
}

CommandResult setSetting(const SetArguments& arguments, const Output& output)
{
    const QString key = QString::fromStdString(arguments.key);
    const QString value = QString::fromStdString(arguments.value);
    if (key != QLatin1String("freq") && key != QLatin1String("open-path"))
        throw Fault{Fault::Kind::Usage,
                    QStringLiteral("settings set %1").arg(key),
                    {},
                    QStringLiteral("the library writes only freq and open-path"),
                    QStringLiteral("other keys are changed in the settings file itself; settings show names it")};
    const float frequency = key == QLatin1String("freq") ? parseFrequency(value) : 0.0F;
    PicQualityResource& target = openResource(output);
    const QString file = target.getSettingsFile();
    if (!QFileInfo(file).isFile())
        throw Fault{
            Fault::Kind::NoInput, QStringLiteral("settings file %1").arg(file), {}, QStringLiteral("no such file")};
    if (key == QLatin1String("freq"))
        target.setFreq(frequency);
    else
        target.setLastOpenPath(value);
    PicQualityResource::releaseInstance(); // and read back what the file now says
    const PicQualityResource& fresh = openResource(output);
    const bool isStored = key == QLatin1String("freq") ? std::abs(fresh.getFreq() - frequency) < 0.0051F
                                                       : fresh.getLastOpenPath() == value;
    if (!isStored)
        throw Fault{Fault::Kind::InputOutput,
                    QStringLiteral("settings file %1").arg(file),
                    {},
                    QStringLiteral("the value was not stored")};
    return {QStringLiteral("%1: %2 = %3\n").arg(file, key, value),
            {{QStringLiteral("file"), file}, {QStringLiteral("key"), key}, {QStringLiteral("value"), value}}};
}

} // namespace

void addSettingsCommands(CLI::App& app, Command& chosen)
{
    CLI::App* settings = app.add_subcommand("settings", "Look at the settings file beside the executable");
    settings->require_subcommand(1);
    settings->add_subcommand("show", "Print the settings that hold")->callback([&chosen] { chosen = showSettings; });
    CLI::App* set = settings->add_subcommand("set", "Set freq (Hz) or open-path");
    const auto arguments = std::make_shared<SetArguments>();
    set->add_option("KEY", arguments->key, "freq or open-path")->required();
    set->add_option("VALUE", arguments->value, "The new value")->required();
    set->callback([&chosen, arguments] {
        chosen = [arguments](const Output& output) { return setSetting(*arguments, output); };
    });
}
