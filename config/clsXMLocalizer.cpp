#include "config/clsXMLocalizer.h"

#include "config/clsPropertiesXML.h"
#include "config/modTextEncoding.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/modLocale.h"
#include "platform/modText.h"

#include <QFile>
#include <pugixml.hpp>

#include <string_view>
#include <sys/utsname.h>

namespace {

const QString kSource = QStringLiteral("clsXMLocalizer");

// Comments and processing instructions are kept, as the XML layer always did, so that a stray
// comment among a form's controls is noticed rather than silently skipped.
constexpr unsigned kParseOptions = pugi::parse_default | pugi::parse_comments | pugi::parse_pi;

QString fromUtf8(const char* text) {
    return QString::fromUtf8(text);
}

// The text of a node and of everything below it, joined in document order.
void appendText(const pugi::xml_node& node, std::string& out) {
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
            out += child.value();
        else if (child.type() == pugi::node_element)
            appendText(child, out);
    }
}

QString nodeText(const pugi::xml_node& node) {
    std::string out;
    appendText(node, out);
    return QString::fromStdString(out);
}

// Every element with the given name below `node`, in document order.
void collectElements(const pugi::xml_node& node, std::string_view name,
                     std::vector<pugi::xml_node>& out) {
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
        if (child.type() != pugi::node_element)
            continue;
        if (name == child.name())
            out.push_back(child);
        collectElements(child, name, out);
    }
}

// The text of an attribute that must be there. A node without attributes (a comment, a piece
// of text) or an element that lacks the attribute is the missing-object failure.
QString requiredAttribute(const pugi::xml_node& node, const char* name) {
    if (node.type() != pugi::node_element)
        raiseObjectNotSet(kSource);
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute)
        raiseObjectNotSet(kSource);
    return fromUtf8(attribute.value());
}

// The English locales, for which the fonts of the windows are left as they are.
bool isEnglishLocale(int locale) {
    switch (locale) {
    case 1033:
    case 2057:
    case 3081:
    case 4105:
    case 5129:
    case 6153:
    case 7177:
    case 8201:
    case 9225:
    case 10249:
    case 11273:
    case 12297:
    case 13321:
        return true;
    default:
        return false;
    }
}

struct FontRule {
    int codePage;
    const char16_t* name; // empty: the system's choice
    int minimumSize;      // 0: none
    // Families that stand in on this system when the named one is not installed; the font
    // matching of the toolkit takes the first one it has.
    std::initializer_list<const char*> fallbacks;
};

const FontRule kFontRules[] = {
    {1252, u"Tahoma", 0, {"DejaVu Sans", "Liberation Sans"}},
    {932,
     u"\uFF2D\uFF33\u0020\uFF30\u30B4\u30B7\u30C3\u30AF",
     9,
     {"Noto Sans CJK JP", "IPAPGothic", "VL PGothic", "Droid Sans Fallback"}},
    {936,
     u"\u5B8B\u4F53",
     9,
     {"Noto Sans CJK SC", "WenQuanYi Zen Hei", "AR PL UMing CN", "Droid Sans Fallback"}},
    {949,
     u"\uAD74\uB9BC",
     9,
     {"Noto Sans CJK KR", "NanumGothic", "UnDotum", "Droid Sans Fallback"}},
    {950,
     u"\u65B0\u7D30\u660E\u9AD4",
     9,
     {"Noto Sans CJK TC", "AR PL UMing TW", "WenQuanYi Zen Hei", "Droid Sans Fallback"}},
};

// Every other code page leaves the font to the system, whose default covers its letters.
const FontRule kOtherCodePage{0, u"", 0, {}};

const FontRule& fontRule(int codePage) {
    for (const FontRule& rule : kFontRules)
        if (rule.codePage == codePage)
            return rule;
    return kOtherCodePage;
}

// The localiser whose look-up lower layers use through localText().
clsXMLocalizer* gInstalledLookup = nullptr;

} // namespace

struct clsXMLocalizer::Private {
    explicit Private(clsPropertiesXML& store) : properties(store) {}

    clsPropertiesXML& properties;
    QString languageFile;
    QString language;
    QString languagePath;
    QHash<QString, QString> strings;   // keys case-folded
    QHash<QString, QString> formTexts; // keys as they stand
    int threadLocale = 0;

    int currentThreadLocale() const { return threadLocale ? threadLocale : userDefaultLCID(); }

    bool loadLanguageDocument(pugi::xml_document& document) const {
        QFile file(languageFile);
        if (!file.open(QIODevice::ReadOnly))
            return false;
        return loadXmlBytes(document, file.readAll(), kParseOptions);
    }

    void setStringEntry(const QString& key, const QString& value) {
        // The last entry of a key wins.
        strings.insert(key.toCaseFolded(), value);
    }

    void loadStrings() {
        strings.clear();
        pugi::xml_document document;
        if (!loadLanguageDocument(document))
            return;
        const pugi::xml_node stringsNode = document.child("langtab").child("strings");
        if (!stringsNode)
            return;
        std::vector<pugi::xml_node> entries;
        collectElements(stringsNode, "string", entries);
        for (const pugi::xml_node& entry : entries) {
            if (!entry.first_child())
                continue;
            const QString key = fromUtf8(entry.attribute("name").value());
            QString value;
            for (pugi::xml_node child = entry.first_child(); child; child = child.next_sibling())
                if (child.type() == pugi::node_element && std::string_view(child.name()) == "text")
                    value = nodeText(child);
            setStringEntry(key, value);
        }
    }

    void addFormText(const QString& key, const QString& value) {
        if (formTexts.contains(key))
            raiseFailure(FailureNumber::DuplicateKey, kSource);
        formTexts.insert(key, value);
    }

    void loadFormTexts() {
        formTexts.clear();
        pugi::xml_document document;
        if (!loadLanguageDocument(document))
            return;
        const pugi::xml_node formsNode = document.child("langtab").child("forms");
        if (!formsNode)
            return;
        std::vector<pugi::xml_node> forms;
        collectElements(formsNode, "form", forms);
        for (const pugi::xml_node& form : forms) {
            const QString formName = requiredAttribute(form, "name");
            const QString caption = requiredAttribute(form, "caption");
            addFormText(formName + QStringLiteral("_caption"), caption);
            for (pugi::xml_node control = form.first_child(); control;
                 control = control.next_sibling()) {
                const QString controlName = requiredAttribute(control, "name");
                const QString index = requiredAttribute(control, "index");
                const QString stem = formName + QLatin1Char('_') + controlName + QLatin1Char('_') +
                                     index + QLatin1Char('_');
                for (pugi::xml_node part = control.first_child(); part;
                     part = part.next_sibling()) {
                    const std::string_view partName = part.name();
                    if (part.type() != pugi::node_element)
                        continue;
                    if (partName == "caption")
                        addFormText(stem + QStringLiteral("caption"), nodeText(part));
                    else if (partName == "text")
                        addFormText(stem + QStringLiteral("text"), nodeText(part));
                }
            }
        }
    }
};

clsXMLocalizer::clsXMLocalizer(clsPropertiesXML& properties) : d(new Private(properties)) {
    const QString defaultPath =
        QStringLiteral("\\language\\") + exeBaseName() + QStringLiteral("\\");
    // The stored folder must end with its separator; none is added here.
    d->languagePath = resolveDataPath(
        properties.GetProp(QStringLiteral("paths"), QStringLiteral("language"), defaultPath),
        false);
}

clsXMLocalizer::~clsXMLocalizer() {
    if (gInstalledLookup == this) {
        setTextLookup({});
        gInstalledLookup = nullptr;
    }
    delete d;
}

short clsXMLocalizer::GetAvaliableLanguage(std::array<QStringList, 2>& list) {
    QStringList entries;
    if (d->properties.GetPropList(entries, QStringLiteral("languages"), QStringLiteral("=")) < 0)
        return 0;
    list[0].clear();
    list[1].clear();
    for (const QString& entry : entries) {
        const QStringList pair = entry.split(QLatin1Char('='));
        if (pair.size() < 2)
            raiseFailure(FailureNumber::SubscriptOutOfRange, kSource);
        const QStringList fields = pair[1].split(QLatin1Char(','));
        if (fields.size() < 2)
            raiseFailure(FailureNumber::SubscriptOutOfRange, kSource);
        if (fields[1] != QLatin1String("0")) {
            list[0] << pair[0];
            list[1] << fields[0];
        }
    }
    return static_cast<short>(list[0].size());
}

QString clsXMLocalizer::GetLanguage() const {
    return d->language;
}

bool clsXMLocalizer::SetLanguage(const QString& language) {
    const QString record =
        d->properties.GetProp(QStringLiteral("languages"), language, QStringLiteral("<no>"));
    if (record == QLatin1String("<no>"))
        return false;
    const QStringList fields = record.split(QLatin1Char(','));
    if (fields.size() < 2)
        raiseFailure(FailureNumber::SubscriptOutOfRange, kSource);
    // A disabled language falls back to English without a word.
    d->language = fields[1] != QLatin1String("0") ? language : QStringLiteral("en-us");
    d->languageFile = d->languagePath + d->language + QStringLiteral(".xml");

    d->loadStrings();
    setTextLookup([this](const QString& key) { return GetString(key); });
    gInstalledLookup = this;
    d->loadFormTexts();
    return true;
}

bool clsXMLocalizer::IsLanguageInstalled(const QString& language) {
    const QString record = d->properties.GetProp(QStringLiteral("languages"), language, QString());
    if (record.isEmpty())
        return false;
    const QStringList fields = record.split(QLatin1Char(','));
    if (fields.size() < 2)
        raiseFailure(FailureNumber::SubscriptOutOfRange, kSource);
    return fields[1] != QLatin1String("0");
}

QString clsXMLocalizer::GetLangPath() const {
    return d->languagePath;
}

QString clsXMLocalizer::GetString(const QString& key) const {
    const auto found = d->strings.constFind(key.toCaseFolded());
    return found == d->strings.cend() ? key : *found;
}

QString clsXMLocalizer::GetStringPar(const QString& key, const QStringList& params) const {
    const auto found = d->strings.constFind(key.toCaseFolded());
    if (found == d->strings.cend())
        return key;
    return fillMarkers(*found, params);
}

void clsXMLocalizer::SetProperFont(QFont& font, int codePage) {
    const FontRule& rule = fontRule(codePage);
    const QString name = QString::fromUtf16(rule.name);
    if (name.isEmpty()) {
        // Left to the system, whose default font covers the code page's letters.
        font.setFamily(QString());
    } else {
        QStringList families{name};
        for (const char* fallback : rule.fallbacks)
            families << QString::fromLatin1(fallback);
        font.setFamilies(families);
    }
    if (rule.minimumSize > 0) {
        if (font.pointSizeF() > 0) {
            if (font.pointSizeF() < rule.minimumSize)
                font.setPointSize(9);
        } else if (font.pixelSize() > 0 && font.pixelSize() * 72.0 / 96.0 < rule.minimumSize) {
            font.setPointSize(9);
        }
    }
}

int clsXMLocalizer::GetCodePage(int locale) const {
    const int id = locale & 0xFFFF;
    // Identifiers whose code page differs from that of their primary language.
    switch (id) {
    case 0x0804: // Chinese, PRC
    case 0x1004: // Chinese, Singapore
        return 936;
    case 0x0404: // Chinese, Taiwan
    case 0x0C04: // Chinese, Hong Kong
    case 0x1404: // Chinese, Macao
        return 950;
    case 0x0C1A: // Serbian, Cyrillic
    case 0x1C1A: // Bosnian, Cyrillic
    case 0x082C: // Azeri, Cyrillic
    case 0x0843: // Uzbek, Cyrillic
        return 1251;
    default:
        break;
    }
    switch (id & 0x03FF) {
    case 0x03: // Catalan
    case 0x06: // Danish
    case 0x07: // German
    case 0x09: // English
    case 0x0A: // Spanish
    case 0x0B: // Finnish
    case 0x0C: // French
    case 0x0F: // Icelandic
    case 0x10: // Italian
    case 0x13: // Dutch
    case 0x14: // Norwegian
    case 0x16: // Portuguese
    case 0x1D: // Swedish
    case 0x21: // Indonesian
    case 0x2D: // Basque
    case 0x36: // Afrikaans
    case 0x38: // Faroese
    case 0x3E: // Malay
    case 0x41: // Swahili
    case 0x56: // Galician
        return 1252;
    case 0x05: // Czech
    case 0x0E: // Hungarian
    case 0x15: // Polish
    case 0x18: // Romanian
    case 0x1A: // Croatian, Serbian (Latin)
    case 0x1B: // Slovak
    case 0x1C: // Albanian
    case 0x24: // Slovenian
        return 1250;
    case 0x02: // Bulgarian
    case 0x19: // Russian
    case 0x22: // Ukrainian
    case 0x23: // Belarusian
    case 0x2F: // Macedonian
    case 0x3F: // Kazakh
    case 0x40: // Kyrgyz
    case 0x44: // Tatar
    case 0x50: // Mongolian
        return 1251;
    case 0x08: // Greek
        return 1253;
    case 0x1F: // Turkish
    case 0x2C: // Azeri (Latin)
    case 0x43: // Uzbek (Latin)
        return 1254;
    case 0x0D: // Hebrew
        return 1255;
    case 0x01: // Arabic
    case 0x20: // Urdu
    case 0x29: // Farsi
        return 1256;
    case 0x25: // Estonian
    case 0x26: // Latvian
    case 0x27: // Lithuanian
        return 1257;
    case 0x2A: // Vietnamese
        return 1258;
    case 0x1E: // Thai
        return 874;
    case 0x11: // Japanese
        return 932;
    case 0x12: // Korean
        return 949;
    case 0x04: // Chinese, other regions
        return 936;
    default:
        // Locales without an ANSI code page (Hindi and the like) and unknown ones.
        return 0;
    }
}

bool clsXMLocalizer::IsEnglishLocale(int locale) {
    return isEnglishLocale(locale);
}

void clsXMLocalizer::SetThreadLocale(int lcid) {
    d->threadLocale = lcid;
}

int clsXMLocalizer::ThreadLocale() const {
    return d->currentThreadLocale();
}

QString clsXMLocalizer::GetFormText(const QString& key) const {
    return d->formTexts.value(key);
}

QString GetOsName() {
    struct utsname info {};
    if (uname(&info) != 0)
        return QString();
    return QStringLiteral("Linux_") + QString::fromLocal8Bit(info.release);
}
