#include "colorgamuttype.h"

#include <QCoreApplication>

namespace {

struct TypeName
{
    int type;
    const char* name;
};

constexpr TypeName typeNames[] = {
    {1, QT_TRANSLATE_NOOP("ColorGamutType", "Rec.709")},
    {2, QT_TRANSLATE_NOOP("ColorGamutType", "BT.2020")},
    {4, QT_TRANSLATE_NOOP("ColorGamutType", "P3-D65")},
    {8, QT_TRANSLATE_NOOP("ColorGamutType", "DCI-P3")},
    {16, QT_TRANSLATE_NOOP("ColorGamutType", "Adobe RGB (1998)")},
    {32, QT_TRANSLATE_NOOP("ColorGamutType", "NTSC 1953")},
    {64, QT_TRANSLATE_NOOP("ColorGamutType", "EBU / PAL")},
    {128, QT_TRANSLATE_NOOP("ColorGamutType", "SMPTE-C")},
    {2048, QT_TRANSLATE_NOOP("ColorGamutType", "Custom")},
};

} // namespace

QString ColorGamutType2QString(int type, bool untranslated)
{
    for (const TypeName& known : typeNames) {
        if (known.type == type)
            return untranslated ? QString::fromLatin1(known.name)
                                : QCoreApplication::translate("ColorGamutType", known.name);
    }
    return {};
}
