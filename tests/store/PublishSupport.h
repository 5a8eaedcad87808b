#pragma once

#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "store/clsMMSManager.h"
#include "support/TestHome.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <cmath>
#include <memory>
#include <pugixml.hpp>

// A sine of `ms` milliseconds as a 16-bit PCM WAV file.
inline QByteArray sineWav(int rate, int channels, int ms) {
    const int frames = int(std::int64_t(rate) * ms / 1000);
    QByteArray data;
    for (int i = 0; i < frames; ++i) {
        const auto sample = std::int16_t(8000 * std::sin(2 * M_PI * 440.0 * i / rate));
        for (int c = 0; c < channels; ++c)
            data.append(char(sample & 0xFF)).append(char((sample >> 8) & 0xFF));
    }
    QByteArray out("RIFF");
    const auto le = [&out](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            out.append(char((value >> (8 * i)) & 0xFF));
    };
    le(36 + std::uint32_t(data.size()), 4);
    out.append("WAVEfmt ");
    le(16, 4);
    le(1, 2);
    le(std::uint32_t(channels), 2);
    le(std::uint32_t(rate), 4);
    le(std::uint32_t(rate * channels * 2), 4);
    le(std::uint32_t(channels * 2), 2);
    le(16, 2);
    out.append("data");
    le(std::uint32_t(data.size()), 4);
    return out + data;
}

// A store in a fresh application folder with the shipped preferences and English texts.
struct PublishStore {
    TestHome home{true};
    SharedConfig shared;
    clsMMSManager manager;
    PublishStore() {
        shared.setProperties(std::make_unique<clsPropertiesXML>());
        shared.setLocalizer(std::make_unique<clsXMLocalizer>(*gProperties()))
            .SetLanguage(QStringLiteral("en-us"));
        manager.Initialize(home.file(QStringLiteral("Messages")), QStringLiteral("message.xml"));
    }
    QString folder(const QString& name) const {
        return home.file(QStringLiteral("Messages/") + name + QLatin1Char('/'));
    }
    QString output(const QString& name) const { return folder(name) + QStringLiteral("mms/"); }
    // A message of slides with a coloured picture each, saved; `edit` shapes slide i (1-based).
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
        if (!message->SaveMessage())
            return nullptr;
        return message;
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
