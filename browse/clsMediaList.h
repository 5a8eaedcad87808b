#pragma once

#include "browse/clsMedia.h"

#include <QSet>
#include <QString>
#include <cstdint>
#include <vector>

// The files of one folder that match a list of patterns, as an ordered collection of clsMedia.
// Needs no display. Items count from 1.
class clsMediaList {
public:
    // Lists the files of `path` matching `filters` ("*.bmp,*.gif,*.jpg"): pattern by pattern in
    // list order, within a pattern by name with case ignored; patterns ignore case too. Folders
    // never appear; a file matching two patterns appears twice. `pictureIds` ("101,302") names
    // one resource picture per pattern position that all its files share; without it entries
    // have no picture. `path` gets a closing "/" when it has none. Returns Count().
    std::int32_t LoadFiles(QString& path, const QString& filters, const QString& pictureIds = {});

    void Clear();
    // Adds `item` under `key`; false (and nothing added) when the key is taken.
    bool Add(const clsMedia& item, const QString& key);
    // The entry at `index` (1 to Count()), or nullptr.
    const clsMedia* Item(int index) const;
    std::int32_t Count() const { return std::int32_t(mItems.size()); }
    // Removes the entry at `index`; false when there is none.
    bool Remove(int index);

    auto begin() const { return mItems.begin(); }
    auto end() const { return mItems.end(); }

    // The resource picture of `id` (data/resources/<id>.png), null when there is none.
    static QImage ResourcePicture(const QString& id);

private:
    std::vector<clsMedia> mItems;
    std::vector<QString> mKeys; // the key of each item, in the same order
    QSet<QString> mKeySet;
};
