// What is dragged onto a window.
#pragma once

#include "platform/qt/QtText.h"

#include <QList>
#include <QMimeData>
#include <QUrl>

// The local path of the first file; empty if there is none.
inline MString DraggedFile(const QMimeData& data) {
    const QList<QUrl> urls = data.urls();
    return urls.isEmpty() ? MString() : FromQt(urls.constFirst().toLocalFile());
}
