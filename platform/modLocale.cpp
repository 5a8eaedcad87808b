#include "platform/modLocale.h"

#include <array>

namespace {

struct LocaleId {
    QLocale::Language language;
    QLocale::Territory territory; // AnyTerritory: the language's default
    std::uint16_t lcid;
};

// Exact pairs first; an entry with AnyTerritory answers for a territory not listed.
constexpr std::array kLocaleIds{
    LocaleId{QLocale::English, QLocale::UnitedStates, 0x0409},
    LocaleId{QLocale::English, QLocale::UnitedKingdom, 0x0809},
    LocaleId{QLocale::English, QLocale::Australia, 0x0C09},
    LocaleId{QLocale::English, QLocale::Canada, 0x1009},
    LocaleId{QLocale::English, QLocale::NewZealand, 0x1409},
    LocaleId{QLocale::English, QLocale::Ireland, 0x1809},
    LocaleId{QLocale::English, QLocale::AnyTerritory, 0x0409},
    LocaleId{QLocale::German, QLocale::Germany, 0x0407},
    LocaleId{QLocale::German, QLocale::Switzerland, 0x0807},
    LocaleId{QLocale::German, QLocale::Austria, 0x0C07},
    LocaleId{QLocale::German, QLocale::Luxembourg, 0x1007},
    LocaleId{QLocale::German, QLocale::Liechtenstein, 0x1407},
    LocaleId{QLocale::German, QLocale::AnyTerritory, 0x0407},
    LocaleId{QLocale::French, QLocale::France, 0x040C},
    LocaleId{QLocale::French, QLocale::Belgium, 0x080C},
    LocaleId{QLocale::French, QLocale::Canada, 0x0C0C},
    LocaleId{QLocale::French, QLocale::Switzerland, 0x100C},
    LocaleId{QLocale::French, QLocale::AnyTerritory, 0x040C},
    LocaleId{QLocale::Spanish, QLocale::Spain, 0x0C0A},
    LocaleId{QLocale::Spanish, QLocale::Mexico, 0x080A},
    LocaleId{QLocale::Spanish, QLocale::AnyTerritory, 0x0C0A},
    LocaleId{QLocale::Italian, QLocale::Italy, 0x0410},
    LocaleId{QLocale::Italian, QLocale::Switzerland, 0x0810},
    LocaleId{QLocale::Italian, QLocale::AnyTerritory, 0x0410},
    LocaleId{QLocale::Portuguese, QLocale::Brazil, 0x0416},
    LocaleId{QLocale::Portuguese, QLocale::Portugal, 0x0816},
    LocaleId{QLocale::Portuguese, QLocale::AnyTerritory, 0x0816},
    LocaleId{QLocale::Dutch, QLocale::Netherlands, 0x0413},
    LocaleId{QLocale::Dutch, QLocale::Belgium, 0x0813},
    LocaleId{QLocale::Dutch, QLocale::AnyTerritory, 0x0413},
    LocaleId{QLocale::Swedish, QLocale::Finland, 0x081D},
    LocaleId{QLocale::Swedish, QLocale::AnyTerritory, 0x041D},
    LocaleId{QLocale::Danish, QLocale::AnyTerritory, 0x0406},
    LocaleId{QLocale::NorwegianBokmal, QLocale::AnyTerritory, 0x0414},
    LocaleId{QLocale::NorwegianNynorsk, QLocale::AnyTerritory, 0x0814},
    LocaleId{QLocale::Finnish, QLocale::AnyTerritory, 0x040B},
    LocaleId{QLocale::Icelandic, QLocale::AnyTerritory, 0x040F},
    LocaleId{QLocale::Polish, QLocale::AnyTerritory, 0x0415},
    LocaleId{QLocale::Czech, QLocale::AnyTerritory, 0x0405},
    LocaleId{QLocale::Slovak, QLocale::AnyTerritory, 0x041B},
    LocaleId{QLocale::Slovenian, QLocale::AnyTerritory, 0x0424},
    LocaleId{QLocale::Hungarian, QLocale::AnyTerritory, 0x040E},
    LocaleId{QLocale::Romanian, QLocale::AnyTerritory, 0x0418},
    LocaleId{QLocale::Bulgarian, QLocale::AnyTerritory, 0x0402},
    LocaleId{QLocale::Croatian, QLocale::AnyTerritory, 0x041A},
    LocaleId{QLocale::Greek, QLocale::AnyTerritory, 0x0408},
    LocaleId{QLocale::Turkish, QLocale::AnyTerritory, 0x041F},
    LocaleId{QLocale::Russian, QLocale::AnyTerritory, 0x0419},
    LocaleId{QLocale::Ukrainian, QLocale::AnyTerritory, 0x0422},
    LocaleId{QLocale::Estonian, QLocale::AnyTerritory, 0x0425},
    LocaleId{QLocale::Latvian, QLocale::AnyTerritory, 0x0426},
    LocaleId{QLocale::Lithuanian, QLocale::AnyTerritory, 0x0427},
    LocaleId{QLocale::Hebrew, QLocale::AnyTerritory, 0x040D},
    LocaleId{QLocale::Arabic, QLocale::AnyTerritory, 0x0401},
    LocaleId{QLocale::Japanese, QLocale::AnyTerritory, 0x0411},
    LocaleId{QLocale::Korean, QLocale::AnyTerritory, 0x0412},
    LocaleId{QLocale::Chinese, QLocale::Taiwan, 0x0404},
    LocaleId{QLocale::Chinese, QLocale::HongKong, 0x0C04},
    LocaleId{QLocale::Chinese, QLocale::AnyTerritory, 0x0804},
    LocaleId{QLocale::Thai, QLocale::AnyTerritory, 0x041E},
    LocaleId{QLocale::Vietnamese, QLocale::AnyTerritory, 0x042A},
    LocaleId{QLocale::Indonesian, QLocale::AnyTerritory, 0x0421},
    LocaleId{QLocale::Catalan, QLocale::AnyTerritory, 0x0403},
};

} // namespace

std::int32_t lcidForLocale(const QLocale& locale) {
    const auto language = locale.language();
    const auto territory = locale.territory();
    for (const auto& entry : kLocaleIds)
        if (entry.language == language && entry.territory == territory)
            return entry.lcid;
    for (const auto& entry : kLocaleIds)
        if (entry.language == language && entry.territory == QLocale::AnyTerritory)
            return entry.lcid;
    return 0x0409;
}

std::int32_t userDefaultLCID() {
    return lcidForLocale(QLocale::system());
}

std::uint16_t systemDefaultLangID() {
    return static_cast<std::uint16_t>(lcidForLocale(QLocale::system()) & 0xFFFF);
}

QString localeDecimalSeparator() {
    return trimAtNul(QLocale::system().decimalPoint());
}

QString langIdToKey(std::int32_t langId) {
    std::uint16_t id = static_cast<std::uint16_t>(langId & 0xFFFF);
    if (id == 0)
        id = systemDefaultLangID();
    return QStringLiteral("H") +
           QString::number(id, 16).toUpper().rightJustified(4, QLatin1Char('0'));
}

QString trimAtNul(const QString& text) {
    const auto nul = text.indexOf(QChar(u'\0'));
    return nul < 0 ? text : text.left(nul);
}
