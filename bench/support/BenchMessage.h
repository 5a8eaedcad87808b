#pragma once

#include "document/clsMessage.h"
#include "store/clsMMSManager.h"

#include <QTemporaryDir>
#include <memory>

// A message named "Bench" in a scratch store: kSlides slides, each with a picture, a text and a
// 10 s WAV (44.1 kHz stereo) of its own lying in the scratch folder. It is not saved: the
// benchmarks that need it stored save it themselves.
struct SoundSlidesMessage {
    static constexpr int kSlides = 20;

    QTemporaryDir dir;
    clsMMSManager manager;
    std::shared_ptr<clsMessage> message;

    SoundSlidesMessage();
    // A file of that name in the scratch folder.
    QString scratch(const QString& name) const;
    // The message's own folder in the store, ending in '/'.
    QString folder() const;
};
