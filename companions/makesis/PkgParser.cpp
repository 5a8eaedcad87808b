#include "companions/makesis/PkgParser.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

PkgError::PkgError(int line, const QString& reason)
    : std::runtime_error(reason.toStdString()), mLine(line), mReason(reason) {}

namespace {

// Language codes by their SIS number; empty where a number has none. Where two languages share a
// code (SF, BG) the first one is meant.
const char* const kLanguageCodes[] = {
    "",   "EN", "FR", "GE", "SP", "IT", "SW", "DA", "NO", "FI", "AM", "SF", "SG", "PO", "TU",
    "IC", "RU", "HU", "DU", "BL", "AU", "BG", "AS", "NZ", "IF", "CS", "SK", "PL", "SL", "TC",
    "HK", "ZH", "JA", "TH", "AF", "SQ", "AH", "AR", "HY", "TL", "BE", "BN", "BG", "MY", "CA",
    "HR", "CE", "IE", "SF", "ET", "FA", "CF", "GD", "KA", "EL", "CG", "GU", "HE", "HI", "IN",
    "GA", "SZ", "KN", "KK", "KM", "KO", "LO", "LV", "LT", "MK", "MS", "ML", "MR", "MO", "MN",
    "NN", "BP", "PA", "RO", "SR", "SI", "SO", "OS", "LS", "SH", "FS", "",   "TA", "TE", "BO",
    "TI", "CT", "TK", "UK", "UR", "",   "VI", "CY", "ZU"};

const char* const kTypeNames[][2] = {{"SA", "SISAPP"},    {"SY", "SISSYSTEM"},
                                     {"SO", "SISOPTION"}, {"SC", "SISCONFIG"},
                                     {"SP", "SISPATCH"},  {"SU", "SISUPGRADE"}};

struct OptionName {
    const char* shortName;
    const char* longName;
    std::uint16_t flag;
};
const OptionName kOptionNames[] = {{"IU", "ISUNICODE", IsUnicode},
                                   {"ID", "ISDISTRIBUTABLE", IsDistributable},
                                   {"NC", "NOCOMPRESS", NoCompress},
                                   {"SH", "SHUTDOWNAPPS", ShutdownApps}};

// Reads the items of one line from left to right; every failure names the line.
class LineReader {
public:
    LineReader(const QString& text, int line) : mText(text), mLine(line) {}

    [[noreturn]] void fail(const QString& reason) const { throw PkgError(mLine, reason); }

    // True at the end of the line or at a comment.
    bool atEnd() {
        skipSpaces();
        return mPos >= mText.size() || mText[mPos] == QLatin1Char(';');
    }

    bool take(char c) {
        skipSpaces();
        if (mPos < mText.size() && mText[mPos] == QLatin1Char(c)) {
            ++mPos;
            return true;
        }
        return false;
    }

    void expect(char c, const QString& what) {
        if (!take(c))
            fail(QStringLiteral("expected %1 at \"%2\"").arg(what, rest()));
    }

    void expectEnd() {
        if (!atEnd())
            fail(QStringLiteral("unexpected \"%1\" at the end of the line").arg(rest()));
    }

    QString quoted(const QString& what) {
        expect('"', what + QStringLiteral(" in double quotes"));
        QString value;
        while (mPos < mText.size()) {
            const QChar c = mText[mPos++];
            if (c != QLatin1Char('"')) {
                value += c;
            } else if (mPos < mText.size() && mText[mPos] == QLatin1Char('"')) {
                value += c;
                ++mPos;
            } else {
                return value;
            }
        }
        fail(QStringLiteral("%1 has no closing double quote").arg(what));
    }

    // {"a","b",...}
    QStringList quotedList(const QString& what) {
        expect('{', QStringLiteral("\"{\" before %1").arg(what));
        QStringList values;
        do
            values << quoted(what);
        while (take(','));
        expect('}', QStringLiteral("\"}\" after %1").arg(what));
        return values;
    }

    // A decimal number or one in hexadecimal after "0x".
    std::uint32_t number(const QString& what, std::uint32_t max) {
        skipSpaces();
        int base = 10;
        if (mText.mid(mPos, 2).compare(QLatin1String("0x"), Qt::CaseInsensitive) == 0) {
            base = 16;
            mPos += 2;
        }
        const int start = mPos;
        std::uint64_t value = 0;
        int digit = 0;
        while (mPos < mText.size() && (digit = digitValue(mText[mPos], base)) >= 0) {
            value = std::min<std::uint64_t>(value * base + digit, std::uint64_t{max} + 1);
            ++mPos;
        }
        if (mPos == start)
            fail(QStringLiteral("expected %1 at \"%2\"").arg(what, rest()));
        if (value > max)
            fail(QStringLiteral("%1 %2 is too large (at most %3)")
                     .arg(what, mText.mid(start, mPos - start))
                     .arg(max));
        return static_cast<std::uint32_t>(value);
    }

    // Letters, digits and underscores, in capitals.
    QString word() {
        skipSpaces();
        const int start = mPos;
        while (mPos < mText.size() &&
               (mText[mPos].isLetterOrNumber() || mText[mPos] == QLatin1Char('_')))
            ++mPos;
        return mText.mid(start, mPos - start).toUpper();
    }

    QString rest() const { return mText.mid(mPos).trimmed(); }

private:
    static int digitValue(QChar c, int base) {
        const char16_t u = c.unicode();
        const int value = (u >= '0' && u <= '9')   ? u - '0'
                          : (u >= 'a' && u <= 'f') ? u - 'a' + 10
                          : (u >= 'A' && u <= 'F') ? u - 'A' + 10
                                                   : -1;
        return value < base ? value : -1;
    }

    void skipSpaces() {
        while (mPos < mText.size() && (mText[mPos] == QLatin1Char(' ') || mText[mPos] == '\t'))
            ++mPos;
    }

    const QString& mText;
    int mLine;
    int mPos = 0;
};

class Parser {
public:
    void line(const QString& text, int number) {
        LineReader reader(text, number);
        if (reader.atEnd())
            return;
        const QChar first = text.trimmed().front();
        if (first == QLatin1Char('&'))
            languages(reader);
        else if (first == QLatin1Char('#'))
            header(reader, number);
        else if (first == QLatin1Char('('))
            mPkg.requisites << requisite(reader);
        else if (first == QLatin1Char('"'))
            file(reader, number);
        else
            reader.fail(
                QStringLiteral("this kind of line is not supported: %1").arg(reader.rest()));
        reader.expectEnd();
        ++mStatements;
    }

    PackageDescription finish() {
        if (mHeaderLine == 0)
            throw PkgError(0, QStringLiteral("there is no package line "
                                             "(#{\"name\"},(0xUID),major,minor,build)"));
        return mPkg;
    }

private:
    // &EN,FR
    void languages(LineReader& reader) {
        if (mStatements > 0)
            reader.fail(QStringLiteral("the languages must be the first line"));
        reader.expect('&', QStringLiteral("\"&\""));
        do {
            const QString code = reader.word();
            const auto found =
                std::find_if(std::begin(kLanguageCodes), std::end(kLanguageCodes),
                             [&](const char* c) { return code == QLatin1String(c); });
            if (code.isEmpty() || found == std::end(kLanguageCodes))
                reader.fail(QStringLiteral("unknown language \"%1\"").arg(code));
            const auto language =
                static_cast<std::uint16_t>(std::distance(std::begin(kLanguageCodes), found));
            if (mPkg.languages.contains(language))
                reader.fail(QStringLiteral("the language %1 is given twice").arg(code));
            mPkg.languages << language;
        } while (reader.take(','));
    }

    // #{"name"},(0xUID),major,minor,build[,option...]
    void header(LineReader& reader, int number) {
        if (mHeaderLine != 0)
            reader.fail(
                QStringLiteral("a second package line (the first is line %1)").arg(mHeaderLine));
        if (mPkg.languages.isEmpty())
            mPkg.languages << 1;
        reader.expect('#', QStringLiteral("\"#\""));
        mPkg.package = version(reader, QStringLiteral("the package name"), true);
        while (reader.take(','))
            headerOption(reader);
        mHeaderLine = number;
    }

    void headerOption(LineReader& reader) {
        const QString name = reader.word();
        if (name == QLatin1String("TYPE")) {
            reader.expect('=', QStringLiteral("\"=\" after TYPE"));
            const QString type = reader.word();
            for (std::uint16_t i = 0; i < std::size(kTypeNames); ++i) {
                if (type == QLatin1String(kTypeNames[i][0]) ||
                    type == QLatin1String(kTypeNames[i][1])) {
                    mPkg.type = i;
                    return;
                }
            }
            reader.fail(QStringLiteral("unknown package type \"%1\"").arg(type));
        }
        for (const OptionName& option : kOptionNames) {
            if (name == QLatin1String(option.shortName) || name == QLatin1String(option.longName)) {
                mPkg.options |= option.flag;
                return;
            }
        }
        reader.fail(QStringLiteral("unknown package option \"%1\"").arg(name));
    }

    // (0xUID),major,minor,variant,{"name"}
    PkgVersion requisite(LineReader& reader) {
        requireHeader(reader);
        return version(reader, QStringLiteral("the component name"), false);
    }

    // The names, UID and version of the package (names first) or of a component (names last).
    PkgVersion version(LineReader& reader, const QString& what, bool namesFirst) {
        PkgVersion version;
        if (namesFirst) {
            version.names = reader.quotedList(what);
            reader.expect(',', QStringLiteral("\",\" after the names"));
        }
        reader.expect('(', QStringLiteral("\"(\" before the UID"));
        version.uid = reader.number(QStringLiteral("the UID"), 0xffffffffu);
        reader.expect(')', QStringLiteral("\")\" after the UID"));
        reader.expect(',', QStringLiteral("\",\" after the UID"));
        version.major =
            static_cast<std::uint16_t>(reader.number(QStringLiteral("the major version"), 0xffff));
        reader.expect(',', QStringLiteral("\",\" after the major version"));
        version.minor =
            static_cast<std::uint16_t>(reader.number(QStringLiteral("the minor version"), 0xffff));
        reader.expect(',', QStringLiteral("\",\" after the minor version"));
        version.build = reader.number(QStringLiteral("the build number"), 0xffffffffu);
        if (!namesFirst) {
            reader.expect(',', QStringLiteral("\",\" after the build number"));
            version.names = reader.quotedList(what);
        }
        if (version.names.size() != mPkg.languages.size())
            reader.fail(QStringLiteral("%1 names are given for %2 languages")
                            .arg(version.names.size())
                            .arg(mPkg.languages.size()));
        if (version.names.contains(QString()))
            reader.fail(QStringLiteral("%1 is empty").arg(what));
        return version;
    }

    // "source"-"target"[,FF]
    void file(LineReader& reader, int number) {
        requireHeader(reader);
        PkgFile file;
        file.line = number;
        file.source = reader.quoted(QStringLiteral("the source file"));
        reader.expect('-', QStringLiteral("\"-\" between the source and the target"));
        file.target = reader.quoted(QStringLiteral("the target"));
        while (reader.take(',')) {
            const QString option = reader.word();
            if (option != QLatin1String("FF") && option != QLatin1String("FILE"))
                reader.fail(QStringLiteral("the file option \"%1\" is not supported").arg(option));
        }
        if (file.source.isEmpty())
            reader.fail(QStringLiteral("the source file name is empty"));
        static const QRegularExpression drive(QStringLiteral("^[A-Za-z!]:[\\\\/].*[^\\\\/]$"));
        if (!drive.match(file.target).hasMatch())
            reader.fail(QStringLiteral("the target \"%1\" must be a file on a drive, as in "
                                       "\"!:\\folder\\file\"")
                            .arg(file.target));
        QString key = file.target.toCaseFolded();
        key.replace(QLatin1Char('/'), QLatin1Char('\\'));
        if (const int earlier = mTargets.value(key))
            reader.fail(QStringLiteral("the target \"%1\" is already given on line %2")
                            .arg(file.target)
                            .arg(earlier));
        mTargets.insert(key, number);
        mPkg.files << file;
    }

    void requireHeader(LineReader& reader) const {
        if (mHeaderLine == 0)
            reader.fail(QStringLiteral("the package line (#{\"name\"},(0xUID),...) must come "
                                       "before this line"));
    }

    PackageDescription mPkg;
    int mHeaderLine = 0;
    int mStatements = 0;
    QHash<QString, int> mTargets;
};

} // namespace

PackageDescription parsePkg(const QString& text) {
    Parser parser;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        QString line = lines[i];
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        parser.line(line, i + 1);
    }
    return parser.finish();
}
