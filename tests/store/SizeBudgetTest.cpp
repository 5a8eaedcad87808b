#include "PublishSupport.h"
#include "imaging/DIWriteJpg.h"
#include "store/modSizeEstimate.h"

#include <QDir>
#include <QDirIterator>
#include <QMap>
#include <QPainter>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

// A picture with detail a JPEG encoder must spend bytes on: a gradient, shapes and some noise.
QImage detailedPicture(int seed, int noise) {
    QImage picture(160, 120, QImage::Format_RGB32);
    std::uint32_t state = std::uint32_t(seed) * 2654435761U + 1;
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 160; ++x) {
            state = state * 1664525U + 1013904223U;
            const int grain = noise ? int(state >> 24) % noise : 0;
            picture.setPixel(x, y,
                             qRgb((x * 3 + seed * 40 + grain) % 256, (y * 2 + grain) % 256,
                                  (x + y + seed * 90) % 256));
        }
    QPainter painter(&picture);
    painter.setBrush(QColor::fromHsv(seed * 70 % 360, 220, 230));
    painter.drawEllipse(20 + seed * 7 % 60, 20, 60, 50);
    painter.drawText(10, 110, u"Slide %1"_s.arg(seed));
    return picture;
}

// The files of a message folder outside mms, with their bytes.
QMap<QString, QByteArray> messageFiles(const QString& folder) {
    QMap<QString, QByteArray> files;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!path.contains(u"/mms/"_s))
            files.insert(path, readFile(path));
    }
    return files;
}

struct SizeBudget : ::testing::Test, PublishStore {
    // A saved message of `slides` detailed pictures with `noise`; `edit` shapes slide i.
    template <typename Edit>
    std::shared_ptr<clsMessage> detailed(const QString& name, int slides, int noise, Edit edit) {
        return make(name, slides, [&](int i, clsSlide& slide) {
            slide.setImage(detailedPicture(i, noise));
            edit(i, slide);
        });
    }
    MessageSize published(const QString& name) {
        return publishedSize(output(name), manager.fileList());
    }
};

struct Sample {
    const char* name;
    const char* format;
    int slides;
    int noise;
    bool convertSound;
};

} // namespace

TEST_F(SizeBudget, EstimateIsWithinFivePercentOfThePublishedMessage) {
    home.write(u"sounds/stereo.wav"_s, sineWav(44100, 2, 2300));
    home.write(u"sounds/mono.wav"_s, sineWav(8000, 1, 700));
    home.write(u"sounds/other.wav"_s, sineWav(22050, 1, 1234));
    manager.ClearTemplateFileType(0);
    const Sample samples[] = {{"Holiday", "jpg", 3, 0, true},
                              {"Grainy Day", "jpg", 6, 40, true},
                              {"Gif Card", "gif", 2, 10, false}};
    for (const Sample& sample : samples) {
        const QString name = QString::fromLatin1(sample.name);
        auto message = detailed(name, sample.slides, sample.noise, [&](int i, clsSlide& slide) {
            const QString sounds[] = {u"stereo.wav"_s, u"mono.wav"_s, u"other.wav"_s};
            if (i % 2)
                slide.setSound(home.file(u"sounds/"_s + sounds[i % 3]));
            slide.setText(u"Grüße aus <Köln> & Umgebung, Folie %1\r\nZweite Zeile"_s.arg(i));
        });
        ASSERT_TRUE(message) << sample.name;
        gProperties()->SetProp(u"preferences"_s, u"ImageFormat"_s,
                               QString::fromLatin1(sample.format));
        ASSERT_EQ(manager.SaveAsMMS(*message, sample.convertSound, 0), 0) << sample.name;

        clsSizeEstimator estimator;
        const MessageSize estimate = estimator.Estimate(
            *message, {folder(name), QString::fromLatin1(sample.format), 90, sample.convertSound});
        const MessageSize real = published(name);
        ASSERT_GT(real.pictures, 0) << sample.name;
        ASSERT_GT(real.sounds, 0) << sample.name;
        EXPECT_NEAR(double(estimate.total()), double(real.total()), 0.05 * double(real.total()))
            << sample.name;
        EXPECT_NEAR(double(estimate.pictures), double(real.pictures), 0.05 * double(real.pictures))
            << sample.name;
        EXPECT_EQ(estimate.documents, real.documents) << sample.name;
        EXPECT_NEAR(double(estimate.sounds), double(real.sounds), 2 * 27.0) << sample.name;
    }
}

TEST_F(SizeBudget, PicturesAtLowerQualityFitTheLargestSize) {
    auto message = detailed(u"Fits"_s, 5, 30, [](int, clsSlide&) {});
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(2);
    gProperties()->SetProp(u"preferences"_s, u"MaxMessageSize"_s, u"30720"_s);
    clsSizeEstimator estimator;
    const auto at = [&](int quality) {
        return estimator.Estimate(*message, {folder(u"Fits"_s), u"jpg"_s, quality}).total();
    };
    ASSERT_GT(at(90), 30720) << "the sample must be too large as first written";
    ASSERT_LT(at(50), 30720) << "the sample must fit at the lowest quality";
    const QMap<QString, QByteArray> before = messageFiles(folder(u"Fits"_s));

    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0);
    const QRegularExpression said(u"^Pictures saved at quality (\\d+) to fit 30 KB$"_s);
    const auto match = said.match(manager.GetSaveAsMMSStatus());
    ASSERT_TRUE(match.hasMatch()) << manager.GetSaveAsMMSStatus().toStdString();
    const int quality = match.captured(1).toInt();
    // The best quality that fits: the one above it would not have.
    EXPECT_LE(at(quality), 30720);
    EXPECT_GT(at(quality + 10), 30720);
    EXPECT_LE(published(u"Fits"_s).total(), 30720);
    // The published copy is the slide picture at that quality; the message itself is untouched.
    const QString copy = home.file(u"copy.jpg"_s);
    ASSERT_EQ(DIWriteJpg(QFile::encodeName(copy),
                         QFile::encodeName(folder(u"Fits"_s) + u"Slide_3.bmp"_s), quality, 0),
              0);
    EXPECT_EQ(readFile(output(u"Fits"_s) + u"Slide_3.jpg"_s), readFile(copy));
    EXPECT_TRUE(before == messageFiles(folder(u"Fits"_s)));
    // The template packs the fitted pictures.
    int code = -1;
    const QByteArray packed =
        runTool(u"tar"_s, {u"xOf"_s, output(u"Fits"_s) + u"mms.tpl"_s, u"Slide_3.jpg"_s}, &code);
    EXPECT_EQ(packed, readFile(copy));
}

TEST_F(SizeBudget, WhatCannotFitIsReportedAndThePicturesStayAsWritten) {
    home.write(u"sounds/long.wav"_s, sineWav(8000, 1, 30000)); // 40 KB of AMR alone
    auto message = detailed(u"Long"_s, 2, 20, [&](int i, clsSlide& slide) {
        if (i == 1)
            slide.setSound(home.file(u"sounds/long.wav"_s));
    });
    ASSERT_TRUE(message);
    manager.ClearTemplateFileType(0);
    manager.setMaxMessageSize(30720);
    struct Case {
        const char* format;
        bool tried; // lower qualities were tried
    } cases[] = {{"jpg", true}, {"gif", false}};
    for (const Case& c : cases) {
        manager.setPictureFormat(QString::fromLatin1(c.format));
        ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0) << c.format;
        const MessageSize size = published(u"Long"_s);
        const QString expected =
            u"The message is %1, %2 above the largest size of 30 KB (pictures %3, sounds %4, "
            "texts and layout %5)."_s.arg(kilobytes(size.total()), kilobytes(size.total() - 30720),
                                          kilobytes(size.pictures), kilobytes(size.sounds),
                                          kilobytes(size.documents));
        const QString status = manager.GetSaveAsMMSStatus();
        EXPECT_TRUE(status.startsWith(expected)) << status.toStdString();
        EXPECT_EQ(status.contains(u"Even with the pictures at quality 50 it would be "_s), c.tried)
            << status.toStdString();
    }
    // The JPEG pictures are left at the quality publishing writes.
    manager.setPictureFormat(u"jpg"_s);
    ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0);
    const QString copy = home.file(u"copy.jpg"_s);
    ASSERT_EQ(DIWriteJpg(QFile::encodeName(copy),
                         QFile::encodeName(folder(u"Long"_s) + u"Slide_2.bmp"_s), 90, 0),
              0);
    EXPECT_EQ(readFile(output(u"Long"_s) + u"Slide_2.jpg"_s), readFile(copy));
}

TEST_F(SizeBudget, TheCommandFitsAndSaysSo) {
    auto message = detailed(u"Cmd"_s, 5, 30, [](int, clsSlide&) {});
    ASSERT_TRUE(message);
    int code = -1;
    QByteArray said =
        runTool(QStringLiteral(TESSALY_BIN_DIR "/tessaly-publish"),
                {folder(u"Cmd"_s), "--packages", "none", "--max-size", "30720"}, &code);
    EXPECT_EQ(code, 0) << said.toStdString();
    EXPECT_TRUE(said.contains("Pictures saved at quality")) << said.toStdString();
    EXPECT_LE(publishedSize(output(u"Cmd"_s), u"Slide_1.jpg;Slide_2.jpg;Slide_3.jpg;Slide_4.jpg;"
                                              "Slide_5.jpg;texts.xml;mms.smil"_s)
                  .total(),
              30720);
    said = runTool(QStringLiteral(TESSALY_BIN_DIR "/tessaly-publish"),
                   {folder(u"Cmd"_s), "--max-size", "0"}, &code);
    EXPECT_EQ(code, 64) << said.toStdString();
}

TEST_F(SizeBudget, LargestSizeReadsThePreference) {
    EXPECT_EQ(maxMessageSize(), 307200); // as shipped
    for (const auto& [text, bytes] : std::initializer_list<std::pair<QString, std::int64_t>>{
             {u"102400"_s, 102400}, {u"none"_s, kDefaultMaxMessageSize}, {u"-5"_s, 307200}}) {
        gProperties()->SetProp(u"preferences"_s, u"MaxMessageSize"_s, text);
        EXPECT_EQ(maxMessageSize(), bytes) << text.toStdString();
    }
}
