// The settings file: it is read whatever it holds, and a write-back changes one value and nothing else.

#include "fuzzing.h"
#include <qualityutility/resource/picqualityresource.h>
#include <qualityutility/resource/settingstext_p.h>
#include <qualityutility/resource/settingswriteback_p.h>

#include <QDebug>
#include <QSettings>
#include <QTextCodec>

namespace {

/// A file under a new name, since Qt keeps parsed files by it; removed in the end.
class InputFile
{
public:
    InputFile(const char* data, std::size_t size)
    {
        static unsigned int count = 0;
        const QByteArray name = "settings" + QByteArray::number(count++) + ".ini";
        m_path = Fuzzing::instance().file(name.constData(), reinterpret_cast<const std::uint8_t*>(data), size);
    }
    ~InputFile() { QFile::remove(m_path); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    const QString& path() const { return m_path; }

private:
    QString m_path;
};

/// All keys and what they hold, as texts: stored objects are compared by what they print, since NaN differs from
/// itself.
QMap<QString, QString> valuesOf(const QByteArray& text)
{
    const InputFile input(text.constData(), static_cast<std::size_t>(text.size()));
    QSettings file(input.path(), QSettings::IniFormat);
    useSettingsCodec(file);
    QMap<QString, QString> values;
    const QStringList keys = file.allKeys();
    for (const QString& key : keys) {
        // value() asks for keys without empty parts.
        if (!key.split(QLatin1Char('/')).contains(QString()))
            QDebug(&values[key]) << file.value(key);
    }
    return values;
}

void checkWriteBack(const QByteArray& text)
{
    const QString value = QString::fromUtf8(text.right(12)) + QString::fromLatin1(text.left(4));
    const auto changed =
        withSetting(text, {QStringLiteral("A"), QStringLiteral("k")}, value, QTextCodec::codecForName("GB2312"));
    if (!changed)
        return;
    auto expected = valuesOf(text);
    QString& ours = expected[QStringLiteral("A/k")];
    ours.clear();
    QDebug(&ours) << QVariant(value);
    if (valuesOf(*changed) != expected)
        qFatal("a write-back changed something else");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzzing::instance();
    static PicQualityResource& resource = *PicQualityResource::getInstance();
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const InputFile input(text.constData(), size);
    resource.parsePicqualityConfigFile(input.path());
    const PicQualitySettings& settings = resource.settings();
    if (settings.colorTemp < 0)
        qFatal("a colour temperature of %d", settings.colorTemp);
    checkWriteBack(text);
    return 0;
}
