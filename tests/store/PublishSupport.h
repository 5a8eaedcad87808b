#pragma once

#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "store/AMRConverter.h"
#include "store/clsMMSManager.h"
#include "support/TestHome.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <cmath>
#include <pugixml.hpp>
#include <sstream>

using namespace Qt::StringLiterals;

// A 440 Hz sine of `ms` milliseconds as a 16-bit PCM WAV file.
inline QByteArray sineWav(int rate, int channels, int ms) {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < int(std::int64_t(rate) * ms / 1000); ++i)
        samples.insert(samples.end(), std::size_t(channels),
                       std::int16_t(8000 * std::sin(2 * M_PI * 440.0 * i / rate)));
    return wavFile(samples, rate, channels);
}

// A store in a fresh application folder with the shipped preferences and English texts.
struct PublishStore {
    TestHome home{true};
    SharedConfig shared;
    clsMMSManager manager;
    PublishStore() {
        shared.setProperties(std::make_unique<clsPropertiesXML>());
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(u"en-us"_s);
        manager.Initialize(home.file(u"Messages"_s), u"message.xml"_s);
    }
    QString folder(const QString& name) const { return home.file(u"Messages/"_s + name + u'/'); }
    QString output(const QString& name) const { return folder(name) + u"mms/"_s; }
    // A saved message of `slides` slides with a picture each; `edit` shapes slide i (1-based).
    template <typename Edit>
    std::shared_ptr<clsMessage> make(const QString& name, int slides, Edit edit) {
        auto message = manager.CreateMsg(name);
        for (int i = 1; i <= slides; ++i) {
            auto slide = message->Slides()->Add();
            QImage picture(160, 120, QImage::Format_RGB32);
            picture.fill(QColor::fromHsv(i * 50 % 360, 200, 220));
            slide->setImage(picture);
            edit(i, *slide);
        }
        return message->SaveMessage() ? message : nullptr;
    }
};

// An XML text in one canonical form, so two texts compare as trees.
inline std::string canonicalXml(const QByteArray& text) {
    pugi::xml_document document;
    if (!document.load_buffer(text.constData(), std::size_t(text.size())))
        return "(not XML) " + text.toStdString();
    std::ostringstream out;
    document.save(out, "", pugi::format_raw | pugi::format_no_declaration);
    return out.str();
}

inline QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

// Runs a program; its stdout and stderr, and its exit code in `exitCode`.
inline QByteArray runTool(const QString& program, const QStringList& arguments,
                          int* exitCode = nullptr) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return "(did not finish)";
    if (exitCode)
        *exitCode = process.exitCode() + (process.exitStatus() == QProcess::CrashExit ? 1000 : 0);
    return process.readAllStandardOutput() + process.readAllStandardError();
}

// The member names of a tar archive, as tar lists them.
inline QStringList tarNames(const QString& archive) {
    return QString::fromUtf8(runTool(u"tar"_s, {u"tf"_s, archive}))
        .split(u'\n', Qt::SkipEmptyParts);
}
