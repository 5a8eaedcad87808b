#include "audio/MciCommand.h"

#include "audio/modMCI.h"

namespace {

long splitWords(const QString& text, QStringList& words) {
    QString word;
    bool inWord = false;
    bool quoted = false;
    for (const QChar c : text) {
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
            inWord = true;
        } else if (!quoted && (c == QLatin1Char(' ') || c == QLatin1Char('\t') ||
                               c == QLatin1Char('\r') || c == QLatin1Char('\n'))) {
            if (inWord)
                words << word;
            word.clear();
            inWord = false;
        } else if (c == QChar(0) && !quoted) {
            break; // a fixed buffer's end
        } else {
            word += c;
            inWord = true;
        }
    }
    if (quoted)
        return Mci::NoClosingQuote;
    if (inWord)
        words << word;
    return Mci::NoError;
}

} // namespace

long parseMciCommand(const QString& text, MciCommand& command) {
    command = MciCommand();
    QStringList words;
    if (const long error = splitWords(text, words))
        return error;
    if (words.isEmpty())
        return Mci::MissingCommandString;
    command.verb = words.takeFirst().toLower();
    if (words.isEmpty())
        return Mci::MissingDeviceName;
    command.device = words.takeFirst();
    if (command.device.isEmpty())
        return Mci::MissingDeviceName;
    command.words = words;
    return Mci::NoError;
}

bool MciWords::accept(std::initializer_list<const char*> keywords) {
    if (mAt + qsizetype(keywords.size()) > mWords.size())
        return false;
    qsizetype at = mAt;
    for (const char* keyword : keywords)
        if (mWords[at++].compare(QLatin1String(keyword), Qt::CaseInsensitive) != 0)
            return false;
    mAt = at;
    return true;
}

bool MciWords::takeValue(QString& value) {
    if (atEnd())
        return false;
    value = mWords[mAt++];
    return true;
}

long MciWords::takeNumber(long long& value) {
    if (atEnd())
        return Mci::MissingParameter;
    const QString& word = mWords[mAt];
    bool ok = !word.isEmpty();
    for (const QChar c : word)
        ok = ok && c.isDigit() && c.unicode() < 128;
    if (ok)
        value = word.toLongLong(&ok);
    if (!ok)
        return Mci::BadInteger;
    ++mAt;
    return Mci::NoError;
}
