#pragma once

#include <QString>
#include <QStringList>
#include <initializer_list>

// One command string split into words: the verb, the device name and what follows. Blanks
// separate words; a double-quoted part keeps its blanks and loses its quotes, so
// `open "my song.wav" alias s` and `open waveaudio!"my song.wav"` both name the file whole.
struct MciCommand {
    QString verb;      // lower-cased
    QString device;    // as written
    QStringList words; // as written, after the device name
};

// Splits `text`; returns 0 or the service's error (no verb, no device name, an open quote).
long parseMciCommand(const QString& text, MciCommand& command);

// Walks the words behind the device name. Keywords match without regard to case; values keep
// theirs.
class MciWords {
public:
    explicit MciWords(const QStringList& words) : mWords(words) {}

    bool atEnd() const { return mAt >= mWords.size(); }
    // Takes the keywords when the next words are these, in order.
    bool accept(std::initializer_list<const char*> keywords);
    bool accept(const char* keyword) { return accept({keyword}); }
    // The next word as a value; false at the end.
    bool takeValue(QString& value);
    // The next word as a whole non-negative decimal number: 0, or MissingParameter at the end,
    // BadInteger for anything else.
    long takeNumber(long long& value);
    // The next word without taking it (empty at the end).
    QString peek() const { return atEnd() ? QString() : mWords[mAt]; }

private:
    const QStringList& mWords;
    qsizetype mAt = 0;
};
