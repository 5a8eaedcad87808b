#include "config/modLanguage.h"

#include "config/clsPropertiesXML.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"
#include "platform/modLocale.h"

#include <QFileInfo>

QString getSystemLanguageCode(clsPropertiesXML& properties) {
    const QString value = properties.GetProp(QStringLiteral("langid"), langIdToKey(0), QString());
    if (value.isEmpty())
        return QStringLiteral("en-us");
    return value.section(QLatin1Char(';'), 0, 0).toLower();
}

QString languageFolder(clsPropertiesXML& properties) {
    return resolveDataPath(
        properties.GetProp(QStringLiteral("paths"), QStringLiteral("language"), QString()));
}

bool isLanguageAvailable(clsPropertiesXML& properties, const QString& code) {
    const QString record = properties.GetProp(QStringLiteral("languages"), code, QString());
    if (record.isEmpty())
        return false;
    const QStringList fields = record.split(QLatin1Char(','));
    if (fields.size() < 2)
        raiseFailure(FailureNumber::SubscriptOutOfRange, QStringLiteral("isLanguageAvailable"));
    if (fields[1] == QLatin1String("0"))
        return false;
    QString path = languageFolder(properties);
    if (path.isEmpty())
        path = QStringLiteral("/");
    return QFileInfo::exists(path + code + QStringLiteral(".xml"));
}
