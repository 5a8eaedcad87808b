#include "browse/clsMediaList.h"

#include "platform/AppPaths.h"

#include <QDir>
#include <QStringList>
#include <cstdint>

namespace {

QStringList splitList(const QString& list) {
    QStringList pieces = list.split(QLatin1Char(','));
    for (QString& piece : pieces)
        piece = piece.trimmed();
    return pieces;
}

// The files of `folder` matching `pattern`, sorted by name with case ignored.
QStringList filesMatching(const QDir& folder, const QString& pattern) {
    // Without QDir::CaseSensitive the pattern ignores case, as the platform's find calls did.
    // Only regular files (and links to them): a pipe or device named like a picture would
    // hang the reader.
    return folder.entryList({pattern}, QDir::Files, QDir::Name | QDir::IgnoreCase);
}

} // namespace

QImage clsMediaList::ResourcePicture(const QString& id) {
    if (id.isEmpty())
        return {};
    const QString file =
        resolveDataPath(QStringLiteral("\\resources"), true) + id + QStringLiteral(".png");
    return QImage(file);
}

std::int32_t clsMediaList::LoadFiles(QString& path, const QString& filters,
                                     const QString& pictureIds) {
    path = withTrailingSlash(toSlashes(path));
    const QStringList patterns = splitList(filters);
    const QStringList ids = pictureIds.isEmpty() ? QStringList() : splitList(pictureIds);

    Clear();
    std::uint16_t counter = 0; // the running key wraps as a 16-bit counter would
    const QDir folder(path);
    for (qsizetype position = 0; position < patterns.size(); ++position) {
        if (patterns[position].isEmpty())
            continue;
        const QImage picture = position < ids.size() ? ResourcePicture(ids[position]) : QImage();
        for (const QString& name : filesMatching(folder, patterns[position])) {
            clsMedia media;
            media.setFileName(name);
            media.setPicture(picture);
            if (Add(media, QString::number(counter)))
                ++counter;
        }
    }
    return Count();
}

void clsMediaList::Clear() {
    mItems.clear();
    mKeys.clear();
    mKeySet.clear();
}

bool clsMediaList::Add(const clsMedia& item, const QString& key) {
    if (mKeySet.contains(key))
        return false;
    mItems.push_back(item);
    mKeys.push_back(key);
    mKeySet.insert(key);
    return true;
}

const clsMedia* clsMediaList::Item(int index) const {
    if (index < 1 || index > Count())
        return nullptr;
    return &mItems[std::size_t(index - 1)];
}

bool clsMediaList::Remove(int index) {
    if (index < 1 || index > Count())
        return false;
    mItems.erase(mItems.begin() + (index - 1));
    mKeySet.remove(mKeys[std::size_t(index - 1)]);
    mKeys.erase(mKeys.begin() + (index - 1));
    return true;
}
