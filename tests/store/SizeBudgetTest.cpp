#include "PublishSupport.h"
#include "imaging/DIWriteJpg.h"
#include "store/modSizeEstimate.h"

#include <QDirIterator>
#include <QMap>
#include <QPainter>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

// A picture a JPEG encoder must spend bytes on: a gradient with `noise`, and a shape.
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
    QPainter(&picture).drawEllipse(20 + seed * 7 % 60, 20, 60, 50);
    return picture;
}

// The files of a message folder outside mms, with their bytes.
QMap<QString, QByteArray> messageFiles(const QString& folder) {
    QMap<QString, QByteArray> files;
    for (QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
        if (const QString path = it.next(); !path.contains(u"/mms/"_s))
            files.insert(path, readFile(path));
    return files;
}

struct SizeBudget : ::testing::Test, PublishStore {
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
    // Slide `slide`'s picture as DIWriteJpg writes it at `quality`.
    QByteArray slideJpeg(const QString& name, int slide, int quality) {
        const QString copy = home.file(u"q.jpg"_s);
        const QString bitmap = folder(name) + u"Slide_%1.bmp"_s.arg(slide);
        return DIWriteJpg(QFile::encodeName(copy), QFile::encodeName(bitmap), quality, 0) == 0
                   ? readFile(copy)
                   : QByteArray("(not written)");
    }
};

} // namespace

TEST_F(SizeBudget, EstimateIsWithinFivePercentOfThePublishedMessage) {
    const QString sounds[] = {u"stereo.wav"_s, u"mono.wav"_s, u"other.wav"_s};
    home.write(u"sounds/stereo.wav"_s, sineWav(44100, 2, 2300));
    home.write(u"sounds/mono.wav"_s, sineWav(8000, 1, 700));
    home.write(u"sounds/other.wav"_s, sineWav(22050, 1, 1234));
    manager.ClearTemplateFileType(0);
    const struct {
        const char* name;
        const char* format;
        int slides, noise;
        bool convertSound;
    } samples[] = {{"Holiday", "bmp", 3, 0, true},
                   {"Grainy Day", "jpg", 6, 40, true},
                   {"Gif Card", "gif", 2, 10, false}};
    for (const auto& sample : samples) {
        const QString name = QString::fromLatin1(sample.name);
        const QString format = QString::fromLatin1(sample.format);
        auto message = detailed(name, sample.slides, sample.noise, [&](int i, clsSlide& slide) {
            if (i % 2)
                slide.setSound(home.file(u"sounds/"_s + sounds[i % 3]));
            slide.setText(u"Grüße aus <Köln> & Umgebung, Folie %1\r\nZweite Zeile"_s.arg(i));
        });
        ASSERT_TRUE(message) << sample.name;
        manager.setPictureFormat(format);
        ASSERT_EQ(manager.SaveAsMMS(*message, sample.convertSound, 0), 0) << sample.name;

        const MessageSize estimate =
            clsSizeEstimator().Estimate(*message, {folder(name), format, 90, sample.convertSound});
        const MessageSize real = published(name);
        ASSERT_GT(real.sounds, 0) << sample.name;
        EXPECT_NEAR(double(estimate.total()), double(real.total()), 0.05 * double(real.total()))
            << sample.name;
        EXPECT_NEAR(double(estimate.pictures), double(real.pictures), 0.05 * double(real.pictures))
            << sample.name;
        EXPECT_EQ(estimate.documents, real.documents) << sample.name;
        EXPECT_NEAR(double(estimate.sounds), double(real.sounds), 2 * 27.0) << sample.name;
    }
}

TEST_F(SizeBudget, PicturesAtLowerQualityFitTheLargestSizeInWindowAndCommand) {
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
    const QString status = manager.GetSaveAsMMSStatus();
    const auto said =
        QRegularExpression(u"^Pictures saved at quality (\\d+) to fit 30 KB$"_s).match(status);
    ASSERT_TRUE(said.hasMatch()) << status.toStdString();
    const int quality = said.captured(1).toInt();
    EXPECT_GT(at(quality + 10), 30720) << "the best quality that fits";
    EXPECT_LE(published(u"Fits"_s).total(), 30720);
    EXPECT_EQ(readFile(output(u"Fits"_s) + u"Slide_3.jpg"_s), slideJpeg(u"Fits"_s, 3, quality));
    EXPECT_TRUE(before == messageFiles(folder(u"Fits"_s))) << "the message stays as it is";
    const QByteArray packed =
        runTool(u"tar"_s, {u"xOf"_s, output(u"Fits"_s) + u"mms.tpl"_s, u"Slide_3.jpg"_s});
    EXPECT_EQ(packed, slideJpeg(u"Fits"_s, 3, quality)) << "the template packs the fitted copy";

    int code = -1;
    const QByteArray told =
        runTool(QStringLiteral(TESSALY_BIN_DIR "/tessaly-publish"),
                {folder(u"Fits"_s), "--packages", "none", "--max-size", "30720"}, &code);
    EXPECT_EQ(code, 0) << told.toStdString();
    EXPECT_EQ(told.trimmed(), status.toUtf8());
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
    for (const bool jpeg : {false, true}) { // only JPEG pictures are tried at lower qualities
        manager.setPictureFormat(jpeg ? u"jpg"_s : u"gif"_s);
        ASSERT_EQ(manager.SaveAsMMS(*message, true, 0), 0) << jpeg;
        const MessageSize size = published(u"Long"_s);
        const QString status = manager.GetSaveAsMMSStatus();
        EXPECT_TRUE(status.startsWith(
            u"The message is %1, %2 above the largest size of 30 KB (pictures %3, sounds %4, "
            "texts and layout %5)."_s.arg(kilobytes(size.total()), kilobytes(size.total() - 30720),
                                          kilobytes(size.pictures), kilobytes(size.sounds),
                                          kilobytes(size.documents))))
            << status.toStdString();
        EXPECT_EQ(status.contains(u"Even with the pictures at quality 50 it would be "_s), jpeg)
            << status.toStdString();
    }
    EXPECT_EQ(readFile(output(u"Long"_s) + u"Slide_2.jpg"_s), slideJpeg(u"Long"_s, 2, 90));
}
